#include "ReadProblem.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct Wording {
    std::string_view english;
    std::string_view german;
};

/// In the order of `ReadProblem`.
constexpr std::array sWordings = {
    Wording{"The file could not be read.", "Die Datei konnte nicht gelesen werden."},
    Wording{"Not enough memory.", "Nicht genug Speicher."},
    Wording{"Is a directory", "Ist ein Verzeichnis"},
    Wording{"a pipe can't be read: seeking is required",
            "eine Pipe kann nicht gelesen werden, da in ihr nicht gesprungen werden kann"},
    Wording{"The file is empty", "Die Datei ist leer"},
    Wording{"Read as COFF, being neither ELF nor a Windows image",
            "Als COFF gelesen, da weder ELF noch Windows-Programm"},
    Wording{"not a Windows image, or truncated", "kein Windows-Programm, oder abgeschnitten"},
};

struct GermanReason {
    std::errc error;
    std::string_view text;
};

/// What keeps people from reading files. The system has words for the rest, in its own language.
constexpr std::array sGermanReasons = {
    GermanReason{std::errc::no_such_file_or_directory, "Datei oder Verzeichnis nicht gefunden"},
    GermanReason{std::errc::permission_denied, "Keine Berechtigung"},
    GermanReason{std::errc::not_a_directory, "Ist kein Verzeichnis"},
    GermanReason{std::errc::is_a_directory, "Ist ein Verzeichnis"},
    GermanReason{std::errc::filename_too_long, "Der Dateiname ist zu lang"},
    GermanReason{std::errc::too_many_files_open, "Zu viele offene Dateien"},
    GermanReason{std::errc::io_error, "Eingabe-/Ausgabefehler"},
    GermanReason{std::errc::too_many_symbolic_link_levels, "Zu viele Ebenen symbolischer Links"},
};

std::string ReasonText(const std::error_code& error, MessageLanguage language) {
    if (language == MessageLanguage::German) {
        for (const GermanReason& reason : sGermanReasons) {
            if (error == reason.error) {
                return std::string(reason.text);
            }
        }
    }
    return error.message();
}

} // namespace

std::string ProblemText(ReadProblem problem, MessageLanguage language) {
    const Wording& wording = sWordings.at(static_cast<std::size_t>(problem));
    return std::string(language == MessageLanguage::German ? wording.german : wording.english);
}

std::string SystemProblem(const std::string& file, MessageLanguage language) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (error) {
        return ReasonText(error, language);
    }
    if (std::filesystem::is_directory(status)) {
        return ProblemText(ReadProblem::DirectoryGiven, language);
    }
    if (std::filesystem::is_fifo(status)) {
        return ProblemText(ReadProblem::PipeGiven, language);
    }
    errno = 0;
    const std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return ReasonText(std::error_code(errno, std::generic_category()), language);
    }
    const bool isEmpty = std::filesystem::file_size(file, error) == 0 && !error;
    return isEmpty ? ProblemText(ReadProblem::EmptyFile, language) : std::string();
}

} // namespace Tessel::Norn::Brindle::Program
