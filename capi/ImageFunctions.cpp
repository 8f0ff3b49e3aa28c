// The functions of the C interface that describe a file: its target, its sections and their bytes.
#include "ModelCalls.h"

#include "host/ImageDescription.h"

#include <algorithm>
#include <array>

using namespace Tessel::Norn::Brindle;
using CInterface::ForModel;
using CInterface::GiveFound;
using CInterface::ModelState;
using CInterface::TextOf;
using DataModel::ImageDescription;
using DataModel::ImageSection;
using DataModel::SectionKind;

namespace {

/// The number of each kind, in the order of `SectionKind`.
constexpr std::array sSectionKinds = {
    std::pair{SectionKind::Code, BRINDLE_SECTION_CODE},
    std::pair{SectionKind::ReadOnlyData, BRINDLE_SECTION_READ_ONLY_DATA},
    std::pair{SectionKind::Data, BRINDLE_SECTION_DATA},
    std::pair{SectionKind::Zero, BRINDLE_SECTION_ZERO},
};

constexpr brindle_section_kind KindOf(SectionKind kind) {
    return sSectionKinds[static_cast<std::size_t>(kind)].second;
}

static_assert(std::ranges::all_of(sSectionKinds, [](const auto& entry) {
    return entry.second == KindOf(entry.first);
}));

brindle_image Described(const ImageDescription& image) {
    brindle_image description = {};
    description.path = TextOf(image.path);
    description.file_size = image.fileSize;
    description.container = static_cast<brindle_container>(image.container);
    description.byte_order =
        image.byteOrder == DataModel::ByteOrder::Big ? BRINDLE_BIG_ENDIAN : BRINDLE_LITTLE_ENDIAN;
    description.address_size = image.AddressSize();
    description.machine = image.machine;
    description.is_linked = image.isLinked ? 1 : 0;
    description.is_word_addressed = image.isWordAddressed ? 1 : 0;
    description.section_count = image.sections.size();
    description.has_contents = image.hasContents ? 1 : 0;
    return description;
}

brindle_section Described(const ImageSection& section) {
    brindle_section description = {};
    description.name = TextOf(section.name);
    description.address = section.address;
    description.size = section.size;
    description.file_position = section.filePosition;
    description.file_size = section.fileSize;
    description.kind = KindOf(section.kind);
    return description;
}

} // namespace

brindle_status brindle_model_image(brindle_model model, brindle_image* image) {
    if (!CInterface::GiveStructure(brindle_image{}, image)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForModel(model, [&](ModelState& state) {
        brindle_image description = Described(state.Model().Image());
        const std::uint64_t pointerSize = state.PointerSize();
        description.pointer_size =
            pointerSize != 0 ? static_cast<int32_t>(pointerSize) : description.address_size;
        CInterface::GiveStructure(description, image);
        return BRINDLE_OK;
    });
}

brindle_status brindle_model_section(brindle_model model, size_t index, brindle_section* section) {
    return GiveFound(model, section,
                     [&](const DataModel::Model& data) -> std::optional<brindle_section> {
                         const auto& sections = data.Image().sections;
                         return index < sections.size() ? std::optional(Described(sections[index]))
                                                        : std::nullopt;
                     });
}

brindle_status brindle_model_initial_bytes(brindle_model model, uint64_t address, void* bytes,
                                           size_t size) {
    if (bytes == nullptr) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForModel(model, [&](ModelState& state) {
        const std::vector<std::uint8_t> found = state.InitialBytes(address, size);
        std::ranges::copy(found, static_cast<std::uint8_t*>(bytes));
        return found.empty() ? BRINDLE_NOT_FOUND : BRINDLE_OK;
    });
}
