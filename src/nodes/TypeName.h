// The canonical text of a type, by which the same type is recognised in different units. It also
// becomes the name of a class template's instance. Builds the text and nothing else; called by the
// grouping of types.
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
/// Modifiers read from left to right from the outermost, scopes stand in front, template arguments
/// and parameters behind. Chains are followed 33 nodes deep, scopes to a depth of 10; what lies
/// beyond is left out. Each operation adds to `out` and stops adding when `out` has reached the
/// limit of the builder, so that template arguments that name their own template many times over
/// can't make the text grow without bound.
class TypeNameBuilder {
public:
    /// @param limit length in characters from which on nothing is added
    explicit TypeNameBuilder(std::size_t limit)
        : mLimit(limit) {}

    /// Another limit for the texts to come.
    void SetLimit(std::size_t limit) { mLimit = limit; }

    /// The text of the type that the node is. The node may be null.
    /// @param withRecordNumbers add record numbers and the names of template parameters
    void AppendTypeName(VDebugInfoNode* node, int depth, std::string& out, bool withRecordNumbers);
    /// The two parts of the text of a type that is no modifier; the first is the same for all
    /// children of one node.
    void AppendScopes(const VDebugInfoNode& node, std::string& out) {
        AppendScopePrefix(&node, 1, out, false);
    }
    void AppendWithoutScopes(VDebugInfoNode& node, std::string& out) {
        AppendUnscoped(node, 1, out, false);
    }
    /// Number of template argument lists that were added so far. A text without any doesn't depend
    /// on the limit.
    [[nodiscard]] std::size_t GetArgumentListCount() const { return mArgumentListCount; }
    /// A fast proof that two grouped types have the same text, by their names and scopes alone.
    /// False proves nothing.
    bool AreCertainlySame(VDebugInfoNode& one, VDebugInfoNode& other);
    /// The scopes of a node, each with its separator.
    void AppendScopePrefix(const VDebugInfoNode* node, int depth, std::string& out,
                           bool withRecordNumbers);
    /// The template arguments of a node in angle brackets.
    void AppendTemplateParameters(const VDebugInfoNode& node, int depth, std::string& out,
                                  bool withRecordNumbers);
    /// The parameter types of a function type in parentheses, and a blank.
    void AppendParameterList(const VDebugInfoNode& node, int depth, std::string& out,
                             bool withRecordNumbers);

private:
    /// What a walk over the children of a node looks for.
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
    /// The latest nodes whose children have the same scopes.
    std::pair<const VDebugInfoNode*, const VDebugInfoNode*> mSameScopes;
    /// Parameters of nodes with very many children, found once however many texts name the node.
    std::map<std::pair<const VDebugInfoNode*, Parameters>, std::vector<VDebugInfoNode*>>
        mKnownParameters;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
