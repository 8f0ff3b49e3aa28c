#include "a2l/MemberTable.h"

#include "ObjectKinds.h"

#include "a2l/Identifiers.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

/// Stops at this many parts: a class that contains itself would have no end of them.
constexpr std::size_t sMostParts = 1000;

} // namespace

/// A class or union whose members count as those of the class.
struct MemberTable::Part {
    ObjectId type = 0;
    std::uint64_t offset = 0;
    /// The nearest base class around it, followed by "::"; empty in the class itself.
    std::string qualifier;
};

MemberTable::MemberTable(const DataModel::Model& model, ObjectId type) {
    std::deque<Part> pending;
    pending.push_back({type, 0, {}});
    for (std::size_t parts = 0; !pending.empty() && parts < sMostParts; ++parts) {
        const Part part = std::move(pending.front());
        pending.pop_front();
        AddPart(model, part, pending);
    }
    // The map holds indices, which have to follow the members to their new places.
    std::vector<std::size_t> order(mMembers.size());
    for (std::size_t index = 0; index < order.size(); ++index) {
        order[index] = index;
    }
    std::ranges::stable_sort(order, {},
                             [this](std::size_t index) { return mMembers[index].offset; });
    std::vector<std::size_t> placeOf(order.size());
    std::vector<Member> sorted;
    sorted.reserve(order.size());
    for (const std::size_t index : order) {
        placeOf[index] = sorted.size();
        sorted.push_back(mMembers[index]);
    }
    mMembers = std::move(sorted);
    for (auto& [name, place] : mByName) {
        place = placeOf[place];
    }
    std::uint64_t reach = 0;
    for (const Member& member : mMembers) {
        reach = std::max(reach, member.offset + member.size);
        mReach.push_back(reach);
    }
}

void MemberTable::AddPart(const DataModel::Model& model, const Part& part,
                          std::deque<Part>& pending) {
    std::vector<Part> anonymous;
    model.ForEachIn(part.type, [&](const ModelObject& object) {
        if (!IsMember(object.kind)) {
            return;
        }
        const std::uint64_t offset = part.offset + object.offset;
        if (!object.name.empty()) {
            Add({object.name, object.type, offset, model.SizeOf(object.type),
                 object.kind == ObjectKind::BitField, object.bitOffset, object.bitSize},
                part);
        } else if (const ObjectId type = model.WithoutTypedefs(object.type);
                   HasMembers(model.Object(type).kind)) {
            anonymous.push_back({type, offset, part.qualifier});
        }
    });
    // Anonymous members are nearer than any base class.
    pending.insert(pending.begin(), anonymous.begin(), anonymous.end());
    for (const DataModel::BaseClass& base : model.PlacedBaseClasses(part.type)) {
        const ObjectId type = model.WithoutTypedefs(base.type);
        const std::string_view name = model.Object(type).name;
        pending.push_back({type, part.offset + base.offset,
                           name.empty() ? part.qualifier : std::string(name).append("::")});
    }
}

void MemberTable::Add(const Member& member, const Part& part) {
    const bool isNew = mByName.try_emplace(member.name, mMembers.size()).second;
    bool isQualified = false;
    if (!part.qualifier.empty()) {
        mLongNames.push_back(part.qualifier + std::string(member.name));
        isQualified = mByName.try_emplace(mLongNames.back(), mMembers.size()).second;
    }
    if (!isNew && !isQualified) {
        return;
    }
    mMembers.push_back(member);
    if (!isNew) {
        mMembers.back().name = mLongNames.back();
    }
    // An identifier for a name that A2L doesn't allow.
    if (const std::string_view name = mMembers.back().name; MakeIdentifier(name) != name) {
        mLongNames.push_back(MakeIdentifier(name));
        mByName.try_emplace(mLongNames.back(), mMembers.size() - 1);
    }
}

const Member* MemberTable::Find(std::string_view name) const {
    const auto found = mByName.find(name);
    return found == mByName.end() ? nullptr : &mMembers[found->second];
}

} // namespace Tessel::Norn::Brindle::Program::A2l
