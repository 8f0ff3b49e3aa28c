// Descriptions for measurement and calibration tools, updated from a fixed model.
//
// Input: a byte of choices, then the text of the main file. It may include itself as "main" and a
// file named "part".
#include "a2l/Parser.h"
#include "a2l/Update.h"
#include "model/DataModel.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Program::A2l;
using DataModel::ObjectId;

namespace {

constexpr const char* sPart = "/begin BLOB a \"\" 0x10 4 SYMBOL_LINK \"s.m\" 0 /end BLOB\n";

void Fill(DataModel::Model& model) {
    const ObjectId global = model.GetGlobalNamespace();
    const ObjectId integer = model.CreateBaseEntryType(DataModel::BasicTypes::UInt16, 2, global);
    const ObjectId mode = model.CreateEnumTable("mode", integer, global, false);
    model.AddEnumDescriptionToEnumTable(mode, 1, "ON");
    const ObjectId node = model.CreateClassEntryType("node", 16, global, {}, false, true);
    model.CreateMemberData("m", mode, node, 0, 0, false);
    model.CreateBitfieldInUdt("b", integer, node, 2, 3, 5, 0, false);
    model.CreateMemberData("t", model.CreateArrayEntryType({2, 3}, integer, 12, global), node, 4, 0,
                           false);
    model.CreateGlobalData("a", integer, 0x1000, global, true, 0, false);
    model.CreateGlobalData("s", node, 0x2000, global, true, 0, false);
    model.CreateGlobalData("far", integer, 0x123456789, global, true, 0, false);
    for (const char* unit : {"u_c", "v_c"}) {
        model.CreateGlobalData("x", integer, unit[0] == 'u' ? 0x3000 : 0x4000,
                               model.CreateCompileUnit(unit), true, 0, false);
    }
}

const DataModel::Model& Image() {
    static DataModel::Model* const sModel = [] {
        static DataModel::Model sFilled;
        Fill(sFilled);
        return &sFilled;
    }();
    return *sModel;
}

std::optional<Document> ParseMain(SourceSet& sources, const ParseChoices& choices) {
    try {
        return Parse(sources, sources.Open("main"), choices);
    } catch (const Fault& fault) {
        Fuzzing::Require(std::string(fault.what()).find(':') != std::string::npos,
                         "a fault says where it lies");
        return std::nullopt;
    }
}

SourceSet Files(const std::string& main) {
    return SourceSet([main](const std::string& path) {
        return path == "main"   ? std::optional(main)
               : path == "part" ? std::optional<std::string>(sPart)
                                : std::nullopt;
    });
}

bool Covers(const Span& span, const Source& source, const TextEdit& edit) {
    return span.source == &source && span.position == edit.position && span.length == edit.length;
}

/// A file written without changes must equal its input.
void RequireSameBytes(const SourceSet& sources, std::string_view bytes) {
    if (!sources.All().empty()) {
        const Source& main = *sources.All().front();
        std::string written;
        main.WriteEncoded(main.Bytes(), [&written](std::string_view text) { written += text; });
        Fuzzing::Require(written == bytes, "a file comes out as it went in");
    }
}

/// Every edit replaces exactly the number of an object.
void RequireOnlyNumbers(const Document& document, const UpdateResult& result) {
    for (const auto& editsOfSource : result.edits) {
        const Source& source = *editsOfSource.first;
        for (const TextEdit& edit : editsOfSource.second.All()) {
            const bool isNumber = std::ranges::any_of(document.objects, [&](const Object& object) {
                return Covers(object.address.span, source, edit) ||
                       Covers(object.bitMask.span, source, edit);
            });
            Fuzzing::Require(isNumber, "only addresses and masks change");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzzing::InputBytes input(data, size);
    const std::uint8_t bits = input.Byte();
    UpdateChoices choices;
    choices.hasBitMasks = (bits & 1U) != 0;
    choices.isBigEndian = (bits & 2U) != 0;
    choices.isWordAddressed = (bits & 4U) != 0;
    choices.missing = static_cast<MissingChoice>((bits >> 3U) % 3U);
    ParseChoices parseChoices;
    parseChoices.hasMentions = choices.missing == MissingChoice::Remove;
    static const SymbolIndex sIndex(Image());

    const std::string_view bytes = input.Rest();
    SourceSet sources = Files(std::string(bytes));
    const std::optional<Document> document = ParseMain(sources, parseChoices);
    RequireSameBytes(sources, bytes);
    if (!document) {
        return 0;
    }
    const UpdateResult result = Update(*document, Image(), sIndex, choices);
    if (choices.missing != MissingChoice::Remove) {
        RequireOnlyNumbers(*document, result);
    }
    const Source& main = *sources.All().front();
    std::string text;
    const auto edits = result.edits.find(&main);
    (edits == result.edits.end() ? TextEdits() : edits->second)
        .Write(main.Bytes(), [&text](std::string_view part) { text += part; });

    // The updated text is a description as well, in which nothing remains to be changed.
    SourceSet updated = Files(text);
    const std::optional<Document> again = ParseMain(updated, parseChoices);
    const bool mayBeEmpty = choices.missing == MissingChoice::Remove;
    Fuzzing::Require(again.has_value() || mayBeEmpty, "an updated description can be read");
    if (again && !mayBeEmpty) {
        const UpdateResult second = Update(*again, Image(), sIndex, choices);
        const auto left = second.edits.find(updated.All().front().get());
        Fuzzing::Require(left == second.edits.end() || left->second.IsEmpty(),
                         "a second update has nothing to do");
        Fuzzing::Require(again->objects.size() == document->objects.size(), "no object is lost");
    }
    return 0;
}
