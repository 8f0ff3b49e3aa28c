// The data model that comes with the library: takes a whole delivery, answers the Get operations of
// `HostDataModel` by index, and afterwards the queries of a host.
#pragma once

#include "../core/Export.h"
#include "../host/HostDataModel.h"
#include "../model/ModelObject.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

class ModelStore;

/// Compact store of delivered objects.
///
/// Identifiers count up from 1 in the order of creation; 1 is the global namespace, which exists
/// from the start. The operations of `HostDataModel` never fail for a known parent; an unknown
/// identifier is stored as passed, and every query about it comes back empty. Several objects of
/// one key may be created; the Get operations find the first. All queries may be asked at any time,
/// also after a read that failed halfway.
///
/// Every query ends soon whatever was delivered: scopes and types are followed over 1000 links, and
/// what lies farther counts as missing. Texts are cut at 64 KiB, those of types at 4 KiB, between
/// characters, with "..." where something is left out.
class BRINDLE_EXPORT Model final : public Factory::HostDataModel {
public:
    Model();
    ~Model() override;
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
    Model(Model&&) = delete;
    Model& operator=(Model&&) = delete;

    /// @name Queries
    /// Implemented in model/DataModelQueries; texts of types in model/TypeText, paths in
    /// model/ModelPath.
    /// @{

    /// Number of objects; their identifiers are 1 to this number.
    [[nodiscard]] std::size_t ObjectCount() const;

    /// The object of an identifier. An unknown identifier gives an object with id 0.
    [[nodiscard]] ModelObject Object(ObjectId id) const;

    /// Calls `visit` with each object that names `scope` as its scope, in the order of creation:
    /// the contents of a namespace or compile unit, the members of a class or union. A scope has
    /// to exist before what lies in it.
    template <typename Visitor>
    void ForEachIn(ObjectId scope, Visitor&& visit) const {
        for (ObjectId id = FirstIn(scope); id != 0; id = NextIn(id)) {
            visit(Object(id));
        }
    }

    /// Step by step: the first object that names `scope` as its scope; 0 if there is none.
    [[nodiscard]] ObjectId FirstIn(ObjectId scope) const;
    /// The object after `id` in its scope, in the order of creation; 0 if it is the last.
    [[nodiscard]] ObjectId NextIn(ObjectId id) const;

    /// Calls `visit` with each object of a kind, in the order of creation.
    template <typename Visitor>
    void ForEach(ObjectKind kind, Visitor&& visit) const {
        for (ObjectId id = 1; id <= ObjectCount(); ++id) {
            if (KindOf(id) == kind) {
                visit(Object(id));
            }
        }
    }

    /// Base classes of a class or structure, in the order in which they were added. The view is
    /// valid until the next call that adds one.
    [[nodiscard]] std::span<const BaseClass> BaseClasses(ObjectId classType) const;

    /// The base classes whose members lie where their offset says. A virtual base class has no
    /// static place, and the reader delivers it at offset 0: a base class at 0 is left out if data
    /// members of the class itself or of another base class lie there too.
    [[nodiscard]] std::vector<BaseClass> PlacedBaseClasses(ObjectId classType) const;

    /// Descriptions of an enum table, in the order in which they were added. The view is valid
    /// until the next call that adds one.
    [[nodiscard]] std::span<const Enumerator> Enumerators(ObjectId enumTable) const;

    /// Element counts of an array, outermost first. Valid until the next array is created.
    [[nodiscard]] std::span<const std::uint32_t> Dimensions(ObjectId arrayType) const;

    /// Parameter types of a function type, in order. The view is valid until the next function type
    /// is created.
    [[nodiscard]] std::span<const ObjectId> Parameters(ObjectId functionType) const;

    /// Size in bytes of a type or of the type of a datum: the declared size if the object has one,
    /// else the size of the type that a typedef, an enum or a datum leads to. 0 if unknown.
    [[nodiscard]] std::uint64_t SizeOf(ObjectId id) const;

    /// The type that a chain of typedefs leads to; the type itself if it is no typedef, 0 if the
    /// chain leads to nothing or back into itself.
    [[nodiscard]] ObjectId WithoutTypedefs(ObjectId type) const;

