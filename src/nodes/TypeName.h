// The canonical text of a type, by which the same type is recognised in different units. It also
// becomes the name of a class template's instance. Only builds the text; called by the grouping of
// types.
#pragma once

#include "dwarf/codes/DwarfConstants.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// Builder of the type texts of one tree, one after the other.
///
/// Modifiers read from left to right from the outermost; scopes precede, template arguments and
/// parameters follow. Chains are followed 33 nodes deep, scopes to a depth of 10; the rest is left
/// out. Each operation appends to `out` and stops when `out` has reached the builder's limit:
/// otherwise template arguments that name their own template many times could make the text grow
/// without bound.
class TypeNameBuilder {
public:
    /// @param limit length in characters after which nothing is added
    explicit TypeNameBuilder(std::size_t limit)
        : mLimit(limit) {}

    /// Sets the limit for the next texts.
    void SetLimit(std::size_t limit) { mLimit = limit; }

    /// Appends the text of the type that the node is. The node may be null.
    /// @param withRecordNumbers add record numbers and the names of template parameters
    void AppendTypeName(VDebugInfoNode* node, int depth, std::string& out, bool withRecordNumbers);
    /// Append the two parts of the text of a type that is not a modifier; the first is the same for
    /// all children of one node.
    void AppendScopes(const VDebugInfoNode& node, std::string& out) {
        AppendScopePrefix(&node, 1, out, false);
    }
    void AppendWithoutScopes(VDebugInfoNode& node, std::string& out) {
        AppendUnscoped(node, 1, out, false);
    }
    /// Number of template argument lists that were added so far. A text without any doesn't depend
    /// on the limit.
    [[nodiscard]] std::size_t GetArgumentListCount() const { return mArgumentListCount; }
    /// A fast proof that two grouped types have the same text, by their names and scopes only.
    /// False proves nothing.
    bool AreCertainlySame(VDebugInfoNode& one, VDebugInfoNode& other);
    /// Appends the scopes of a node, each with its separator.
    void AppendScopePrefix(const VDebugInfoNode* node, int depth, std::string& out,
                           bool withRecordNumbers);
    /// Appends the template arguments of a node in angle brackets.
    void AppendTemplateParameters(const VDebugInfoNode& node, int depth, std::string& out,
                                  bool withRecordNumbers);
    /// Appends the parameter types of a function type in parentheses, and a blank.
    void AppendParameterList(const VDebugInfoNode& node, int depth, std::string& out,
                             bool withRecordNumbers);

private:
    /// What a walk over the children of a node collects.
    enum class Parameters { OfTemplate, OfFunction };

    static bool IsParameter(dwarf_tag tag, Parameters kind);
    template <typename Visitor>
    void ForEachParameter(const VDebugInfoNode& node, Parameters kind, const std::string& out,
                          Visitor&& visit);
    const std::vector<VDebugInfoNode*>& KnownParameters(const VDebugInfoNode& node,
                                                        Parameters kind);
    void AppendUnscoped(VDebugInfoNode& node, int depth, std::string& out, bool withRecordNumbers);
    void AppendNameOr(const VDebugInfoNode& node, const char* placeholder, std::string& out,
                      bool withRecordNumbers) const;
    void AppendTemplatePart(VDebugInfoNode& node, int depth, std::string& out,
                            bool withRecordNumbers);
    void AppendFunctionType(VDebugInfoNode& node, int depth, std::string& out,
                            bool withRecordNumbers);
    static bool HasTemplatePart(VDebugInfoNode& node);
    bool AreScopesCertainlySame(VDebugInfoNode* parent, VDebugInfoNode* otherParent);
    [[nodiscard]] bool IsFull(const std::string& out) const { return out.size() >= mLimit; }

    std::size_t mLimit;
    std::size_t mArgumentListCount = 0;
    /// The latest pair of nodes whose children have the same scopes.
    std::pair<const VDebugInfoNode*, const VDebugInfoNode*> mSameScopes;
    /// Parameters of nodes with very many children, collected once for all texts with the node.
    std::map<std::pair<const VDebugInfoNode*, Parameters>, std::vector<VDebugInfoNode*>>
        mKnownParameters;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
