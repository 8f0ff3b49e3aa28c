#include "ImageDocument.h"

#include "MachineNames.h"

namespace Tessel::Norn::Brindle::Program {

namespace {

void WriteSection(JsonWriter& json, const DataModel::ImageSection& section) {
    json.StartObject();
    WriteField(json, "name", section.name);
    WriteField(json, "address", section.address);
    WriteField(json, "size", section.size);
    WriteField(json, "kind", SectionKindName(section.kind));
    WriteField(json, "fileSize", section.fileSize);
    json.EndObject();
}

} // namespace

std::string_view SectionKindName(DataModel::SectionKind kind) {
    using DataModel::SectionKind;
    switch (kind) {
    case SectionKind::Code:
        return "code";
    case SectionKind::ReadOnlyData:
        return "readOnlyData";
    case SectionKind::Zero:
        return "zero";
    case SectionKind::Data:
        break;
    }
    return "data";
}

void WriteImageField(JsonWriter& json, std::string_view key,
                     const DataModel::ImageDescription& image) {
    WriteKey(json, key);
    if (image.path.empty()) {
        json.Null();
        return;
    }
    json.StartObject();
    WriteField(json, "fileSize", image.fileSize);
    WriteField(json, "byteOrder",
               std::string_view(image.byteOrder == DataModel::ByteOrder::Big ? "big" : "little"));
    WriteField(json, "addressSize", std::uint64_t{image.AddressSize()});
    WriteField(json, "machine", std::uint64_t{image.machine});
    WriteField(json, "machineName", MachineName(image.container, image.machine));
    WriteField(json, "isLinked", image.isLinked);
    WriteField(json, "isWordAddressed", image.isWordAddressed);
    WriteKey(json, "sections");
    json.StartArray();
    for (const DataModel::ImageSection& section : image.sections) {
        WriteSection(json, section);
    }
    json.EndArray();
    json.EndObject();
}

} // namespace Tessel::Norn::Brindle::Program