    /// Number of elements of an array over all its dimensions, 2^64 - 1 where it is more; 0 for
    /// anything else.
    [[nodiscard]] std::uint64_t ElementCount(ObjectId arrayType) const;

    /// Distance in bytes from one element of an array to the next: the declared size divided by the
    /// element count if that leaves no remainder, else the size of the element type.
    [[nodiscard]] std::uint64_t ElementStride(ObjectId arrayType) const;

    /// The name after the names of the enclosing namespaces, classes, functions and block scopes,
    /// joined by "::". Compile units and the global namespace add nothing. Empty for an object
    /// without a name.
    [[nodiscard]] std::string QualifiedName(ObjectId id) const;

    /// The variables that share a name and a scope: static variables of sibling blocks, of a source
    /// that is compiled twice, or of several modules of one file. Their names are "count",
    /// "count.2", "count.3" and so on, without a gap, in the order of the file: another build may
    /// number them in another order. Symbols without debug information don't count.
    /// @return all of them, `variable` included, by their numbers; only `variable` if no other
    ///     shares its name; none for anything but a variable
    [[nodiscard]] std::vector<ObjectId> SharersOfName(ObjectId variable) const;

    /// The type as a C declaration without a name, such as "uint16[4][2]", "Motor*", "void
    /// (*)(int32)". A type of which only the size is known reads "unknown(4)"; one of size 0 reads
    /// "void" as the target of a pointer or as a result. Empty for an object that is no type; "?"
    /// stands for a missing type that another type refers to.
    [[nodiscard]] std::string TypeText(ObjectId type) const;

    /// The type as a C declaration of a name, such as "uint16 table[4][2]" or "void
    /// (*callback)(int32)", in the notation of `TypeText`.
    [[nodiscard]] std::string Declaration(ObjectId type, std::string_view name) const;

    /// The nearest compile unit among the object and its scopes, or the unit of a function among
    /// them; 0 if there is none.
    [[nodiscard]] ObjectId CompileUnitOf(ObjectId id) const;

    /// The place that a path such as "motor.pid[2].gain" names.
    struct Place {
        /// The variable at the head of the path.
        ObjectId global = 0;
        /// Type at the place: that of the variable, the member or the array element. After fewer
        /// indices than the array has dimensions it is the array type itself, without typedefs.
        ObjectId type = 0;
        /// Address of the first byte.
        std::uint64_t address = 0;
        /// Size in bytes at the place; for an array with some of its indices given, the size of the
        /// part that is left.
        std::uint64_t size = 0;
        /// Number of indices already applied to the array `type`; 0 for anything else.
        std::size_t indexedDimensions = 0;
        /// The place is a bit field, whose storage unit lies at `address`.
        bool isBitField = false;
        /// Position of a bit field in its storage unit, in bits from the least significant.
        std::uint32_t bitOffset = 0;
        /// Width of a bit field in bits.
        std::uint64_t bitSize = 0;
    };

    /// How far a path resolved.
    struct PathResult {
        /// True if the whole path resolved; `place` is then valid.
        bool found = false;
        /// Where the path leads; meaningless unless `found`.
        Place place;
        /// Number of characters that name the variable; 0 if no variable has such a name.
        std::size_t headLength = 0;
        /// Number of characters of the path that resolved.
        std::size_t resolvedLength = 0;
        /// Why the rest didn't resolve, for a person; empty if all did.
        std::string problem;
    };

    /// The static answer to a path: a variable by its qualified name, which may begin with "::", or
    /// else by its name only, then members by ".name" and elements by "[index]", in decimal.
    /// Members of base classes and of anonymous members are found like own ones; an own member
    /// hides an inherited one, unless the name of the base class precedes it: ".Named::id".
    /// Pointers are not followed, since what they point to is not static. An index beyond its
    /// dimension does not resolve. Of several variables of one name, the first delivered for which
    /// the path resolves is taken, which may not be the one that is meant: `ResolvePaths` gives all
    /// of them. Names may contain points and brackets themselves: the longest
    /// name with which the whole path resolves wins. A path has at most 64 KiB and 1000 steps.
    [[nodiscard]] PathResult ResolvePath(std::string_view path) const;

