// The command `vars`: one row for each global variable of a file.
#include "CommandLine.h"
#include "Commands.h"
#include "NamePattern.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "ResultOutput.h"
#include "TableWriter.h"

#include "model/DataModel.h"

#include <array>
#include <iostream>
#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

constexpr std::array sColumns = {Column{"address", true}, Column{"size", true}, Column{"type"},
                                 Column{"name"}, Column{"compileUnit"}};

struct VarsArguments {
    ReadArguments read;
    std::string file;
    std::string pattern;
    std::string format = "table";
};

class VariableList {
public:
    VariableList(const DataModel::DataModel& model, std::string_view pattern, TableWriter& table)
        : mModel(model)
        , mPattern(pattern)
        , mTable(table) {}

    /// @return false if there is a pattern that no variable matches
    bool Write() {
        bool hasMatch = mPattern.empty();
        mModel.ForEach(ObjectKind::Global, [&](const ModelObject& variable) {
            const std::string name = mModel.QualifiedName(variable.id);
            if (IsWanted(variable, name)) {
                hasMatch = true;
                WriteRow(variable, name);
            }
        });
        mTable.Finish();
        return hasMatch;
    }

private:
    [[nodiscard]] bool IsWanted(const ModelObject& variable, std::string_view name) const {
        return mPattern.empty() || MatchesPattern(name, mPattern) ||
               MatchesPattern(variable.name, mPattern);
    }

    void WriteRow(const ModelObject& variable, std::string_view name) {
        const std::string type = mModel.TypeText(variable.type);
        const ModelObject compileUnit = mModel.Object(mModel.CompileUnitOf(variable.id));
        mTable.AddRow(std::array<Cell, sColumns.size()>{
            Address{variable.address}, mModel.SizeOf(variable.id), type, name, compileUnit.name});
    }

    const DataModel::DataModel& mModel;
    std::string_view mPattern;
    TableWriter& mTable;
};

ExitStatus RunVars(const VarsArguments& arguments, ResultOutput& output) {
    DataModel::DataModel model;
    const ReadResult result = ReadSession(arguments.read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const auto table = MakeTableWriter(TableFormatOf(arguments.format), sColumns, output);
    if (!VariableList(model, arguments.pattern, *table).Write()) {
        std::cerr << "brindle: " << arguments.file << ": no variable matches '" << arguments.pattern
                  << "'\n";
    }
    return status;
}

} // namespace

void AddVarsCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<VarsArguments>();
    CLI::App& command = commandLine.AddCommand(
        "vars", "List the variables of a file, with address, size and type",
        "brindle vars --format csv firmware.elf 'Motor::*'",
        [arguments](ResultOutput& output) { return RunVars(*arguments, output); });
    AddFileArgument(command, arguments->file);
    command
        .add_option("PATTERN", arguments->pattern,
                    "List the variables of this name alone; * stands for any characters, ? for one")
        ->type_name("");
    AddReadArguments(command, arguments->read);
    AddFormatArgument(command, arguments->format);
}

} // namespace Tessel::Norn::Brindle::Program
