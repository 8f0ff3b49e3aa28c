#include "OutputPlaces.h"

#include "Message.h"
#include "Platform.h"

#include <filesystem>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

void OutputPlaces::Take(const std::string& path, Phrase content) {
    if (!path.empty()) {
        mTaken.try_emplace(PlaceOf(path), content);
    }
}

bool OutputPlaces::Claim(const std::string& path, std::string_view option) {
    std::error_code error;
    const std::filesystem::file_status status = FileStatus(path, error);
    if (path.empty() || std::filesystem::is_other(status)) {
        return true;
    }
    const auto [taken, isFree] = mTaken.try_emplace(PlaceOf(path), Phrase("another result"));
    if (!isFree) {
        Tell(path,
             Phrased("this would overwrite {}; choose another {}", Phrased(taken->second), option));
    }
    return isFree;
}

} // namespace Tessel::Norn::Brindle::Program
