// The members of one class or union by name and by offset. The symbol index makes one for each type
// that it meets, so that a structure of a thousand members is searched once instead of for each
// symbol.
#pragma once

#include "model/DataModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

struct Member {
    std::string_view name;
    DataModel::ObjectId type = 0;
    /// Offset from the start of the class, in bytes.
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    bool isBitField = false;
    std::uint32_t bitOffset = 0;
    std::uint64_t bitSize = 0;
};

/// Members of anonymous members and of base classes count as members of the class. The nearest
/// member of a name has the plain name; the others have their base class before it, as in
/// "Named::id".
class MemberTable {
public:
    /// @param model must outlive the table, which views its names
    MemberTable(const DataModel::Model& model, DataModel::ObjectId type);

    /// Null if there is no member of the name.
    [[nodiscard]] const Member* Find(std::string_view name) const;

    /// In the order of their offsets.
    [[nodiscard]] const std::vector<Member>& All() const { return mMembers; }

    /// Calls `visit` with each member that holds the byte at an offset, the last one first.
    template <typename Visitor>
    void ForEachAt(std::uint64_t offset, Visitor&& visit) const {
        auto position = static_cast<std::size_t>(
            std::ranges::upper_bound(mMembers, offset, {}, &Member::offset) - mMembers.begin());
        while (position > 0 && mReach[position - 1] > offset) {
            --position;
            if (offset - mMembers[position].offset < mMembers[position].size) {
                visit(mMembers[position]);
            }
        }
    }

private:
    struct Part;

    void AddPart(const DataModel::Model& model, const Part& part, std::deque<Part>& pending);
    void Add(const Member& member, const Part& part);

    std::vector<Member> mMembers;
    /// For each member, the largest end among it and all members before it.
    std::vector<std::uint64_t> mReach;
    std::unordered_map<std::string_view, std::size_t> mByName;
    /// Names with a base class before them.
    std::deque<std::string> mLongNames;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
