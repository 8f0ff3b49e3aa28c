// The arguments by which a user picks what a list has and in which order it comes. `vars` and
// `leaves` take all of them, other commands with a pattern some.
#pragma once

#include "ExitStatus.h"
#include "ListChoice.h"
#include "Phrases.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

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

/// What is said about a list.
struct ListTexts {
    /// A list without rows that no pattern restricts.
    Phrase nothing;
    /// The pattern fits nothing; its value is the pattern.
    Phrase noMatch;
    /// The pattern is no whole name, but part of some; its value is the pattern.
    Phrase partMatch;
};

constexpr ListTexts sVariableTexts = {
    "no variable", "no variable matches '{}'",
    "no exact match for '{}'; listing the variables whose names contain it"};
constexpr ListTexts sLeafTexts = {
    "no leaf", "no leaf matches '{}'",
    "no exact match for '{}'; listing the variables and leaves whose names contain it"};
constexpr ListTexts sTypeTexts = {
    "no type", "no type matches '{}'",
    "no exact match for '{}'; listing the types whose names contain it"};

struct ListArguments {
    PatternArguments names;
    std::string unit;
    std::uint64_t leastSize = 0;
    std::string order = "address";
    ChosenColumns columns;
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
/// then said, about the file.
/// @param partMatch what is said; its value is the word
/// @param list lists what a filter takes
/// @return whether either listed anything
bool ListByPattern(const PatternArguments& arguments, const std::string& file, Phrase partMatch,
                   const std::function<bool(const NameFilter&)>& list);

/// @name What is said of a list without rows, and the exit status of its command
/// @param status what the reading of the file asks for
/// @{
std::string EmptyListText(const ListTexts& texts, const PatternArguments& arguments);
ExitStatus EmptyListStatus(const PatternArguments& arguments, ExitStatus status);
/// @}

} // namespace Tessel::Norn::Brindle::Program
