// A variable: the only node with a location.
#pragma once

#include "nodes/VDebugInfoNamedNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A variable. Its address is a static one, unless `IsRegisterOrStackLocation`.
class VDebugInfoNodeVariable final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeVariable(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                           VDebugInfoNode* parent, VNodeText name, std::uint64_t locationAddress)
        : VDebugInfoNamedNode(DW_TAG_variable, sectionOffset, header, parent, name)
        , mLocationAddress(locationAddress) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    void Dump(std::ostream& stream, const std::string& indent) const override;
    /// True for an external variable directly in a compile unit, or without parent.
    [[nodiscard]] bool IsGlobalVariable() const override;
    [[nodiscard]] std::uint64_t GetLocationAddress() const override { return mLocationAddress; }
    void SetLocationAddress(std::uint64_t address) override { mLocationAddress = address; }
    void SetLocationFromSymbolTable(std::uint64_t address) override;
    [[nodiscard]] bool HasLocation() const override { return mHasLocation; }
    [[nodiscard]] bool IsRegisterOrStackLocation() const override {
        return mIsRegisterOrStackLocation;
    }
    [[nodiscard]] bool IsAddressFromSymbolTable() const override {
        return mIsAddressFromSymbolTable;
    }
    [[nodiscard]] bool IsFromTombstone() const override { return mIsFromTombstone; }
    [[nodiscard]] bool IsComputed() const override { return mIsComputed; }
    [[nodiscard]] bool IsAddressConfirmed() const override { return mIsAddressConfirmed; }
    void ConfirmAddress() override { mIsAddressConfirmed = true; }
    void DiscardLocation() override {
        mIsRegisterOrStackLocation = true;
        mIsDiscarded = true;
    }
    /// True if another variable of the same name and address represents this one.
    [[nodiscard]] bool IsRedundantDeclaration() const override { return mIsRedundantDeclaration; }
    void SetRedundantDeclaration(bool isRedundant) override {
        mIsRedundantDeclaration = isRedundant;
    }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-variable>"; }

private:
    std::uint64_t mLocationAddress;
    bool mIsRegisterOrStackLocation = false;
    bool mHasLocation = false;
    bool mIsFromTombstone = false;
    bool mIsComputed = false;
    bool mIsAddressFromSymbolTable = false;
    bool mIsAddressConfirmed = false;
    bool mIsDiscarded = false;
    bool mIsRedundantDeclaration = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
