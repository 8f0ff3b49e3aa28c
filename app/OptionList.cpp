#include "OptionList.h"

#include "ResultOutput.h"
#include "TableWriter.h"

#include "core/OptionTable.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct TypeName {
    std::string_view operator()(const std::int32_t* /*variable*/) const { return "integer"; }
    std::string_view operator()(const std::uint64_t* /*variable*/) const { return "integer"; }
    std::string_view operator()(const bool* /*variable*/) const { return "boolean"; }
    std::string_view operator()(const std::string* /*variable*/) const { return "text"; }
};

struct ValueText {
    std::string operator()(const std::int32_t* variable) const { return std::to_string(*variable); }
    std::string operator()(const std::uint64_t* variable) const {
        return std::to_string(*variable);
    }
    std::string operator()(const bool* variable) const { return *variable ? "true" : "false"; }
    std::string operator()(const std::string* variable) const { return *variable; }
};

} // namespace

ExitStatus ListReaderOptions(ResultOutput& output) {
    static constexpr std::array columns = {Column{"option"}, Column{"type"}, Column{"start"},
                                           Column{"meaning"}};
    const auto table = MakeTableWriter(TableFormat::Table, columns, output, StandardOutputStyle());
    for (const Reader::DWARF::OptionDescription& option : Reader::DWARF::OptionTable()) {
        const std::string value = std::visit(ValueText(), option.variable);
        table->AddRow(std::array<Cell, columns.size()>{
            option.name, std::visit(TypeName(), option.variable), value, option.meaning});
    }
    table->Finish();
    return ExitStatus::Success;
}

} // namespace Tessel::Norn::Brindle::Program
