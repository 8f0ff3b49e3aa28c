#include "support/InputFile.h"

#include "support/TemporaryFolder.h"

#include <iostream>

namespace Tessel::Norn::Brindle::Fuzzing {

const std::string& WriteInputFile(std::string_view content) {
    static const Tests::TemporaryFolder sFolder;
    static std::string sPath;
    sPath = sFolder.Write("input.elf", content);
    return sPath;
}

} // namespace Tessel::Norn::Brindle::Fuzzing

// Called by libFuzzer before the first input: the reader's standard output for each file would
// flood a terminal or log.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    std::cout.rdbuf(nullptr);
    return 0;
}
