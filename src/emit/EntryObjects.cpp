// What the factory receives for each kind of node, once its scope and type are delivered: the
// versions of `CreateEntryObject`, and the needs that they rely on.
#include "core/ModuleInfo.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/BaseTypes.h"
#include "emit/VCLIFactoryWrapper.h"
#include "emit/VNodeEmission.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "nodes/VDebugInfoNodeConstants.h"
#include "nodes/VDebugInfoNodeDerivedTypes.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr EntryNeed sScopeNeed[] = {EntryNeed::Scope};
/// An unknown type lies in the global namespace.
constexpr EntryNeed sUnknownTypeNeeds[] = {EntryNeed::Guard};
constexpr EntryNeed sTypeNeeds[] = {EntryNeed::Scope, EntryNeed::Type};
constexpr EntryNeed sEnumerationNeeds[] = {EntryNeed::Scope, EntryNeed::BaseType};
constexpr EntryNeed sFunctionTypeNeeds[] = {EntryNeed::Scope, EntryNeed::Type,
                                            EntryNeed::Parameters};
constexpr EntryNeed sCompileUnitNeeds[] = {EntryNeed::FirstUnit};
constexpr EntryNeed sSubprogramNeeds[] = {EntryNeed::Scope, EntryNeed::CompileUnit,
                                          EntryNeed::Guard, EntryNeed::FunctionScope,
                                          EntryNeed::ReturnType};

constexpr std::int16_t sNoExtension = 0;

std::uint64_t Widened(std::int32_t byteSize) {
    return static_cast<std::uint64_t>(std::int64_t{byteSize});
}

/// One delivery: the node, and what was found for it.
class EntryObject {
public:
    EntryObject(VDebugInfoNode& node, VNodeEmission& emission, const EmissionInputs& inputs)
        : mNode(node)
        , mEmission(emission)
        , mFactory(emission.Factory())
        , mInputs(inputs) {}

    ObjectId CreateClass(bool isStruct) {
        const std::string_view name = TypeName();
        return mFactory.CreateClassEntryType(name, UnsignedSize(), mInputs.scope, {},
                                             mNode.HasAnonymousName(), isStruct);
    }

    ObjectId CreateUnion() {
        const std::string_view name = TypeName();
        return mFactory.CreateUnionEntryType(name, UnsignedSize(), mInputs.scope,
                                             mNode.HasAnonymousName());
    }

    ObjectId CreatePointer() {
        return mFactory.CreatePointerEntryType(mInputs.type, Widened(mNode.GetByteSize()),
                                               mInputs.scope);
    }

    ObjectId CreateBaseType() {
        return mFactory.CreateBaseEntryType(mNode.ConvertBaseTypeForSymbolProvider(),
                                            Widened(mNode.GetByteSize()), mInputs.scope);
    }

    /// A base type whose value fits its size; an unknown type if the contract lacks its kind or
    /// can't express its byte order.
    ObjectId CreateBaseTypeOfItsSize(std::uint32_t encoding) {
        const std::optional<BasicType> code =
            BasicTypeOfItsSize(encoding, UnsignedSize(), mNode.GetName());
        const bool hasOtherOrder = mNode.HasOtherByteOrder() && mNode.GetByteSize() > 1;
        return code && !hasOtherOrder ? mFactory.CreateBaseEntryType(
                                            *code, Widened(mNode.GetByteSize()), mInputs.scope)
                                      : GetOrCreateUnknownType();
    }

    /// A range that occupies other bytes than its base type: its values are numbers of its size,
    /// unsigned if none of them is negative.
    ObjectId GetOrCreateRange() {
        const auto& range = static_cast<const VDebugInfoNodeSubrange&>(mNode);
        const VAttributeValue& lowest = range.GetLowerBound();
        const bool hasNoSign = lowest.IsDefined() && !lowest.IsReference() &&
                               static_cast<std::int32_t>(lowest.ToInteger()) >= 0;
        const VDebugInfoNode* base = mNode.GetBaseTypeNode();
        const std::uint32_t encoding =
            hasNoSign || base == nullptr ? DW_ATE_unsigned : base->GetEncoding();
        return CreateBaseTypeOfItsSize(encoding);
    }

