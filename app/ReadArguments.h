// The arguments that all commands that read files share. The commands add them to their parsers; a
// read session acts on them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tessel::Norn::Brindle::DataModel {
struct LeafLimits;
}

namespace Tessel::Norn::Brindle::Program {

struct ReadArguments {
    /// "auto", "elf", "coff" or "pe".
    std::string container = "auto";
    bool allTypes = false;
    /// Telephone country code of the language of messages; if absent, the reader keeps its own.
    std::optional<std::int32_t> language;
    bool noProgress = false;
};

/// Adds `--container`, `--all-types`, `--language`, `--set` and `--no-progress`. The options of the
/// reader that `--set` names are set while the arguments are parsed.
/// @param arguments receives the values; must outlive the parsing
void AddReadArguments(CLI::App& command, ReadArguments& arguments);

/// Adds only `--set`.
void AddReaderOptionArgument(CLI::App& command);

/// Adds `FILE`.
void AddFileArgument(CLI::App& command, std::string& file);

/// Adds `PATTERN`, which is optional. An image in its place is refused, since commands with a
/// pattern read one file.
/// @param things what the command lists, in the plural
void AddPatternArgument(CLI::App& command, const std::string& things, std::string& pattern);

/// Why a text can't be a pattern, for a person: it is a second image. Empty if it
/// can.
std::string SecondImageProblem(const std::string& text);

/// Adds an option that takes a number.
/// @param value the default; must outlive the parsing
void AddNumberArgument(CLI::App& command, const std::string& name, std::uint64_t& value,
                       std::uint64_t least, const std::string& purpose);

/// Adds `--max-elements` and `--max-leaves`.
void AddLeafLimitArguments(CLI::App& command, DataModel::LeafLimits& limits);

/// Adds an option that takes one of some words.
/// @param value the default; must outlive the parsing
void AddChoiceArgument(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& choices, const std::string& purpose);

/// Adds `--format`, whose value `TableFormatOf` understands.
void AddFormatArgument(CLI::App& command, std::string& format);

} // namespace Tessel::Norn::Brindle::Program
