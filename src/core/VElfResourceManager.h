// The catalogue of error texts in English and German, and their current language.
#pragma once

#include "core/ELFReadErrorEnum.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Holder of the message catalogue; one for the process.
class VElfResourceManager {
public:
    /// The one instance, made on first use; it lives to the end of the process.
    static VElfResourceManager& Instance();

    /// Sets the language of the texts by telephone country code: 49 is German, any other value
    /// English. Applies from the next `GetText` on.
    void SetLanguage(std::int32_t language);
    /// True if texts are German; the texts of remarks follow.
    [[nodiscard]] bool IsGerman() const;

    /// The text of a code in the current language, UTF-8. A code without text gives an English
    /// sentence that names code and language.
    [[nodiscard]] std::string GetText(ELFReadErrorEnum code) const;

private:
    using Texts = std::map<ELFReadErrorEnum, std::string_view>;

    VElfResourceManager();
    void Init();

    static std::unique_ptr<VElfResourceManager> m_pInstance;

    std::int32_t mLanguage = 1;
    Texts mGermanTexts;
    Texts mEnglishTexts;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
