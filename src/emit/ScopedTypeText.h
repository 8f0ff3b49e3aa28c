// Builds the text of one type after the other, as the grouping of types asks for them. Siblings
// have the same scopes in front and follow each other: their scopes are built and hashed once.
#pragma once

#include "core/KeyMixing.h"
#include "nodes/TypeName.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// The latest text that was built. For `struct Gain` in namespace `motor` it is "motor::" from the
/// scopes, which stays for the next child of `motor`, and "Gain" from the type itself.
class ScopedTypeText {
public:
    /// Borrows the builder.
    explicit ScopedTypeText(TypeNameBuilder& builder)
        : mBuilder(builder) {}

    /// Builds the text of a grouped type.
    /// @param limit length in characters after which nothing is added
    void Build(VDebugInfoNode& node, std::size_t limit);

    /// Valid until the next `Build`.
    [[nodiscard]] std::string_view Get() const { return mText; }
    [[nodiscard]] std::uint64_t Hash() const { return mHashOfScopes.Continued(mText); }
    /// True if the text has lists of template arguments, and so depends on the limit.
    [[nodiscard]] bool HasArgumentLists() const { return mHasArgumentLists; }

private:
    void BuildScopes(const VDebugInfoNode& node, std::size_t limit);

    TypeNameBuilder& mBuilder;
    std::string mText;
    /// The parent whose scopes are in front, and the limit with which they were built.
    const VDebugInfoNode* mParent = nullptr;
    std::size_t mLimit = 0;
    std::size_t mLengthOfScopes = 0;
    HashOfGrowingText mHashOfScopes;
    bool mHaveScopesArgumentLists = false;
    bool mHasArgumentLists = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
