// Compares what a description says about the type of an object with the image. The update reports
// the differences; it changes nothing for them.
#pragma once

#include "a2l/BitMask.h"
#include "a2l/Datatypes.h"
#include "a2l/Document.h"
#include "a2l/SymbolIndex.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// One difference between file and image.
struct Difference {
    /// "datatype", "elements", "size", "bitMask", "enumeration", "structure" or "offset".
    std::string_view what;
    std::string inFile;
    std::string inImage;
};

/// A number that a tool reads, and the mask that it applies.
struct MaskedReading {
    MaskedNumber number;
    /// Nothing if all bits count.
    std::optional<std::uint64_t> mask;

    [[nodiscard]] std::uint64_t Mask() const;
    /// For a person.
    [[nodiscard]] std::string MaskText() const;
};

/// Why no number of a kind holds a bit field, for a person.
std::string UnheldBits(const SymbolIndex::Place& place, DataModel::ByteOrder imageOrder,
                       const MaskedNumber& number);

class Comparison {
public:
    /// All borrowed; must not change during the life of the object.
    /// @param addressUnit bytes between one address of the description and the next
    Comparison(const Document& document, const DataModel::Model& model, const SymbolIndex& index,
               std::uint64_t addressUnit)
        : mDocument(document)
        , mModel(model)
        , mIndex(index)
        , mSigns(model)
        , mAddressUnit(addressUnit) {}

    /// @param place the place of the object's symbol, without the offset of its link
    std::vector<Difference> Compare(const Object& object, const SymbolIndex::Place& place);

    /// What a tool reads for an object whose symbol is a bit field.
    [[nodiscard]] MaskedReading ReadingOf(const Object& object,
                                          const SymbolIndex::Place& place) const;

private:
    class Details;
    class ComponentDifferences;
    /// Equal scalars, one after the other.
    struct Values {
        std::string_view datatype;
        std::uint64_t count = 1;
    };

    [[nodiscard]] std::string_view DatatypeOfLayout(const Object& object,
                                                    std::string_view layout) const;
    [[nodiscard]] std::optional<Values> ValuesOf(const Object& object) const;
    [[nodiscard]] std::optional<Values> ValuesOfType(const Object& object) const;
    [[nodiscard]] const TypeDefinition* TypeOf(const Object& object) const;
    void CompareValues(const Values& values, const Object& object, const SymbolIndex::Place& place,
                       std::vector<Difference>& differences);
    /// Bytes that a tool reads for an object; 1 if the file doesn't say.
    [[nodiscard]] std::uint64_t BytesOfObject(const Object& object) const;
    /// True if more may follow what the image states of a type: an array without length at its end.
    [[nodiscard]] bool HasOpenEnd(DataModel::ObjectId type) const;
    void CompareOffset(const Object& object, const SymbolIndex::Place& place,
                       std::vector<Difference>& differences) const;
    void CompareSize(std::uint64_t size, const SymbolIndex::Place& place,
                     std::vector<Difference>& differences) const;
    /// @param bitSize 0 unless the place is a bit field
    void CompareEnumeration(const Object& object, DataModel::ObjectId type, std::uint64_t bitSize,
                            std::vector<Difference>& differences);
    void CompareTexts(const ConversionTable& table, DataModel::ObjectId enumeration,
                      std::uint64_t bitSize, std::vector<Difference>& differences) const;
    /// @param object an instance of the structure
    void CompareComponents(const TypeDefinition& definition, const Object& object,
                           DataModel::ObjectId type, std::vector<Difference>& differences);
    void CompareComponent(const StructureComponent& component, const Object& object,
                          const Member& member, ComponentDifferences& found);
    void CompareBits(const StructureComponent& component, const MaskedReading& reading,
                     const SymbolIndex::Place& place, ComponentDifferences& found) const;

    const Document& mDocument;
    const DataModel::Model& mModel;
    const SymbolIndex& mIndex;
    EnumSigns mSigns;
    std::uint64_t mAddressUnit;
    /// Structures around the one that is being compared.
    std::size_t mDepth = 0;
    /// Results for a structure or table of the file and a type of the image with its bits, since
    /// many objects share them.
    std::map<std::tuple<const void*, DataModel::ObjectId, std::uint64_t>, std::vector<Difference>>
        mKnown;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
