// The arguments with which a user picks the contents of a list and their order. `vars` and `leaves`
// take all of them, other commands with a pattern some.
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

/// A pattern and its options.
struct PatternArguments {
    std::string pattern;
    bool ignoresCase = false;
    /// An empty list is no failure.
    bool allowsEmpty = false;
};

/// The messages about a list.
struct ListTexts {
    /// The list is empty, and no pattern restricts it.
    Phrase nothing;
    /// The pattern matches nothing; its value is the pattern.
    Phrase noMatch;
    /// The pattern matches no whole name, but parts of some; its value is the pattern.
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

/// Adds `PATTERN`, which is optional, and `--ignore-case`.
/// @param things what the command lists, in the plural
void AddPatternArguments(CLI::App& command, const std::string& things, PatternArguments& arguments);

/// Adds `--allow-empty`.
void AddEmptyArgument(CLI::App& command, PatternArguments& arguments);

/// Adds all of the above, `--sort`, `--unit`, `--min-size`, `--section` and `--values`.
void AddListArguments(CLI::App& command, const std::string& things, ListArguments& arguments);

/// What the arguments mean for a model. Without a value, after a message about the file, if they
/// name a compile unit that doesn't exist.
std::optional<ListChoice> MakeListChoice(const ListArguments& arguments, const std::string& file,
                                         const DataModel::Model& model);

/// Tries a pattern, and if it is a plain word that matches nothing, the names that contain the
/// word; then a message about the file says so.
/// @param partMatch the message; its value is the word
/// @param list lists what a filter accepts
/// @return whether either listed anything
bool ListByPattern(const PatternArguments& arguments, const std::string& file, Phrase partMatch,
                   const std::function<bool(const NameFilter&)>& list);

/// @name The message about an empty list, and the exit status of its command
/// @param status what the reading of the file asks for
/// @{
std::string EmptyListText(const ListTexts& texts, const PatternArguments& arguments);
std::string EmptyListText(const ListTexts& texts, const ListArguments& arguments);
ExitStatus EmptyListStatus(const PatternArguments& arguments, ExitStatus status);
/// @}

} // namespace Tessel::Norn::Brindle::Program
