#include "ReportPage.h"

#include "DifferencePack.h"
#include "ImagePack.h"
#include "PackedColumns.h"
#include "ReportBundle.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Marks the place of the data in the bundle.
constexpr std::string_view sPlaceOfData = "@BRINDLE_REPORT_DATA@";

/// @param writeImages writes the fields of an object that has begun
template <typename WriteContents>
void WritePage(ResultOutput& output, const WriteContents& writeContents) {
    const std::string_view bundle = ReportBundle();
    const std::size_t place = bundle.find(sPlaceOfData);
    output.Write(bundle.substr(0, place));
    ScriptOutput script(output);
    PackWriter json(script);
    json.StartObject();
    json.Key("format");
    json.Uint(1);
    json.Key("version");
    json.String(BRINDLE_VERSION);
    writeContents(json);
    json.EndObject();
    output.Write(bundle.substr(place + sPlaceOfData.size()));
}

} // namespace

void WriteReport(const ImagePack& image, ResultOutput& output) {
    WritePage(output, [&](PackWriter& json) {
        json.Key("images");
        json.StartArray();
        image.Write(json);
        json.EndArray();
    });
}

void WriteReport(const ImagePack& oldImage, const ImagePack& newImage,
                 const DifferencePack& differences, ResultOutput& output) {
    WritePage(output, [&](PackWriter& json) {
        json.Key("images");
        json.StartArray();
        oldImage.Write(json);
        newImage.Write(json);
        json.EndArray();
        json.Key("differences");
        differences.Write(json);
    });
}

} // namespace Tessel::Norn::Brindle::Program
