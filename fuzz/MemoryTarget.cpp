// Whole reads over the C interface, from a file and from the same bytes in memory: one result, one
// model.
//
// Input: as for the target "read".
#include "nodes/VDebugInfoNode.h"
#include "support/InputFile.h"
#include "support/ReadChoices.h"
#include "support/Require.h"
#include "support/ScopedReaderState.h"

#include <algorithm>
#include <brindle/brindle.h>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

using namespace Tessel::Norn::Brindle;
using Lines = std::vector<std::string>;

namespace {

template <typename Structure>
Structure Sized() {
    Structure structure = {};
    structure.struct_size = sizeof structure;
    return structure;
}

std::string_view View(const brindle_text& text) {
    return {text.data, text.size};
}

template <typename... Numbers>
std::string Line(std::string_view name, Numbers... numbers) {
    return (std::string(name) + ... + (" " + std::to_string(numbers)));
}

/// Every object in the order of creation, and the sections with their first bytes.
void AddModel(brindle_model model, Lines& lines) {
    auto object = Sized<brindle_object>();
    for (brindle_id id = 1; brindle_model_object(model, id, &object) == BRINDLE_OK; ++id) {
        lines.push_back(Line(View(object.name), object.kind, object.basic_type, object.scope,
                             object.type, object.compile_unit, object.size, object.address,
                             object.offset, object.bit_offset, object.bit_size, object.list_length,
                             object.anonymous));
    }
    auto image = Sized<brindle_image>();
    brindle_model_image(model, &image);
    lines.push_back(Line("image", image.file_size, image.byte_order, image.address_size,
                         image.machine, image.section_count));
    auto section = Sized<brindle_section>();
    for (std::size_t index = 0; brindle_model_section(model, index, &section) == BRINDLE_OK;
         ++index) {
        std::uint8_t bytes[16] = {};
        const std::size_t count = std::min<std::uint64_t>(section.size, sizeof bytes);
        const brindle_status status =
            brindle_model_initial_bytes(model, section.address, bytes, count);
        lines.push_back(Line(View(section.name), section.address, section.size, status));
        lines.emplace_back(bytes, bytes + sizeof bytes);
    }
}

/// What a host learns of one read.
Lines Read(const brindle_input& input, bool allTypes) {
    Reader::DWARF::nGlobalLexicalBlockCounter = 0;
    brindle_reader reader = nullptr;
    brindle_model model = nullptr;
    brindle_reader_create(&reader);
    brindle_reader_set_read_all_types(reader, allTypes ? 1 : 0);
    const brindle_status status = brindle_reader_read_input(reader, &input, &model);
    Fuzzing::Require(status == BRINDLE_OK || status == BRINDLE_READ_FAILED,
                     "a read ends well or fails");
    char text[1024] = {};
    brindle_reader_error_text(reader, text, sizeof text, nullptr);
    Lines lines = {brindle_status_text(status), text};
    for (std::size_t index = 0;
         brindle_reader_remark_at(reader, index, nullptr, text, sizeof text, nullptr) == BRINDLE_OK;
         ++index) {
        lines.emplace_back(text);
    }
    AddModel(model, lines);
    brindle_model_destroy(model);
    brindle_reader_destroy(reader);
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes bytes(data, size);
    const Fuzzing::ReadChoices choices = Fuzzing::ApplyChoices(bytes);
    const std::string& path = Fuzzing::WriteInputFile(bytes.Rest());
    auto input = Sized<brindle_input>();
    input.path = path.c_str();
    input.container = static_cast<brindle_container>(choices.container);
    input.waits = 1;
    const Lines fromFile = Read(input, choices.allTypes);
    // A copy, so that a read past the end is noticed.
    const std::vector<char> copy(bytes.Rest().begin(), bytes.Rest().end());
    input.bytes = copy.empty() ? "" : copy.data();
    input.byte_count = copy.size();
    const Lines fromMemory = Read(input, choices.allTypes);
    const auto [first, second] = std::ranges::mismatch(fromFile, fromMemory);
    if (first != fromFile.end() || second != fromMemory.end()) {
        std::fprintf(stderr, "file:   %s\nmemory: %s\n",
                     first != fromFile.end() ? first->c_str() : "(none)",
                     second != fromMemory.end() ? second->c_str() : "(none)");
        Fuzzing::Require(false, "memory reads like a file");
    }
    return 0;
}
