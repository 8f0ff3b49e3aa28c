// One call of the host contract as a value: what was called, with what, and what came back.
// `RecordingDataModel` makes them; tests compare their texts and the program prints them.
#pragma once

#include "../core/Export.h"
#include "../host/HostDataModel.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Value of an argument: identifiers, sizes and addresses unsigned; values that may be negative and
/// basic types signed; lists of dimensions and of identifiers as numbers.
using RecordedValue =
    std::variant<std::uint64_t, std::int64_t, bool, std::string, std::vector<std::uint64_t>>;

/// One argument of a call.
struct RecordedArgument {
    /// The parameter's name in `HostDataModel`.
    std::string_view name;
    /// What was passed.
    RecordedValue value;
};

/// One call with its arguments and its result.
struct BRINDLE_EXPORT RecordedCall {
    /// The operation's name in `HostDataModel`.
    std::string_view operation;
    /// In the order of the parameters.
    std::vector<RecordedArgument> arguments;
    /// Empty for an operation without a result.
    std::variant<std::monostate, ObjectId, bool> result;

    /// The call on one line, such as `CreateNamespace(namespaceName="x", objIdParentScope=1) -> 2`.
    /// Quotes, backslashes and control characters in texts are escaped as in C.
    [[nodiscard]] std::string Text() const;
};

} // namespace Tessel::Norn::Brindle::DataModel