    ObjectId GetOrCreateUnknownType() {
        return mEmission.Section().GetUnknownEntryTypeObject(UnsignedSize());
    }

    ObjectId CreateUnspecifiedType() {
        return mFactory.CreateBaseEntryType(BasicType::Void, 0, mInputs.scope);
    }

    ObjectId CreateTypedef(bool& alreadyRegistered) {
        Name();
        if (mNode.IsTypedefOfSameName()) {
            alreadyRegistered = true;
            return mInputs.type;
        }
        return mFactory.CreateTypedefEntryType(mNode.GetName(), mInputs.type, mInputs.scope);
    }

    ObjectId GetOrCreateNamespace() {
        const std::string_view name = Name();
        const ObjectId existing = mFactory.GetNamespace(name, mInputs.scope);
        return existing != 0 ? existing : mFactory.CreateNamespace(name, mInputs.scope);
    }

    ObjectId CreateBlock() {
        std::string name;
        mNode.GetLexicalBlockName(name);
        return mFactory.CreateBlockScope(name, mInputs.scope);
    }

    ObjectId CreateCompileUnit(bool& alreadyRegistered) {
        const std::string_view name = Name();
        VDebugInfoNode* first = FirstUnitOfKind();
        alreadyRegistered = first != &mNode;
        const ObjectId object =
            alreadyRegistered ? mInputs.compileUnit : mFactory.CreateCompileUnit(name);
        mNode.GetCompileUnitHeader()->mCompileUnitNode = first;
        return object;
    }

    ObjectId CreateMember() { return CreateMember(mInputs.type); }

    ObjectId CreateMember(ObjectId type) {
        const std::string_view name = Name();
        const VDebugInfoNode* parent = mNode.GetParent();
        if (parent != nullptr && parent->GetTag() == DW_TAG_union_type) {
            return mFactory.CreateUnionMemberData(name, type, mInputs.scope,
                                                  mNode.GetMemberOffset(), sNoExtension, false);
        }
        if (mNode.GetBitSize() != 0) {
            return CreateBitField();
        }
        return mFactory.CreateMemberData(name, type, mInputs.scope, mNode.GetMemberOffset(),
                                         sNoExtension, false);
    }

    /// The type of a member without bits. A bit field whose bits can't be expressed becomes as many
    /// bytes as hold it.
    ObjectId TypeOfMember() {
        const bool wasBitField = mNode.GetBitNumbering() != BitNumbering::Unsaid;
        const VDebugInfoNode* type = wasBitField ? mNode.GetPlainTypeNode() : nullptr;
        return type != nullptr && type->HasOtherByteOrder() &&
                       type->GetByteSize() != mNode.GetByteSize()
                   ? GetOrCreateUnknownType()
                   : mInputs.type;
    }

    ObjectId CreateBitField() {
        return mFactory.CreateBitfieldInUdt(Name(), mInputs.type, mInputs.scope,
                                            mNode.GetMemberOffset(), mNode.GetBitOffset(),
                                            mNode.GetBitSize(), sNoExtension, false);
    }

    ObjectId CreateSubprogram() {
        const std::string_view name = Name();
        const ObjectId type = CreateFunctionTypeObject();
        return mFactory.CreateFunction(name, type, mInputs.scope, mInputs.compileUnit);
    }

    bool CreateVariable(ObjectId& object) {
        std::string name(Name());
        const bool isInGlobalNamespace = mNode.IsGlobalVariable() && mInputs.scopeNode != nullptr &&
                                         mInputs.scopeNode->GetTag() == DW_TAG_compile_unit;
        const ObjectId scope = isInGlobalNamespace ? mFactory.GetGlobalNamespace() : mInputs.scope;
        const std::uint64_t address = mNode.GetLocationAddress() - ModuleInfo::GetModuleOffset();
        if (mFactory.GetGlobalData(name, scope) != 0) {
            std::string newName;
            if (!mEmission.Variables().MakeUniqueName(scope, name, newName, address)) {
                return false;
            }
            name = std::move(newName);
        }
        object = mFactory.CreateGlobalData(name, mInputs.type, scope, address, true, sNoExtension,
                                           false);
        mEmission.Variables().Register(object, mNode);
        return true;
    }

