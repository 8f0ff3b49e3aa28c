// Each unit that uses a variable describes it, and a host wants it once.
//
//     // a.c                      // b.c
//     extern int table[];         int table[8];
//     int* first = table;
//
// Unit b defines `table` and knows its address; the declaration of unit a has got the same address
// from the symbol table by now. Both are variables "table" at one address, so that one of them is
// redundant. The richer one stays: an array of 8 elements says more than one without dimensions,
// whichever unit comes first. The other is marked and never delivered.
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"
#include "nodes/VDebugInfoNodeArray.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Rates how detailed a variable's type is: the most detailed variable represents all of its name
/// and address. A type that many variables share is rated once.
class RichnessMeter {
public:
    std::uint32_t RichnessOf(const VDebugInfoNode& variable) {
        const VDebugInfoNode* node = &variable;
        for (int link = 0; link < sMaximumChainLength; ++link) {
            VDebugInfoNode* type = node->GetTypeOrSpecificationNode();
            if (type == nullptr || type == node) {
                return 0;
            }
            if (type->AsArrayNode() != nullptr) {
                return Measured(*type);
            }
            switch (type->GetTag()) {
            case DW_TAG_class_type:
            case DW_TAG_member:
            case DW_TAG_union_type:
                return Measured(*type);
            case DW_TAG_enumeration_type:
            case DW_TAG_pointer_type:
            case DW_TAG_reference_type:
            case DW_TAG_base_type:
                return 1;
            case DW_TAG_typedef:
                node = type;
                break;
            default:
                return 0;
            }
        }
        return 0;
    }

private:
    std::uint32_t Measured(VDebugInfoNode& type) {
        const auto [known, isNew] = mKnown.try_emplace(&type, 0);
        if (isNew) {
            const VDebugInfoNodeArray* array = type.AsArrayNode();
            known->second = array != nullptr ? OfArray(*array) : CountChildren(type);
        }
        return known->second;
    }

    static std::uint32_t CountChildren(const VDebugInfoNode& node) {
        return static_cast<std::uint32_t>(std::ranges::distance(node.Children()));
    }

    static std::uint32_t OfArray(const VDebugInfoNodeArray& array) {
        std::uint32_t richness = 1;
        for (const std::uint32_t dimension : array.GetDimensions()) {
            richness += dimension;
        }
        return richness;
    }

    std::unordered_map<const VDebugInfoNode*, std::uint32_t> mKnown;
};

/// A variable with the address and name by which others may replace it.
struct PlacedVariable {
    std::uint64_t address;
    std::string_view name;
    VDebugInfoNode* node;

    [[nodiscard]] bool IsSamePlace(const PlacedVariable& other) const {
        return address == other.address && name == other.name;
    }
};

std::string_view NameOf(const VDebugInfoNode& variable) {
    const VDebugInfoNode* specification = variable.GetSpecificationNode();
    return !variable.HasNameAttribute() && specification != nullptr ? specification->GetName()
                                                                    : variable.GetName();
}

std::vector<PlacedVariable> CollectVariables(const VDwarf2Section& section) {
    std::vector<PlacedVariable> variables;
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& node) {
        if (node.HasLocation() && !node.IsRegisterOrStackLocation() &&
            (node.GetLocationAddress() != 0 || node.IsAddressConfirmed())) {
            variables.push_back({node.GetLocationAddress(), {}, &node});
        }
    });
    return variables;
}

/// The greater, the better a variable represents all at its place.
using Precedence = std::int64_t (*)(const VDebugInfoNode& variable, RichnessMeter& meter);

std::int64_t ByRichness(const VDebugInfoNode& variable, RichnessMeter& meter) {
    return meter.RichnessOf(variable);
}

/// A definition, which has its own location, takes precedence over a declaration, whose place came
/// from the symbol table: the declaration may be in a function.
std::int64_t ByDefinition(const VDebugInfoNode& variable, RichnessMeter& meter) {
    const std::int64_t definition = variable.IsAddressFromSymbolTable() ? 0 : 1;
    return (definition << 32U) + meter.RichnessOf(variable);
}

void KeepBest(std::span<const PlacedVariable> variables, RichnessMeter& meter,
              Precedence precedenceOf) {
    if (variables.size() < 2) {
        return;
    }
    VDebugInfoNode* kept = nullptr;
    std::int64_t greatest = -1;
    for (const PlacedVariable& variable : variables) {
        const std::int64_t precedence = precedenceOf(*variable.node, meter);
        if (precedence > greatest) {
            kept = variable.node;
            greatest = precedence;
        }
    }
    for (const PlacedVariable& variable : variables) {
        if (variable.node != kept) {
            variable.node->SetRedundantDeclaration(true);
        }
    }
}

/// Calls `visit` with each run of equal neighbours.
template <typename IsEqual, typename Visitor>
void ForEachRun(std::span<PlacedVariable> variables, IsEqual&& isEqual, Visitor&& visit) {
    while (!variables.empty()) {
        const auto end = std::ranges::find_if_not(variables, [&](const PlacedVariable& variable) {
            return isEqual(variables.front(), variable);
        });
        const auto length = static_cast<std::size_t>(end - variables.begin());
        visit(variables.first(length));
        variables = variables.subspan(length);
    }
}

void MarkAllButFirst(VDwarf2Section& section, Precedence precedenceOf) {
    std::vector<PlacedVariable> variables = CollectVariables(section);
    std::ranges::stable_sort(variables, {}, &PlacedVariable::address);
    const auto isSameAddress = [](const PlacedVariable& left, const PlacedVariable& right) {
        return left.address == right.address;
    };
    RichnessMeter meter;
    ForEachRun(variables, isSameAddress, [&](std::span<PlacedVariable> sameAddress) {
        if (sameAddress.size() < 2) {
            return;
        }
        for (PlacedVariable& variable : sameAddress) {
            variable.name = NameOf(*variable.node);
        }
        std::ranges::stable_sort(sameAddress, {}, &PlacedVariable::name);
        ForEachRun(
            sameAddress,
            [](const PlacedVariable& left, const PlacedVariable& right) {
                return left.IsSamePlace(right);
            },
            [&](std::span<PlacedVariable> sameName) { KeepBest(sameName, meter, precedenceOf); });
    });
}

} // namespace

void MarkRedundantVariables(VDwarf2Section& section) {
    MarkAllButFirst(section, ByRichness);
}

void MarkRedundantDeclarations(VDwarf2Section& section) {
    MarkAllButFirst(section, ByDefinition);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
