#include "nodes/TypeName.h"

#include "nodes/VDebugInfoNode.h"

#include <cstring>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr int sMaximumChainDepth = 32;
constexpr int sMaximumScopeDepth = 10;

/// What each scope adds to the depth.
constexpr int sScopeDepthStep = 2;

/// Up to this many children are walked anew for each text.
constexpr int sFewChildren = 64;

constexpr std::string_view sClassSeparator = "::";
constexpr std::string_view sFunctionSeparator = "$";

/// Text of a tag that qualifies the type it refers to, empty for all other tags.
std::string_view ModifierOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_pointer_type:
        return "*";
    case DW_TAG_reference_type:
        return "&";
    case DW_TAG_rvalue_reference_type:
        return "&&";
    case DW_TAG_const_type:
        return "const ";
    case DW_TAG_volatile_type:
        return "volatile ";
    case DW_TAG_restrict_type:
        return "restricted ";
    case DW_TAG_shared_type:
        return "shared ";
    case DW_TAG_packed_type:
        return "packed ";
    case DW_TAG_file_type:
        return "filetype ";
    case DW_TAG_thrown_type:
        return "throw_type ";
    default:
        return {};
    }
}

/// The form of a scope that is no class in a type text.
struct ScopeText {
    std::string_view placeholder;
    std::string_view separator;
};

/// The separator is empty for tags that are no scope in a type text.
ScopeText ScopeTextOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_enumeration_type:
        return {"<anonymous>", sClassSeparator};
    case DW_TAG_namespace:
        return {"<anonymous-namespace>", sClassSeparator};
    case DW_TAG_subprogram:
        return {"<anonymous-subprogram>", sFunctionSeparator};
    case DW_TAG_subroutine_type:
    case DW_TAG_inlined_subroutine:
        return {"<anonymous-subroutine>", sFunctionSeparator};
    case DW_TAG_class_template:
        return {"<anonymous>", sFunctionSeparator};
    default:
        return {};
    }
}

bool HasFewChildren(const VDebugInfoNode& node) {
    int count = 0;
    const VDebugInfoNode* child = node.FirstChild();
    for (; child != nullptr && count < sFewChildren; child = child->NextSiblingIn(node)) {
        ++count;
    }
    return child == nullptr;
}

/// Names in `.debug_str` are shared, so that the texts rarely have to be compared.
bool HaveSameName(const VDebugInfoNode& one, const VDebugInfoNode& other) {
    const char* name = one.GetNameStart();
    const char* otherName = other.GetNameStart();
    return name == otherName || std::strcmp(name, otherName) == 0;
}

/// A bracket is near the start of names that have one, so the name isn't measured first.
bool HoldsBracket(const VDebugInfoNode& node) {
    return std::strchr(node.GetNameStart(), '<') != nullptr;
}

bool IsStructural(dwarf_tag tag) {
    return IsAggregate(tag) || tag == DW_TAG_interface_type;
}

} // namespace

// The operations call each other, up to the limits of depth above.
// NOLINTBEGIN(misc-no-recursion)

void TypeNameBuilder::AppendTypeName(VDebugInfoNode* node, int depth, std::string& out,
                                     bool withRecordNumbers) {
    while (node != nullptr && depth <= sMaximumChainDepth && !IsFull(out)) {
        ++depth;
        AppendScopePrefix(node, depth, out, withRecordNumbers);
        const std::string_view modifier = ModifierOf(node->GetTag());
        if (!modifier.empty()) {
            out += modifier;
            node = node->GetTypeOrSpecificationNode();
            continue;
        }
        AppendUnscoped(*node, depth, out, withRecordNumbers);
        return;
    }
}

