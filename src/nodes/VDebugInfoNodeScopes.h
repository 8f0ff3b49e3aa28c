// The nodes that serve as scopes and describe no data: compile units, namespaces, subprograms and
// lexical blocks.
#pragma once

#include "nodes/VDebugInfoNamedNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The root of one unit. It has no parent. A partial unit is a scope unless another unit imports
/// it: then its contents belong to several units.
class VDebugInfoNodeCompileUnit final : public VDebugInfoNamedNode {
public:
    /// @param producer lives as long as the tree
    VDebugInfoNodeCompileUnit(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                              VNodeText name, VAttributeString producer)
        : VDebugInfoNamedNode(DW_TAG_compile_unit, sectionOffset, header, nullptr, name)
        , mProducer(producer) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    void Dump(std::ostream& stream, const std::string& indent) const override;
    [[nodiscard]] bool IsEntryScope() const override { return !mIsImported; }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-compile-unit>"; }
    void SetPartial() { mIsPartial = true; }
    void SetImported() override { mIsImported = mIsPartial; }
    /// The first unit of the same source and directory, which may be this one. All units of a kind
    /// share one host object.
    [[nodiscard]] VDebugInfoNode* GetFirstKindOfCompileUnit() const override {
        return mFirstKindOfCompileUnit;
    }
    void SetFirstKindOfCompileUnit(VDebugInfoNode* node) override {
        mFirstKindOfCompileUnit = node;
    }
    [[nodiscard]] VAttributeString GetCompUnitDirAttribute() const override { return mCompUnitDir; }
    [[nodiscard]] VAttributeString GetUnitPath() const override { return mUnitPath; }
    [[nodiscard]] VAttributeString GetProducer() const override { return mProducer; }

private:
    VNodeLink<VDebugInfoNode> mFirstKindOfCompileUnit;
    bool mIsPartial = false;
    bool mIsImported = false;
    VAttributeString mCompUnitDir;
    /// Only in a full reading.
    VAttributeString mUnitPath;
    VAttributeString mProducer;
};

/// A namespace, or an enumeration without a size.
class VDebugInfoNodeNamespace final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeNamespace(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                            VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNamedNode(DW_TAG_namespace, sectionOffset, header, parent, name) {}

    [[nodiscard]] bool IsEntryScope() const override { return true; }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-namespace>"; }
};

/// A function, defined or declared. It numbers the blocks within.
class VDebugInfoNodeSubprogram final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeSubprogram(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                             VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNamedNode(DW_TAG_subprogram, sectionOffset, header, parent, name) {}

    [[nodiscard]] bool IsEntryScope() const override { return true; }
    std::uint32_t GetNextLexicalBlockNumber() override { return ++mLexicalBlockCounter; }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-subprogram>"; }

private:
    std::uint32_t mLexicalBlockCounter = 0;
};

/// A lexical block. Only a block directly in another block is a scope: the contents of a function's
/// outermost block belong to the function.
class VDebugInfoNodeBlock final : public VDebugInfoNode {
public:
    VDebugInfoNodeBlock(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_lexical_block, sectionOffset, header, parent) {}

    [[nodiscard]] bool IsEntryScope() const override {
        return GetParent() != nullptr && GetParent()->GetTag() == DW_TAG_lexical_block;
    }
    std::uint32_t GetNextLexicalBlockNumber() override { return ++mLexicalBlockCounter; }

private:
    std::uint32_t mLexicalBlockCounter = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