    /// As `ResolvePath`, for each variable of the name, in the order of delivery: names of static
    /// variables may recur in several compile units. They are followed by those that share a name
    /// and a scope with one of them and have a number for it, as `SharersOfName` says: "count" also
    /// leads to "count.2", while "count.2" leads to that one only. If the path resolves for none of
    /// them, the only result says how far it got.
    [[nodiscard]] std::vector<PathResult> ResolvePaths(std::string_view path) const;

    /// The headers of the file that was read last; without sections before the first read.
    [[nodiscard]] const ImageDescription& Image() const;

    /// The bytes that the image gives a range of the target's memory when the program starts: those
    /// of the file, zeros where a section has none. Empty if no single section holds the whole
    /// range, if the file has no contents, is gone or changed in length, or for more than 256 MiB
    /// of zeros. Opens the file on the first call.
    [[nodiscard]] std::vector<std::uint8_t> InitialBytes(std::uint64_t address,
                                                         std::uint64_t size) const;

    /// @}

    /// @name The contract of `HostDataModel`
    /// @{

    void DescribeImage(const ImageDescription& image) override;

    ObjectId GetGlobalNamespace() override;
    ObjectId GetNamespace(const std::string& namespaceName, ObjectId objIdParentScope) override;
    ObjectId CreateNamespace(const std::string& namespaceName, ObjectId objIdParentScope) override;
    ObjectId GetBlockScope(const std::string& blockIdentifier, ObjectId objIdParentScope) override;
    ObjectId CreateBlockScope(const std::string& blockIdentifier,
                              ObjectId objIdParentScope) override;
    ObjectId GetCompileUnit(const std::string& compileUnitName) override;
    ObjectId CreateCompileUnit(const std::string& compileUnitName) override;
    ObjectId GetOrCreateCompileUnit(const std::string& compileUnitName) override;
    ObjectId GetBaseEntryType(BasicTypes basicType, ObjectId objIdParentScope) override;
    ObjectId CreateBaseEntryType(BasicTypes basicType, std::uint64_t length,
                                 ObjectId objIdParentScope) override;
    ObjectId GetUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                 ObjectId objIdParentScope) override;
    ObjectId CreateUnknownEntryType(std::uint64_t sizeOfUnknownType,
                                    ObjectId objIdParentScope) override;
    ObjectId GetClassEntryType(const std::string& className, ObjectId objIdOfParentClass) override;
    ObjectId CreateClassEntryType(const std::string& className, std::uint32_t classSize,
                                  ObjectId objIdOfScopeParent,
                                  const std::vector<ObjectId>& vecObjIdsOfInheritances,
                                  bool anonymous, bool isStruct) override;
    ObjectId GetUnionEntryType(const std::string& unionName, ObjectId objIdOfParentClass) override;
    ObjectId CreateUnionEntryType(const std::string& unionName, std::uint32_t unionSize,
                                  ObjectId objIdOfParentClass, bool anonymous) override;
    bool AddBaseClass(ObjectId objIdOfClass, ObjectId objIdOfBaseClass,
                      std::uint32_t byteOffset) override;
    ObjectId CreateMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                              ObjectId objIdOfParentClass, std::uint32_t byteOffset,
                              std::int16_t addressExtension, bool addressExtensionIsValid) override;
    ObjectId CreateUnionMemberData(const std::string& memberName, ObjectId objIdOfMemberType,
                                   ObjectId objIdOfParentUnion, std::uint32_t byteOffset,
                                   std::int16_t addressExtension,
                                   bool addressExtensionIsValid) override;
    ObjectId CreateMemberStaticData(const std::string& memberName, ObjectId objIdOfMemberType,
                                    ObjectId objIdOfParentClass, std::uint64_t address,
                                    bool addressIsValid, std::int16_t addressExtension,
                                    bool addressExtensionIsValid) override;
    ObjectId CreateBitfieldInUdt(const std::string& memberName, ObjectId objIdOfBitfieldType,
                                 ObjectId ObjectIdOfParentUdt, std::uint32_t byteOffset,
                                 std::uint32_t bitOffset, std::uint32_t bitSize,
                                 std::int16_t addressExtension,
                                 bool addressExtensionIsValid) override;
    ObjectId CreateArrayEntryType(const std::vector<std::uint32_t>& dimensions,
                                  ObjectId objIdOfArrayElementsType, std::uint64_t arraySize,
                                  ObjectId objIdParentScope) override;
    ObjectId CreatePointerEntryType(ObjectId objIdOfReferencedType, std::uint64_t ptrSize,
                                    ObjectId objIdParentScope) override;
    ObjectId GetEnumTable(const std::string& tableName, ObjectId objIdOfScopeParent) override;
    ObjectId CreateEnumTable(const std::string& tableName, ObjectId objIdOfUnderlyingType,
                             ObjectId objIdOfScopeParent, bool anonymous) override;
    bool AddEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int32_t enumValue,
                                       const std::string& enumText) override;
    bool AddWideEnumDescriptionToEnumTable(ObjectId objIdOfEnumTable, std::int64_t enumValue,
                                           const std::string& enumText) override;
    ObjectId GetTypedefEntryType(const std::string& aliasName, ObjectId objIdParentScope) override;
    ObjectId CreateTypedefEntryType(const std::string& aliasName, ObjectId objIdReferencedType,
                                    ObjectId objIdParentScope) override;
    ObjectId GetGlobalData(const std::string& symName, ObjectId objIdOfScopeParent) override;
    ObjectId GetGlobalData(const std::string& symName) override;
    ObjectId GetGlobalDataByAddress(std::uint64_t address) override;
    ObjectId CreateGlobalData(const std::string& symName, ObjectId objIdOfSymType,
                              std::uint64_t address, ObjectId objIdOfScopeParent,
                              bool addressIsValid, std::int16_t addressExtension,
                              bool addressExtensionIsValid) override;
    ObjectId GetFunction(const std::string& name, ObjectId functionType,
                         ObjectId objIdParentScope) override;
    ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                            ObjectId objIdParentScope, ObjectId objIdCompileUnit,
                            bool flag) override;
    ObjectId CreateFunction(const std::string& name, ObjectId objIdFunctionType,
                            bool hasParentScope) override;
    ObjectId GetFunctionType(ObjectId objIdOfReturnType,
                             const std::vector<ObjectId>& vecParameterTypes,
                             ObjectId objIdParentScope) override;
    ObjectId CreateFunctionType(ObjectId objIdOfReturnType,
                                const std::vector<ObjectId>& vecParameterTypes,
                                ObjectId objIdParentScope) override;
    ObjectId GetOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                     std::uint64_t bitSize, ObjectId objIdParentScope) override;
    ObjectId CreateOldBitfieldEntryType(ObjectId objIdOfBaseType, std::int32_t bitOffset,
                                        std::uint64_t bitSize, ObjectId objIdParentScope) override;
    ObjectId GetSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) override;
    ObjectId CreateSectionEntryType(std::uint64_t size, ObjectId objIdParentScope) override;
    ObjectId GetSegment(const std::string& segmentName) override;
    ObjectId CreateSegment(const std::string& segmentName, std::uint64_t address,
                           std::uint64_t size) override;
    void SetTransformed(bool transformedDataModel) override;

    /// @}

private:
    [[nodiscard]] ObjectKind KindOf(ObjectId id) const;
    /// Files what the reader creates but never asks for again. Done only when a host asks: most
    /// deliveries need no entry for it.
    void FileNewObjects();
    /// True if a datum of the type occupies space of its own, unlike one of an empty class.
    [[nodiscard]] bool HasData(ObjectId type) const;
    [[nodiscard]] bool HasDataAtStart(ObjectId classType) const;

    std::unique_ptr<ModelStore> mStore;
    /// Objects that `FileNewObjects` has seen.
    std::size_t mFiledCount = 0;
};

/// The former name of the class, for hosts that use it.
using DataModel = Model;

} // namespace Tessel::Norn::Brindle::DataModel