/// The text of a type that is not a modifier, without its scopes.
void TypeNameBuilder::AppendUnscoped(VDebugInfoNode& node, int depth, std::string& out,
                                     bool withRecordNumbers) {
    switch (node.GetTag()) {
    case DW_TAG_class_type:
    case DW_TAG_structure_type:
    case DW_TAG_union_type:
    case DW_TAG_interface_type:
        AppendNameOr(node, "<anonymouse-structural>", out, withRecordNumbers);
        AppendTemplatePart(node, depth, out, withRecordNumbers);
        break;
    case DW_TAG_enumeration_type:
        AppendNameOr(node, "<anonymouse-enum>", out, withRecordNumbers);
        break;
    case DW_TAG_typedef:
        AppendNameOr(node, "<anonymouse-typedef>", out, withRecordNumbers);
        break;
    case DW_TAG_base_type:
    case DW_TAG_enumerator:
        AppendNameOr(node, "", out, withRecordNumbers);
        break;
    case DW_TAG_ptr_to_member_type:
        out += "ptr_to_member_type(unsupported) ";
        break;
    case DW_TAG_set_type:
    case DW_TAG_subrange_type:
        out.append("subrange ").append(node.GetName()) += ' ';
        break;
    case DW_TAG_unspecified_type:
        out.append("unspecified_type ").append(node.GetName());
        break;
    case DW_TAG_subroutine_type:
        AppendFunctionType(node, depth, out, withRecordNumbers);
        break;
    default:
        break;
    }
}

void TypeNameBuilder::AppendScopePrefix(const VDebugInfoNode* node, int depth, std::string& out,
                                        bool withRecordNumbers) {
    if (node == nullptr || depth > sMaximumScopeDepth || node->GetParent() == nullptr) {
        return;
    }
    VDebugInfoNode* parent = node->GetParent();
    if (IsStructural(parent->GetTag())) {
        std::string scope;
        AppendTypeName(parent, depth + sScopeDepthStep, scope, withRecordNumbers);
        out.append(scope).append(sClassSeparator);
        return;
    }
    const ScopeText text = ScopeTextOf(parent->GetTag());
    if (!text.separator.empty()) {
        AppendScopePrefix(parent, depth + sScopeDepthStep, out, withRecordNumbers);
        const std::string_view name = parent->GetName();
        out.append(name.empty() ? text.placeholder : name).append(text.separator);
    }
}

void TypeNameBuilder::AppendTemplateParameters(const VDebugInfoNode& node, int depth,
                                               std::string& out, bool withRecordNumbers) {
    ++mArgumentListCount;
    out += '<';
    bool isFirst = true;
    ForEachParameter(node, Parameters::OfTemplate, out, [&](VDebugInfoNode& parameter) {
        if (!isFirst) {
            out += ',';
        }
        isFirst = false;
        if (withRecordNumbers) {
            out.append(parameter.GetName()).append(" = ");
        }
        if (parameter.GetTag() == DW_TAG_template_type_param) {
            AppendTypeName(parameter.GetTypeOrSpecificationNode(), depth, out, withRecordNumbers);
        } else {
            out += std::to_string(
                static_cast<std::int32_t>(parameter.GetConstValueAttribute().ToInteger()));
        }
    });
    out += '>';
}

void TypeNameBuilder::AppendParameterList(const VDebugInfoNode& node, int depth, std::string& out,
                                          bool withRecordNumbers) {
    out += '(';
    bool isFirst = true;
    ForEachParameter(node, Parameters::OfFunction, out, [&](VDebugInfoNode& parameter) {
        if (!isFirst) {
            out += ',';
        }
        isFirst = false;
        AppendTypeName(parameter.GetTypeOrSpecificationNode(), depth, out, withRecordNumbers);
    });
    out += ") ";
}

/// Calls `visit` with the parameters of a node, in order, until the text is full.
template <typename Visitor>
void TypeNameBuilder::ForEachParameter(const VDebugInfoNode& node, Parameters kind,
                                       const std::string& out, Visitor&& visit) {
    if (!HasFewChildren(node)) {
        for (VDebugInfoNode* parameter : KnownParameters(node, kind)) {
            if (IsFull(out)) {
                return;
            }
            visit(*parameter);
        }
        return;
    }
    for (VDebugInfoNode* child : node.Children()) {
        if (!IsFull(out) && IsParameter(child->GetTag(), kind)) {
            visit(*child);
        }
    }
}