    ObjectId CreateEnumeration() {
        const std::string_view name = TypeName();
        const ObjectId table =
            mFactory.CreateEnumTable(name, mInputs.type, mInputs.scope, mNode.HasAnonymousName());
        if (table != 0) {
            AddEnumerators(table);
        }
        return table;
    }

    ObjectId CreateArray() {
        if (mNode.GetByteSize() > 0 && mNode.AsArrayNode()->HasScatteredElements()) {
            return GetOrCreateUnknownType();
        }
        return mFactory.CreateArrayEntryType(mNode.AsArrayNode()->GetDimensions(), mInputs.type,
                                             Widened(mNode.GetByteSize()), mInputs.scope);
    }

    ObjectId CreateFunctionType() {
        Name();
        return mFactory.CreateFunctionType(
            mInputs.type, {mInputs.parameters.begin(), mInputs.parameters.end()}, mInputs.scope);
    }

private:
    /// The name for the host. Comes first, since it also decides whether the name is anonymous.
    std::string_view Name() {
        std::string_view name;
        mNode.GetEntryName(name, mEmission.Section());
        return name;
    }

    /// The name of a type, even if the entry that it completes has none.
    std::string_view TypeName() {
        const std::string_view name = Name();
        return !name.empty() ? name : mEmission.Rules().nameOfNameless(mNode);
    }

    [[nodiscard]] std::uint32_t UnsignedSize() const {
        return static_cast<std::uint32_t>(mNode.GetByteSize());
    }

    /// The first unit of this unit's kind. If units overlap, one may begin with an entry whose
    /// place is taken. The passes don't see its node, which then is the first of its kind itself.
    VDebugInfoNode* FirstUnitOfKind() {
        VDebugInfoNode* first = mNode.GetFirstKindOfCompileUnit();
        return first != nullptr ? first : &mNode;
    }

    /// The function type of a subprogram. Its parameters are not delivered.
    ObjectId CreateFunctionTypeObject() {
        return mFactory.CreateFunctionType(mInputs.type, {}, mInputs.functionScope);
    }

    void AddEnumerators(ObjectId table) {
        for (const VDebugInfoNode* child : mNode.Children()) {
            if (child->GetTag() == DW_TAG_enumerator && child->GetNameOrNull() != nullptr) {
                mEmission.Rules().addEnumerator(mFactory, table, mNode, *child);
            }
        }
    }

    VDebugInfoNode& mNode;
    VNodeEmission& mEmission;
    VCLIFactoryWrapper& mFactory;
    const EmissionInputs& mInputs;
};

std::span<const EntryNeed> ClassicNeedsOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_class_type:
    case DW_TAG_structure_type:
    case DW_TAG_union_type:
    case DW_TAG_base_type:
    case DW_TAG_unspecified_type:
    case DW_TAG_namespace:
    case DW_TAG_lexical_block:
        return sScopeNeed;
    case DW_TAG_pointer_type:
    case DW_TAG_reference_type:
    case DW_TAG_typedef:
    case DW_TAG_array_type:
    case DW_TAG_member:
    case DW_TAG_variable:
        return sTypeNeeds;
    case DW_TAG_enumeration_type:
        return sEnumerationNeeds;
    case DW_TAG_subroutine_type:
        return sFunctionTypeNeeds;
    case DW_TAG_compile_unit:
        return sCompileUnitNeeds;
    case DW_TAG_subprogram:
        return sSubprogramNeeds;
    default:
        return {};
    }
}

