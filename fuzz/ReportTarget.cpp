// The page of a report about images whose names hold anything: no text ends the page's script, and
// all of them arrive.
//
// Input: a byte for the number of objects in the first of two images, and then objects: a byte for
// the kind, one for the length of the name, and the name.
#include "DifferencePack.h"
#include "ImagePack.h"
#include "ModelComparison.h"
#include "ReadSession.h"
#include "ReportBundle.h"
#include "ReportPage.h"
#include "ResultOutput.h"

#include "core/HostText.h"
#include "model/DataModel.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <cstdint>
#include <rapidjson/document.h>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Program;
using DataModel::ObjectId;
using Fuzzing::Require;

namespace {

constexpr std::string_view sHead = "<script>";
constexpr std::string_view sTail = "</script>";

/// An image, and the names that its report must show.
class NamedImage {
public:
    NamedImage()
        : mScope(mModel.GetGlobalNamespace())
        , mType(mModel.CreateBaseEntryType(DataModel::BasicTypes::UInt16, 2, mScope)) {
        mImage.path = "image";
    }

    void Add(std::uint8_t kind, const std::string& name) {
        mAddress += 4;
        switch (kind % 8) {
        case 0:
            mScope = mModel.CreateNamespace(name, mModel.GetGlobalNamespace());
            return;
        case 1:
            mScope = mModel.CreateCompileUnit(name);
            return;
        case 2:
            mType = mModel.CreateClassEntryType(name, 8, mScope, {}, false, true);
            mNames.insert(mModel.TypeText(mType));
            return;
        case 3:
            mModel.CreateMemberData(name, 2, mType, mAddress % 8, 0, false);
            // What a class has without a name is no member; any other type has none.
            if (!name.empty() && mModel.Object(mType).kind == DataModel::ObjectKind::Struct) {
                mNames.insert(name);
            }
            return;
        case 4:
            mType = mModel.CreateEnumTable(name, 2, mScope, false);
            mModel.AddEnumDescriptionToEnumTable(mType, kind, name);
            break;
        case 5:
            mImage.sections.push_back({name, mAddress, 4, 0, 0, DataModel::SectionKind::Zero});
            break;
        case 6:
            mResult.error = name;
            return;
        default:
            mModel.CreateGlobalData(name, mType, mAddress, mScope, true, 0, false);
            // Namespaces and compile units are on the page for what they contain.
            const std::string_view scope = mModel.Object(mScope).name;
            if (!name.empty() && !scope.empty()) {
                mNames.emplace(scope);
            }
        }
        mNames.insert(name);
    }

    ImagePack Pack() {
        mModel.DescribeImage(mImage);
        return {mModel, mResult.error, mResult, 1024};
    }

    [[nodiscard]] const DataModel::Model& Model() const { return mModel; }

    /// Checks the page's object of this image.
    void RequireNames(const rapidjson::Value& image) const {
        std::set<std::string_view> shown;
        for (const rapidjson::Value& text : image["texts"].GetArray()) {
            shown.insert({text.GetString(), text.GetStringLength()});
        }
        for (const std::string& name : mNames) {
            Require(shown.contains(name), "every name is on the page");
        }
        const rapidjson::Value& error = image["error"];
        Require(mResult.error == std::string_view(error.GetString(), error.GetStringLength()),
                "the page shows the error");
    }

private:
    DataModel::Model mModel;
    DataModel::ImageDescription mImage;
    ReadResult mResult;
    ObjectId mScope;
    ObjectId mType;
    std::uint32_t mAddress = 0;
    std::set<std::string> mNames;
};

/// The JSON between head and tail of a page.
rapidjson::Document DataOf(std::string_view page) {
    Require(page.starts_with(sHead) && page.ends_with(sTail), "the page is whole");
    page.remove_prefix(sHead.size());
    page.remove_suffix(sTail.size());
    Require(page.find('<') == std::string_view::npos, "no text ends the script or opens a comment");
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(page.data(), page.size());
    Require(!document.HasParseError(), "the data of a page is JSON");
    return document;
}

template <typename Write>
rapidjson::Document Written(Write&& write) {
    std::stringbuf page;
    ResultOutput output(page);
    write(output);
    output.Sync();
    return DataOf(page.view());
}

} // namespace

/// A page of nothing but its data.
std::string_view Program::ReportBundle() {
    return "<script>@BRINDLE_REPORT_DATA@</script>";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzzing::InputBytes input(data, size);
    NamedImage older;
    NamedImage newer;
    for (unsigned left = input.Byte(); !input.IsEmpty(); left -= left > 0 ? 1 : 0) {
        const std::uint8_t kind = input.Byte();
        const std::size_t length = input.Byte();
        (left > 0 ? older : newer).Add(kind, Reader::DWARF::ToHostText(input.Take(length)));
    }
    const ImagePack oldPack = older.Pack();
    const ImagePack newPack = newer.Pack();
    const DifferencePack differences(older.Model(), newer.Model(), {}, oldPack, newPack);
    const auto one = Written([&](ResultOutput& output) { WriteReport(oldPack, output); });
    older.RequireNames(one["images"][0]);
    const auto both =
        Written([&](ResultOutput& output) { WriteReport(oldPack, newPack, differences, output); });
    older.RequireNames(both["images"][0]);
    newer.RequireNames(both["images"][1]);
    return 0;
}