void TypeNameBuilder::AppendNameOr(const VDebugInfoNode& node, const char* placeholder,
                                   std::string& out, bool withRecordNumbers) const {
    const std::string_view name = node.GetName();
    out += name.empty() ? placeholder : name;
    if (withRecordNumbers) {
        out += '(' + std::to_string(node.GetTagRecord()) + ')';
    }
}

void TypeNameBuilder::AppendTemplatePart(VDebugInfoNode& node, int depth, std::string& out,
                                         bool withRecordNumbers) {
    if (HasTemplatePart(node)) {
        AppendTemplateParameters(node, depth, out, withRecordNumbers);
    }
}

void TypeNameBuilder::AppendFunctionType(VDebugInfoNode& node, int depth, std::string& out,
                                         bool withRecordNumbers) {
    AppendTypeName(node.GetTypeOrSpecificationNode(), depth, out, withRecordNumbers);
    AppendTemplatePart(node, depth, out, withRecordNumbers);
    AppendParameterList(node, depth, out, withRecordNumbers);
}

// NOLINTEND(misc-no-recursion)

/// True if template arguments follow the name. If the name has them already, they are forgotten.
bool TypeNameBuilder::HasTemplatePart(VDebugInfoNode& node) {
    if (node.HasTemplateParameters() && HoldsBracket(node)) {
        node.SetHasTemplateParameters(false);
    }
    return node.HasTemplateParameters();
}

bool TypeNameBuilder::AreCertainlySame(VDebugInfoNode& one, VDebugInfoNode& other) {
    return one.GetTag() == other.GetTag() && HaveSameName(one, other) &&
           (!IsStructural(one.GetTag()) || (!HasTemplatePart(one) && !HasTemplatePart(other))) &&
           AreScopesCertainlySame(one.GetParent(), other.GetParent());
}

/// Compares no more scopes than a text contains.
bool TypeNameBuilder::AreScopesCertainlySame(VDebugInfoNode* parent, VDebugInfoNode* otherParent) {
    VDebugInfoNode* one = parent;
    VDebugInfoNode* other = otherParent;
    for (int depth = 1; depth <= sMaximumScopeDepth && one != other; depth += sScopeDepthStep) {
        if (one == mSameScopes.first && other == mSameScopes.second) {
            break;
        }
        if (one == nullptr || other == nullptr || one->GetTag() != other->GetTag()) {
            return false;
        }
        if (IsStructural(one->GetTag())) {
            if (HasTemplatePart(*one) || HasTemplatePart(*other)) {
                return false;
            }
        } else if (ScopeTextOf(one->GetTag()).separator.empty()) {
            break;
        }
        if (!HaveSameName(*one, *other)) {
            return false;
        }
        one = one->GetParent();
        other = other->GetParent();
    }
    mSameScopes = {parent, otherParent};
    return true;
}

bool TypeNameBuilder::IsParameter(dwarf_tag tag, Parameters kind) {
    if (kind == Parameters::OfFunction) {
        return tag == DW_TAG_formal_parameter;
    }
    return tag == DW_TAG_template_type_param || tag == DW_TAG_template_value_param;
}

const std::vector<VDebugInfoNode*>& TypeNameBuilder::KnownParameters(const VDebugInfoNode& node,
                                                                     Parameters kind) {
    const auto [known, isNew] = mKnownParameters.try_emplace({&node, kind});
    if (isNew) {
        for (VDebugInfoNode* child : node.Children()) {
            if (IsParameter(child->GetTag(), kind)) {
                known->second.push_back(child);
            }
        }
    }
    return known->second;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
