#include "support/ComparedReads.h"

#include "nodes/VDebugInfoNode.h"
#include "support/InputFile.h"
#include "support/Require.h"

#include <cstdio>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Fuzzing {

namespace {

std::vector<std::string> DeliveryOf(const Tests::ReadRun& run, ComparedCalls calls) {
    std::vector<std::string> delivery = {run.result ? "read" : "failed: " + run.message};
    for (const std::string& call : run.calls) {
        if (calls == ComparedCalls::All || call.starts_with("Create") || call.starts_with("Add")) {
            delivery.push_back(call);
        }
    }
    return delivery;
}

} // namespace

Tests::ReadRun ReadInput(std::string_view file, bool allTypes) {
    // Blocks outside functions are numbered over all reads of a process.
    Reader::DWARF::nGlobalLexicalBlockCounter = 0;
    return Tests::ReadFileUncaptured(WriteInputFile(file),
                                     Reader::DWARF::DWARFContainerType::Container_ELF, allTypes);
}

void RequireSameDelivery(const Tests::ReadRun& first, const Tests::ReadRun& second,
                         ComparedCalls calls, const char* promise) {
    const std::vector<std::string> firstCalls = DeliveryOf(first, calls);
    const std::vector<std::string> secondCalls = DeliveryOf(second, calls);
    if (firstCalls == secondCalls) {
        return;
    }
    std::size_t same = 0;
    while (same < firstCalls.size() && same < secondCalls.size() &&
           firstCalls[same] == secondCalls[same]) {
        ++same;
    }
    const auto callAt = [same](const std::vector<std::string>& texts) {
        return same < texts.size() ? texts[same].c_str() : "(none)";
    };
    std::fprintf(stderr, "first:  %s\nsecond: %s\n", callAt(firstCalls), callAt(secondCalls));
    Require(false, promise);
}

} // namespace Tessel::Norn::Brindle::Fuzzing
