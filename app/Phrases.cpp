#include "Phrases.h"

#include <optional>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Values = std::vector<std::string_view>;

constexpr std::string_view sMark = "{}";

constexpr std::size_t MarkCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t mark = text.find(sMark); mark != std::string_view::npos;
         mark = text.find(sMark, mark + sMark.size())) {
        ++count;
    }
    return count;
}

static_assert(std::ranges::all_of(sTranslations,
                                  [](const Translation& translation) {
                                      return MarkCount(translation.english) ==
                                             MarkCount(translation.german);
                                  }),
              "a German text lacks a value of its English one");

MessageLanguage sLanguage = MessageLanguage::English;

std::string Filled(std::string_view text, std::span<const std::string_view> values) {
    std::string filled;
    for (const std::string_view value : values) {
        const std::size_t mark = std::min(text.find(sMark), text.size());
        filled.append(text.substr(0, mark)).append(value);
        text.remove_prefix(std::min(mark + sMark.size(), text.size()));
    }
    return filled.append(text);
}

/// The values at the marks of a phrase in a text; nothing if the text isn't made of the phrase.
std::optional<Values> ValuesOf(std::string_view phrase, std::string_view text) {
    Values values;
    std::size_t mark = phrase.find(sMark);
    if (!text.starts_with(phrase.substr(0, mark)) ||
        (mark == std::string_view::npos && text != phrase)) {
        return std::nullopt;
    }
    while (mark != std::string_view::npos) {
        text.remove_prefix(mark);
        phrase.remove_prefix(mark + sMark.size());
        mark = phrase.find(sMark);
        const std::string_view after = phrase.substr(0, mark);
        const bool isLast = mark == std::string_view::npos;
        const std::size_t end = after.empty() ? text.size()
                                : isLast      ? text.rfind(after)
                                              : text.find(after);
        if (end == std::string_view::npos || (isLast && end + after.size() != text.size())) {
            return std::nullopt;
        }
        values.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return values;
}

struct GermanReason {
    std::errc error;
    std::string_view text;
};

constexpr std::array sGermanReasons = {
    GermanReason{std::errc::no_such_file_or_directory, "Datei oder Verzeichnis nicht gefunden"},
    GermanReason{std::errc::permission_denied, "Keine Berechtigung"},
    GermanReason{std::errc::not_a_directory, "Ist kein Verzeichnis"},
    GermanReason{std::errc::is_a_directory, "Ist ein Verzeichnis"},
    GermanReason{std::errc::filename_too_long, "Der Dateiname ist zu lang"},
    GermanReason{std::errc::too_many_files_open, "Zu viele offene Dateien"},
    GermanReason{std::errc::io_error, "Eingabe-/Ausgabefehler"},
    GermanReason{std::errc::too_many_symbolic_link_levels, "Zu viele Ebenen symbolischer Links"},
    GermanReason{std::errc::no_space_on_device, "Kein Speicherplatz mehr auf dem Gerät"},
    GermanReason{std::errc::read_only_file_system, "Das Dateisystem ist nur lesbar"},
};

} // namespace

void ChooseMessageLanguage(MessageLanguage language) {
    sLanguage = language;
}

std::string Phrase::With(std::initializer_list<std::string_view> values) const {
    return Filled(sLanguage == MessageLanguage::German ? mTranslation->german
                                                       : mTranslation->english,
                  values);
}

std::string Translated(std::string_view english) {
    if (sLanguage == MessageLanguage::German) {
        for (const Translation& translation : sTranslations) {
            if (const std::optional<Values> values = ValuesOf(translation.english, english)) {
                return Filled(translation.german, *values);
            }
        }
    }
    return std::string(english);
}

std::string SystemReason(const std::error_code& error) {
    if (sLanguage == MessageLanguage::German) {
        for (const GermanReason& reason : sGermanReasons) {
            if (error == reason.error) {
                return std::string(reason.text);
            }
        }
    }
    return error.message();
}

} // namespace Tessel::Norn::Brindle::Program
