#include "PackedTable.h"

namespace Tessel::Norn::Brindle::Program {

PackedTable::PackedTable(std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        mColumns.emplace_back(name, std::vector<std::uint64_t>());
    }
}

void PackedTable::AddRow(std::span<const std::uint64_t> cells) {
    auto column = mColumns.begin();
    for (const std::uint64_t cell : cells) {
        (column++)->second.push_back(cell);
    }
    ++mRowCount;
}

void PackedTable::Write(PackWriter& json) const {
    json.StartObject();
    WriteColumns(json);
    json.EndObject();
}

void PackedTable::WriteColumns(PackWriter& json) const {
    json.Key("count");
    json.Uint64(mRowCount);
    for (const auto& [name, numbers] : mColumns) {
        WriteColumn(json, name, numbers);
    }
}

} // namespace Tessel::Norn::Brindle::Program
