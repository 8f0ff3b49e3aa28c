// The command `trace`: every call that reaches the data model and every callback, in order, as
// lines of JSON.
#include "CommandLine.h"
#include "Commands.h"
#include "JsonOutput.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "ResultOutput.h"

#include "core/HostText.h"
#include "model/DataModel.h"
#include "model/RecordedCall.h"
#include "model/RecordingDataModel.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::RecordedArgument;
using DataModel::RecordedCall;

struct TraceArguments {
    ReadArguments read;
    std::vector<std::string> files;
};

/// Writes one value of an argument or a result.
class ValueWriter {
public:
    explicit ValueWriter(JsonWriter& json)
        : mJson(json) {}

    void operator()(std::monostate) { mJson.Null(); }
    void operator()(bool flag) { mJson.Bool(flag); }
    void operator()(std::int64_t number) { mJson.Int64(number); }
    void operator()(std::uint64_t number) { mJson.Uint64(number); }
    void operator()(std::string_view text) { WriteText(mJson, text); }
    void operator()(const std::vector<std::uint64_t>& numbers) {
        mJson.StartArray();
        for (const std::uint64_t number : numbers) {
            mJson.Uint64(number);
        }
        mJson.EndArray();
    }

private:
    JsonWriter& mJson;
};

/// Writes the lines of a trace.
class TraceWriter {
public:
    explicit TraceWriter(ResultOutput& output)
        : mOutput(output)
        , mJson(output) {}

    void WriteCall(const RecordedCall& call) {
        StartLine();
        WriteField(mJson, "call", call.operation);
        WriteKey(mJson, "args");
        mJson.StartObject();
        for (const RecordedArgument& argument : call.arguments) {
            WriteKey(mJson, argument.name);
            std::visit(ValueWriter(mJson), argument.value);
        }
        mJson.EndObject();
        WriteKey(mJson, "result");
        std::visit(ValueWriter(mJson), call.result);
        EndLine();
    }

    void WriteCallback(const ReaderCallback& callback) {
        StartLine();
        WriteField(mJson, "callback", callback.name);
        WriteKey(mJson, "args");
        mJson.StartArray();
        for (const auto& argument : callback.arguments) {
            std::visit(ValueWriter(mJson), argument);
        }
        mJson.EndArray();
        EndLine();
    }

    void WriteEnd(const std::string& file, bool isOk) {
        StartLine();
        WriteField(mJson, "file", Reader::DWARF::ToHostText(file));
        WriteField(mJson, "result", isOk);
        EndLine();
        mOutput.Sync();
    }

private:
    void StartLine() {
        mJson.Reset(mOutput);
        mJson.StartObject();
    }

    void EndLine() {
        mJson.EndObject();
        mOutput.Put('\n');
    }

    ResultOutput& mOutput;
    JsonWriter mJson;
};

ExitStatus RunTrace(const TraceArguments& arguments, ResultOutput& output) {
    TraceWriter trace(output);
    ReadSession session(arguments.read, [&trace](const ReaderCallback& callback) {
        trace.WriteCallback(callback);
    });
    ExitStatus status = ExitStatus::Success;
    for (const std::string& file : arguments.files) {
        DataModel::Model model;
        DataModel::RecordingDataModel recorder(
            model, [&trace](const RecordedCall& call) { trace.WriteCall(call); });
        const ReadResult result = session.Read(file, recorder);
        trace.WriteEnd(file, result.isOk);
        if (ReportResult(file, result) != ExitStatus::Success) {
            status = ExitStatus::Failed;
        }
    }
    return status;
}

} // namespace

void AddTraceCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<TraceArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"trace",
         "Write every call that the reader makes to its host, as JSON lines",
         "brindle trace old.elf new.elf > calls.jsonl",
         {}},
        [arguments](ResultOutput& output) { return RunTrace(*arguments, output); });
    command.add_option("FILE", arguments->files, "The files to read, one after the other")
        ->required()
        ->type_name("");
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
