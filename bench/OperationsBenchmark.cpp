// Time of the operations that a read repeats most: decoding numbers at a cursor, demangling names,
// texts for the host, names and objects of the data model.
#include "container/VElfBuffer.h"
#include "core/HostText.h"
#include "demangle/Demangler.h"
#include "model/DataModel.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Benchmarks {
namespace {

using namespace Reader::DWARF;
using namespace Tests;

/// A buffer filled with repetitions of a byte sequence.
class FilledBuffer {
public:
    explicit FilledBuffer(std::string_view sequence) {
        std::string bytes;
        while (bytes.size() < sSize) {
            bytes += sequence;
        }
        mInput.OpenForReading(mFolder.Write("bytes", bytes));
        mBuffer.emplace(mInput);
        mBuffer->LoadFromFile(0, static_cast<std::int32_t>(bytes.size()));
    }

    VElfBuffer& Rewound() {
        mBuffer->SetOffset(0);
        return *mBuffer;
    }

private:
    static constexpr std::size_t sSize = 64 * 1024;

    TemporaryFolder mFolder;
    VElfInput mInput;
    std::optional<VElfBuffer> mBuffer;
};

template <typename Read>
void ReadAll(benchmark::State& state, std::string_view sequence, Read&& read) {
    FilledBuffer filled(sequence);
    std::int64_t count = 0;
    while (state.KeepRunning()) {
        VElfBuffer& buffer = filled.Rewound();
        while (!buffer.IsEOF()) {
            benchmark::DoNotOptimize(read(buffer));
            ++count;
        }
    }
    state.SetItemsProcessed(count);
    state.counters["time/value"] = benchmark::Counter(
        static_cast<double>(count), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Data1(benchmark::State& state) {
    ReadAll(state, "\x12", [](VElfBuffer& buffer) { return buffer.GetUByte(); });
}
void Data4(benchmark::State& state) {
    ReadAll(state, "\x12\x34\x56\x78", [](VElfBuffer& buffer) { return buffer.GetULong(); });
}
void Leb128OfOneByte(benchmark::State& state) {
    ReadAll(state, "\x12", [](VElfBuffer& buffer) { return buffer.GetULEB128(); });
}
void Leb128OfThreeBytes(benchmark::State& state) {
    ReadAll(state, "\x92\x93\x14", [](VElfBuffer& buffer) { return buffer.GetULEB128(); });
}
void InlineText(benchmark::State& state) {
    using namespace std::string_view_literals;
    ReadAll(state, "setpoint_of_axis\0"sv, [](VElfBuffer& buffer) { return buffer.GetNullTStr(); });
}

void Demangle(benchmark::State& state, std::string_view name) {
    const VDemanglingOptions options;
    char demangled[2048];
    while (state.KeepRunning()) {
        bool isDemangled = false;
        benchmark::DoNotOptimize(DemangleName(demangled, sizeof demangled - 1, name.data(),
                                              static_cast<int>(name.size()), isDemangled, options));
    }
}

void HostText(benchmark::State& state, std::string_view name) {
    std::string text;
    while (state.KeepRunning()) {
        AssignHostText(text, name);
        benchmark::DoNotOptimize(text.data());
    }
}

/// Functions of many classes with recurring names: most objects of a C++ image.
void CreateFunctions(benchmark::State& state) {
    constexpr int functionsInModel = 100'000;
    const std::string name = "Configure";
    std::int64_t count = 0;
    while (state.KeepRunning()) {
        DataModel::Model model;
        for (int index = 0; index < functionsInModel; ++index) {
            const DataModel::ObjectId type = model.CreateFunctionType(1, {}, 1);
            benchmark::DoNotOptimize(model.CreateFunction(name, type, 1, 0, false));
        }
        count += functionsInModel;
    }
    state.SetItemsProcessed(count);
}

BENCHMARK(Data1);
BENCHMARK(Data4);
BENCHMARK(Leb128OfOneByte);
BENCHMARK(Leb128OfThreeBytes);
BENCHMARK(InlineText);
BENCHMARK_CAPTURE(Demangle, PlainName, "setpoint_of_axis");
BENCHMARK_CAPTURE(Demangle, MangledName, "Configure__Q28Gearshft5Motor");
BENCHMARK_CAPTURE(HostText, Ascii, "setpoint_of_axis_in_the_second_frame");
BENCHMARK_CAPTURE(HostText, Windows1252,
                  "Gr\xF6\xDF"
                  "e_des_Rahmens");
BENCHMARK(CreateFunctions)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Tessel::Norn::Brindle::Benchmarks
