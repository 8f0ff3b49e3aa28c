// Nodes that hold a constant: enumerators and template arguments that are values.
#pragma once

#include "nodes/VDebugInfoNamedNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// One value of an enumeration. It becomes a line of the enumeration's table, never an object.
class VDebugInfoNodeEnumerator final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeEnumerator(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                             VDebugInfoNode* parent, VNodeText name,
                             const VAttributeValue& constValue)
        : VDebugInfoNamedNode(DW_TAG_enumerator, sectionOffset, header, parent, name)
        , mConstValue(constValue) {}

    bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs, ObjectId& id,
                           bool& alreadyRegistered) override;
    [[nodiscard]] VAttributeValue GetConstValueAttribute() const override { return mConstValue; }

private:
    VAttributeValue mConstValue;
};

/// A template argument that is a value; it enters the type text of the template.
class VDebugInfoNodeTemplateValueParam final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeTemplateValueParam(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                                     VDebugInfoNode* parent, VNodeText name,
                                     const VAttributeValue& constValue)
        : VDebugInfoNamedNode(DW_TAG_template_value_param, sectionOffset, header, parent, name)
        , mConstValue(constValue) {}

    [[nodiscard]] VAttributeValue GetConstValueAttribute() const override { return mConstValue; }
    [[nodiscard]] const char* GetDefaultName() const override {
        return "<unnamed-template-value-param>";
    }

private:
    VAttributeValue mConstValue;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
