// The arguments by which a user picks what a list has and in which order it comes. `vars` and
// `leaves` take all of them, other commands with a pattern some.
#pragma once

#include "ExitStatus.h"
#include "ListChoice.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace Tessel::Norn::Brindle::Program {

/// A pattern and how it is taken.
struct PatternArguments {
    std::string pattern;
    bool ignoresCase = false;
    /// A list without rows is no failure.
    bool allowsEmpty = false;
};

struct ListArguments {
    PatternArguments names;
    std::string unit;
    std::uint64_t leastSize = 0;
    std::string order = "address";
    bool hasSections = false;
    bool hasValues = false;
};

/// Adds `PATTERN`, which may be missing, and `--ignore-case`.
/// @param things what the command lists, in the plural
void AddPatternArguments(CLI::App& command, const std::string& things, PatternArguments& arguments);

/// Adds `--allow-empty`.
void AddEmptyArgument(CLI::App& command, PatternArguments& arguments);

/// Adds all of the above, `--sort`, `--unit`, `--min-size`, `--section` and `--values`.
void AddListArguments(CLI::App& command, const std::string& things, ListArguments& arguments);

/// What the arguments ask of a model. A name of no compile unit is told, about the file.
/// @return without a value if there is no such compile unit
std::optional<ListChoice> MakeListChoice(const ListArguments& arguments, const std::string& file,
                                         const DataModel::Model& model);

/// Tries a pattern, and, where it is a plain word that fits nothing, what holds the word; this is
/// then told, about the file.
/// @param things what is listed, in the plural
/// @param list lists what a filter takes
/// @return whether either listed anything
bool ListByPattern(const PatternArguments& arguments, const std::string& file,
                   std::string_view things, const std::function<bool(const NameFilter&)>& list);

/// @name What is said of a list without rows, and the exit status of its command
/// @param thing what is listed, in the singular
/// @param status what the reading of the file asks for
/// @{
std::string EmptyListText(const std::string& thing, const PatternArguments& arguments);
ExitStatus EmptyListStatus(const PatternArguments& arguments, ExitStatus status);
/// @}

} // namespace Tessel::Norn::Brindle::Program
