// Time per symbol of a whole read of an image that has a symbol table and no debug information. It
// must not depend on the number of symbols.
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/DataModel.h"
#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>
#include <string>

namespace Tessel::Norn::Brindle::Benchmarks {
namespace {

using namespace Tests;

std::string ImageOfSymbols(std::int64_t count, bool isOneName) {
    ElfImage image;
    for (std::int64_t index = 0; index < count; ++index) {
        const auto number = static_cast<std::uint64_t>(index);
        image.Symbol({.name = isOneName ? "gSame" : "gVariable_" + std::to_string(index),
                      .value = 0x20000000 + 4 * number,
                      .size = 1 + number % 64});
    }
    return image.Build();
}

void ReadSymbols(benchmark::State& state, bool isOneName) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("image.elf", ImageOfSymbols(state.range(0), isOneName));
    while (state.KeepRunning()) {
        DataModel::Model model;
        const DataModel::Factory::CurrentDataModel current(model);
        Reader::DWARF::VDWARFReader reader;
        if (!reader.Read(path, Reader::DWARF::DWARFContainerType::Container_ELF)) {
            state.SkipWithError("the image could not be read");
        }
    }
    state.counters["time/symbol"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void SymbolsOfManyNames(benchmark::State& state) {
    ReadSymbols(state, false);
}
void SymbolsOfOneName(benchmark::State& state) {
    ReadSymbols(state, true);
}

BENCHMARK(SymbolsOfManyNames)->Arg(20'000)->Arg(200'000)->Unit(benchmark::kMillisecond);
BENCHMARK(SymbolsOfOneName)->Arg(20'000)->Arg(200'000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Tessel::Norn::Brindle::Benchmarks