bool CreateClassicObject(VDebugInfoNode& node, VNodeEmission& emission,
                         const EmissionInputs& inputs, ObjectId& id, bool& alreadyRegistered) {
    EntryObject object(node, emission, inputs);
    switch (node.GetTag()) {
    case DW_TAG_class_type:
        id = object.CreateClass(false);
        return true;
    case DW_TAG_structure_type:
        id = object.CreateClass(true);
        return true;
    case DW_TAG_union_type:
        id = object.CreateUnion();
        return true;
    case DW_TAG_pointer_type:
    case DW_TAG_reference_type:
        id = object.CreatePointer();
        return true;
    case DW_TAG_base_type:
        id = object.CreateBaseType();
        return true;
    case DW_TAG_unspecified_type:
        id = object.CreateUnspecifiedType();
        return true;
    case DW_TAG_typedef:
        id = object.CreateTypedef(alreadyRegistered);
        return true;
    case DW_TAG_namespace:
        id = object.GetOrCreateNamespace();
        return true;
    case DW_TAG_lexical_block:
        id = object.CreateBlock();
        return true;
    case DW_TAG_compile_unit:
        id = object.CreateCompileUnit(alreadyRegistered);
        return true;
    case DW_TAG_member:
        id = object.CreateMember();
        return true;
    case DW_TAG_subprogram:
        id = object.CreateSubprogram();
        return true;
    case DW_TAG_variable:
        return object.CreateVariable(id);
    default:
        return false;
    }
}

VDebugInfoNode* ClassicNextOf(const VDebugInfoNode& structure, VDebugInfoNode& entry,
                              std::uint32_t& /*depth*/) {
    return entry.NextSiblingIn(structure);
}

/// False if a child has got another scope, from which no way leads back here, or if there is none.
bool HoldsItsChildren(const VDebugInfoNode& entry) {
    const auto children = entry.Children();
    return entry.FirstChild() != nullptr &&
           std::all_of(children.begin(), children.end(), [&entry](const VDebugInfoNode* child) {
               return child->GetParent() == &entry;
           });
}

/// Variants and what is in them count as entries of the structure:
///
///     structure_type  member "kind"  variant_part            kind, variant_part,
///                                      variant member "a"    variant, a,
///                                      variant member "b"    variant, b
VDebugInfoNode* FullNextOf(const VDebugInfoNode& structure, VDebugInfoNode& entry,
                           std::uint32_t& depth) {
    if (IsOfVariants(entry.GetTag()) && HoldsItsChildren(entry)) {
        ++depth;
        return entry.FirstChild();
    }
    const VDebugInfoNode* last = &entry;
    for (; depth > 0; --depth) {
        const VDebugInfoNode* around = last->GetParent();
        if (VDebugInfoNode* next = last->NextSiblingIn(*around)) {
            return next;
        }
        last = around;
    }
    return last->NextSiblingIn(structure);
}

std::string_view ClassicNameOfNameless(VDebugInfoNode& /*type*/) {
    return {};
}

std::string_view FullNameOfNameless(VDebugInfoNode& type) {
    type.SetAnonymousName(true);
    return type.GetDefaultName();
}

void AddClassicEnumerator(VCLIFactoryWrapper& factory, ObjectId table,
                          const VDebugInfoNode& /*enumeration*/, const VDebugInfoNode& enumerator) {
    const std::int64_t value = enumerator.GetConstValueAttribute().ToInteger();
    factory.AddEnumDescriptionToEnumTable(table, static_cast<std::int32_t>(value),
                                          enumerator.GetName());
}

/// Leaves out an enumerator whose value the reader can't know, such as one of 16 bytes: no value is
/// better than a wrong one.
void AddFullEnumerator(VCLIFactoryWrapper& factory, ObjectId table,
                       const VDebugInfoNode& enumeration, const VDebugInfoNode& enumerator) {
    const VAttributeValue& constant = enumerator.GetConstValueAttribute();
    if (!constant.IsDefined()) {
        return;
    }
    const std::int64_t value = constant.ToInteger();
    const auto narrow = static_cast<std::int32_t>(value);
    // In 4 bytes, -1 and 4294967295 are one value. Without an integer type, only the values tell
    // whether the enumeration has a sign.
    const bool isOneValue = enumeration.GetTypeNode() != nullptr &&
                            static_cast<std::uint32_t>(enumeration.GetByteSize()) <= sizeof narrow;
    const bool isNarrow = value == narrow ||
                          (isOneValue && value == std::int64_t{static_cast<std::uint32_t>(narrow)});
    if (isNarrow) {
        factory.AddEnumDescriptionToEnumTable(table, narrow, enumerator.GetName());
    } else {
        factory.AddWideEnumDescriptionToEnumTable(table, value, enumerator.GetName());
    }
}

