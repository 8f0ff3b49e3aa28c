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

void SilenceStandardOutput() {
    std::cout.rdbuf(nullptr);
}

} // namespace Tessel::Norn::Brindle::Fuzzing
