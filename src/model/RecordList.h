// The records of a data model, packed: there may be millions, and most are functions and their
// types, which fill only some fields. `ModelStore` adds what belongs to a record.
#pragma once

#include "model/ModelObject.h"
#include "model/NamePool.h"
#include "model/PieceList.h"
#include "model/RecordPlaces.h"

#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// One object. Fields share places by kind.
struct Record {
    /// As passed, even if it names no object.
    ObjectId scope = 0;
    /// As `ModelObject::type`; size of a segment.
    std::uint64_t type = 0;
    /// Declared size; address of global, static member and segment; compile unit of a function;
    /// width of an old bit field, and of a bit field with its position in the upper half.
    std::uint64_t value = 0;
    NameId name = 0;
    /// Offset of a member, position of an old bit field, basic type, list of an array, function
    /// type, class or enum; for a global, the next one of its name.
    std::uint32_t detail = 0;
    ObjectKind kind = ObjectKind::Namespace;
    bool anonymous = false;
};

/// Records by position, each chained into its scope. Rarely used fields are kept apart, and a
/// function that follows its own type, which has no parameters, shares its record.
class RecordList {
public:
    /// Adds an all-zero placeholder record at position 0.
    RecordList();

    [[nodiscard]] std::size_t Size() const { return mTraits.Size(); }
    [[nodiscard]] ObjectKind KindAt(std::size_t position) const { return mTraits[position].kind; }
    [[nodiscard]] NameId NameAt(std::size_t position) const {
        return IsSharingType(mTraits[position]) ? 0 : mRecords[mPlaces.Of(position)].name;
    }
    [[nodiscard]] Record At(std::size_t position) const;

    /// Appends a record and, if the record at the position of its scope exists, chains it as the
    /// last child there. Out of memory, nothing is added.
    /// @return its position
    /// @throws std::length_error beyond 2^32 - 1 records
    std::uint32_t Add(const Record& record);

    /// The first record whose scope is this one; 0 if there is none.
    [[nodiscard]] std::uint32_t FirstIn(std::size_t scope) const;
    /// The next record in the same scope; 0 if it is the last or its scope doesn't exist.
    [[nodiscard]] std::uint32_t NextIn(std::size_t position) const;

    /// `Record::detail` of an array, class, enum or global.
    std::uint32_t& Detail(std::size_t position) { return mRecords[mPlaces.Of(position)].detail; }

private:
    /// One byte for each object.
    struct Traits {
        ObjectKind kind : 6;
        bool anonymous : 1;
        /// A function and its type that have one record: the function's, which also holds the
        /// type's result.
        bool sharesRecord : 1;
    };
    // The next two have no initializers: a piece of them would be filled twice.
    struct NarrowRecord {
        std::uint32_t scope;
        std::uint32_t type;
        NameId name;
        std::uint32_t next;
        /// The detail; for kinds without one, the value.
        std::uint32_t detail;
        /// Place of the rest, 0 if there is none. Where a function and its type share the record,
        /// the type's rest follows the function's.
        std::uint32_t rest;
    };
    /// Upper halves, and fields that only some objects have.
    struct Rest {
        std::uint64_t value;
        std::uint32_t scopeAbove;
        std::uint32_t typeAbove;
        /// The first object with this scope, and the place of the record of the last.
        std::uint32_t firstInside;
        std::uint32_t lastPlace;
    };

    /// Whether an object is a type that uses the record of the function after it.
    [[nodiscard]] static bool IsSharingType(Traits traits) {
        return traits.sharesRecord && traits.kind == ObjectKind::FunctionType;
    }
    /// Where the rest of an object lies; without one 0, which holds zeros.
    [[nodiscard]] static std::uint32_t RestOf(const NarrowRecord& record, Traits traits);
    /// The place of the rest of a scope, which gets one if it has none.
    std::uint32_t RestOfScope(std::size_t scope);
    [[nodiscard]] NarrowRecord Narrowed(const Record& record);
    [[nodiscard]] bool CanShareLastRecord(const Record& function) const;
    void ShareLastRecord(const Record& function);
    void Chain(Rest& scope, std::uint32_t position);

    PieceList<Traits> mTraits;
    RecordPlaces mPlaces;
    PieceList<NarrowRecord> mRecords;
    /// The first is a placeholder of zeros.
    PieceList<Rest> mRests;
    /// Objects of one scope mostly come in a row.
    std::size_t mLastScope = 0;
    std::uint32_t mRestOfLastScope = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
