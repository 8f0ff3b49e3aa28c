// Time of each phase of a whole read with all types, one benchmark for each, over one image: the
// file that the environment variable BRINDLE_BENCH_IMAGE names. All phases run each time, and one
// of them is timed.
#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "host/VDWARFReaderWrapper.h"
#include "model/DataModel.h"
#include "support/HeapUse.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

namespace Tessel::Norn::Brindle::Benchmarks {
namespace {

using namespace Reader::DWARF;

enum class Phase { Mapping, Decoding, Resolving, Delivering, Symbols, All };

/// A read in the steps of the library's own sequence, one of which is timed.
class PhasedRead {
public:
    PhasedRead(std::string path, Phase timed)
        : mPath(std::move(path))
        , mTimed(timed) {
        mReader.ReadAllTypes(true);
    }

    bool Run() {
        DataModel::Model model;
        const DataModel::Factory::CurrentDataModel current(model);
        VDWARFReaderWrapperBridge bridge(mReader);
        VDWARFReaderWrapper wrapper(&bridge);
        VElfFile file(mPath, &wrapper);
        VDwarf2Section section;
        const HeapPeak peak;
        const bool isOk =
            Timed(Phase::Mapping,
                  [&] {
                      return file.ReadElfHeader() && file.LoadSectionInfos() &&
                             section.Init(file, &wrapper) && section.MapCompileUnits();
                  }) &&
            Timed(Phase::Symbols,
                  [&] {
                      return !file.mSecSymtab.IsPresent() ||
                             (file.LoadStrTabSection() && file.LoadSymbolMap(file.mSymbolMap));
                  }) &&
            Timed(Phase::Decoding, [&] { return section.ProcessCompileUnits(); }) &&
            Timed(Phase::Resolving, [&] { return section.ResolveNodes(); }) &&
            Timed(Phase::Delivering, [&] { return section.EmitNodes(); }) &&
            Timed(Phase::Symbols,
                  [&] { return !file.mSecSymtab.IsPresent() || file.ProcessSymTabSection(false); });
        mEntries = section.EntryCount();
        mBytes = file.mSecDebugInfo.sh_size;
        mPeakBytes = peak.Bytes();
        return isOk;
    }

    [[nodiscard]] double Seconds() const { return mSeconds; }
    [[nodiscard]] std::uint64_t Allocations() const { return mAllocations; }
    [[nodiscard]] std::uint64_t PeakBytes() const { return mPeakBytes; }
    [[nodiscard]] std::size_t Entries() const { return mEntries; }
    [[nodiscard]] std::uint64_t Bytes() const { return mBytes; }

private:
    bool Timed(Phase phase, const std::function<bool()>& step) {
        const std::uint64_t allocationsBefore = HeapAllocations();
        const auto start = std::chrono::steady_clock::now();
        const bool isOk = step();
        const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - start;
        if (phase == mTimed || mTimed == Phase::All) {
            mSeconds += duration.count();
            mAllocations += HeapAllocations() - allocationsBefore;
        }
        return isOk;
    }

    std::string mPath;
    Phase mTimed;
    VDWARFReader mReader;
    double mSeconds = 0;
    std::uint64_t mAllocations = 0;
    std::uint64_t mPeakBytes = 0;
    std::size_t mEntries = 0;
    std::uint64_t mBytes = 0;
};

void ReadPhase(benchmark::State& state, Phase phase) {
    const char* image = std::getenv("BRINDLE_BENCH_IMAGE");
    if (image == nullptr) {
        state.SkipWithError("BRINDLE_BENCH_IMAGE names no image");
        return;
    }
    while (state.KeepRunning()) {
        PhasedRead read(image, phase);
        if (!read.Run()) {
            state.SkipWithError("the image could not be read");
            return;
        }
        state.SetIterationTime(read.Seconds());
        const auto entries = static_cast<double>(read.Entries());
        state.counters["ns/entry"] = read.Seconds() * 1e9 / entries;
        state.counters["MB/s"] = static_cast<double>(read.Bytes()) / 1e6 / read.Seconds();
        state.counters["allocations/entry"] = static_cast<double>(read.Allocations()) / entries;
        if (phase == Phase::All) {
            state.counters["peak MB"] = static_cast<double>(read.PeakBytes()) / 1e6;
        }
    }
}

BENCHMARK_CAPTURE(ReadPhase, Mapping, Phase::Mapping)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPhase, Decoding, Phase::Decoding)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPhase, Resolving, Phase::Resolving)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPhase, Delivering, Phase::Delivering)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPhase, Symbols, Phase::Symbols)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadPhase, All, Phase::All)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Tessel::Norn::Brindle::Benchmarks
