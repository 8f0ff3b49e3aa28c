// What the program says on standard error, in the language of its user. The code contains the
// English text; the German one is in Translations.h, and a text without one doesn't compile.
// Results, help and names of columns are English.
#pragma once

#include "Translations.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

enum class MessageLanguage : std::uint8_t { English, German };

/// Chooses the language for the rest of the process, which begins with English.
void ChooseMessageLanguage(MessageLanguage language);

/// A text with a `{}` for each of its values.
class Phrase {
public:
    consteval Phrase(const char* english)
        : mTranslation(
              std::ranges::find(sTranslations, std::string_view(english), &Translation::english)) {
        if (mTranslation == sTranslations.end()) {
            throw "Translations.h lacks this text";
        }
    }

    /// The text in the chosen language.
    [[nodiscard]] std::string With(std::initializer_list<std::string_view> values) const;

private:
    const Translation* mTranslation;
};

/// A phrase with its values in place.
template <typename... Values>
std::string Phrased(Phrase phrase, const Values&... values) {
    return phrase.With({std::string_view(values)...});
}

/// One phrase for the number 1, another for all others; the number is the first value of both.
template <typename... Values>
std::string PhrasedCount(std::uint64_t count, Phrase one, Phrase several, const Values&... values) {
    return Phrased(count == 1 ? one : several, std::to_string(count), values...);
}

/// A text from elsewhere, such as the library or the parser of arguments, in the chosen language;
/// unchanged if Translations.h lacks it.
std::string Translated(std::string_view english);

/// The system's text of an error. German texts exist for what commonly keeps people from reading
/// and writing files.
std::string SystemReason(const std::error_code& error);

} // namespace Tessel::Norn::Brindle::Program