std::span<const EntryNeed> FullNeedsOf(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_rvalue_reference_type:
    case DW_TAG_subrange_type:
        return sTypeNeeds;
    case DW_TAG_ptr_to_member_type:
    case DW_TAG_string_type:
    case DW_TAG_set_type:
    case DW_TAG_file_type:
        return sUnknownTypeNeeds;
    default:
        return ClassicNeedsOf(tag);
    }
}

bool CreateFullObject(VDebugInfoNode& node, VNodeEmission& emission, const EmissionInputs& inputs,
                      ObjectId& id, bool& alreadyRegistered) {
    EntryObject object(node, emission, inputs);
    switch (node.GetTag()) {
    case DW_TAG_rvalue_reference_type:
        id = object.CreatePointer();
        return true;
    case DW_TAG_subrange_type:
        id = object.GetOrCreateRange();
        return true;
    case DW_TAG_ptr_to_member_type:
    case DW_TAG_string_type:
    case DW_TAG_set_type:
    case DW_TAG_file_type:
        id = object.GetOrCreateUnknownType();
        return true;
    case DW_TAG_base_type:
        id = object.CreateBaseTypeOfItsSize(node.GetEncoding());
        return true;
    case DW_TAG_member:
        id = node.GetBitSize() != 0 ? object.CreateBitField()
                                    : object.CreateMember(object.TypeOfMember());
        return true;
    default:
        return CreateClassicObject(node, emission, inputs, id, alreadyRegistered);
    }
}

} // namespace

const DeliveryRules& DeliveryRules::Of(ReadingManner manner) {
    static constexpr DeliveryRules sClassic{ClassicNeedsOf, CreateClassicObject, ClassicNextOf,
                                            ClassicNameOfNameless, AddClassicEnumerator};
    static constexpr DeliveryRules sFull{FullNeedsOf, CreateFullObject, FullNextOf,
                                         FullNameOfNameless, AddFullEnumerator};
    return manner == ReadingManner::Full ? sFull : sClassic;
}

ObjectId VDebugInfoNode::GetOrCreateEntryObject(VDwarf2Section& section,
                                                VCLIFactoryWrapper& factory,
                                                const char* /*label*/) {
    return VNodeEmission(section, factory).Deliver(*this);
}

bool VDebugInfoNode::CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs,
                                       ObjectId& id, bool& alreadyRegistered) {
    if (GetEntryObject() != 0 && mTag != DW_TAG_compile_unit) {
        return false;
    }
    return emission.Rules().createObject(*this, emission, inputs, id, alreadyRegistered);
}

bool VDebugInfoNodeEnumType::CreateEntryObject(VNodeEmission& emission,
                                               const EmissionInputs& inputs, ObjectId& id,
                                               bool& /*alreadyRegistered*/) {
    if (GetEntryObject() != 0) {
        return false;
    }
    id = EntryObject(*this, emission, inputs).CreateEnumeration();
    return true;
}

bool VDebugInfoNodeEnumerator::CreateEntryObject(VNodeEmission& /*emission*/,
                                                 const EmissionInputs& /*inputs*/, ObjectId& /*id*/,
                                                 bool& /*alreadyRegistered*/) {
    return false;
}

bool VDebugInfoNodeArray::CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs,
                                            ObjectId& id, bool& /*alreadyRegistered*/) {
    if (GetEntryObject() != 0) {
        return false;
    }
    id = EntryObject(*this, emission, inputs).CreateArray();
    return true;
}

bool VDebugInfoSubroutineType::CreateEntryObject(VNodeEmission& emission,
                                                 const EmissionInputs& inputs, ObjectId& id,
                                                 bool& /*alreadyRegistered*/) {
    if (GetEntryObject() != 0) {
        return false;
    }
    id = EntryObject(*this, emission, inputs).CreateFunctionType();
    return true;
}

BasicType VDebugInfoNode::ConvertBaseTypeForSymbolProvider() const {
    return BasicTypeOfEncoding(GetEncoding(), static_cast<std::uint32_t>(mByteSize));
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
