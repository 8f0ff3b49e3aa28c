// Paths such as "motor.pid[2].gain", resolved in a fixed model with names as odd as possible, and
// the same text as the pattern of a name and as an address.
//
// Input: the path.
#include "AddressText.h"
#include "NamePattern.h"

#include "model/AddressLookup.h"
#include "model/DataModel.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using namespace Tessel::Norn::Brindle;
using DataModel::ObjectId;
using Program::NameFilter;
using Program::NamePattern;

namespace {

/// A structure that holds an array of itself, a bit field, an anonymous union and a base class, in
/// variables whose names contain the separators of paths.
void Fill(DataModel::Model& model) {
    const ObjectId global = model.GetGlobalNamespace();
    const ObjectId scope = model.CreateNamespace("ns", global);
    const ObjectId integer = model.CreateBaseEntryType(DataModel::BasicTypes::UInt16, 2, global);
    const ObjectId base = model.CreateClassEntryType("Base", 4, global, {}, false, false);
    model.CreateMemberData("id", integer, base, 0, 0, false);
    model.CreateMemberData("a", integer, base, 2, 0, false);
    const ObjectId node = model.CreateClassEntryType("Node", 64, scope, {}, false, true);
    model.AddBaseClass(node, base, 8);
    model.CreateMemberData("a", integer, node, 0, 0, false);
    model.CreateBitfieldInUdt("bits", integer, node, 2, 3, 5, 0, false);
    const ObjectId nodes = model.CreateArrayEntryType({2, 3}, node, 384, global);
    model.CreateMemberData("n", nodes, node, 16, 0, false);
    const ObjectId either = model.CreateUnionEntryType("@1", 4, node, true);
    model.CreateUnionMemberData("u", integer, either, 0, 0, false);
    model.CreateMemberData("", either, node, 4, 0, false);
    std::uint64_t address = 0x1000;
    for (const char* name : {"a", "a.b", "a[0]", "a[0].n", "::", "ns::a", "T<a.b>", "", "["}) {
        model.CreateGlobalData(name, node, address, global, true, 0, false);
        model.CreateGlobalData(name, nodes, address + 64, scope, true, 0, false);
        address += 1024;
    }
}

/// Names as commands match them: the text itself, and some of the model.
void CheckPatterns(std::string_view text) {
    if (!Fuzzing::IsUtf8(text)) {
        return;
    }
    const std::array<std::string_view, 5> names = {text, "", "a.b", "T<a.b>.n[0][0].bits", "[x]"};
    const bool hasEscape = text.find('\\') != std::string_view::npos;
    const bool hasAny = text.find_first_of("*?") != std::string_view::npos;
    for (const bool ignoresCase : {false, true}) {
        const NamePattern pattern(text, ignoresCase);
        Fuzzing::Require(hasEscape || !NamePattern::IsPlain(text) || pattern.Fits(text),
                         "a plain word fits itself");
        Fuzzing::Require(
            hasEscape || hasAny ||
                NamePattern::PartOf(text, ignoresCase).Fits("x" + std::string(text) + "y"),
            "a word fits what contains it");
        const NameFilter filter(text, ignoresCase);
        for (const std::string_view name : names) {
            const std::size_t own = std::min<std::size_t>(name.size(), 2);
            const bool isFitting = pattern.Fits(name);
            const bool isTaken = filter.Takes(name, own, "u.c");
            for (std::size_t length = own; length <= name.size(); ++length) {
                const std::string_view start = name.substr(0, length);
                if (Fuzzing::IsUtf8(start)) {
                    Fuzzing::Require(!isFitting || pattern.CanBegin(start),
                                     "what fits begins as the pattern can");
                    Fuzzing::Require(!isTaken || filter.MayTakeBehind(start, own, "u.c"),
                                     "what is taken lies behind its start");
                }
            }
        }
    }
}

/// Only what is written as an address is one, and all its digits count.
void CheckAddress(std::string_view text) {
    const std::optional<std::uint64_t> address = Program::ParseAddress(text);
    if (!address) {
        return;
    }
    Fuzzing::Require(Program::IsAddress(text), "an address begins like one");
    std::array<char, 17> digits{};
    const int count = std::snprintf(digits.data(), digits.size(), "%" PRIx64, *address);
    std::string_view written = text.substr(2);
    const std::size_t zeros = std::min(written.find_first_not_of('0'), written.size() - 1);
    written.remove_prefix(zeros);
    Fuzzing::Require(std::ranges::equal(
                         written, std::string_view(digits.data(), static_cast<std::size_t>(count)),
                         [](char first, char second) {
                             return (first >= 'A' ? first | 0x20 : first) == second;
                         }),
                     "an address has the digits of its text");
}

/// The variable of a place within its size is among those found by address. Types that contain
/// themselves lead beyond it.
void CheckPlace(const DataModel::Model& model, DataModel::AddressLookup& lookup,
                const DataModel::Model::Place& place) {
    const std::uint64_t offset = place.address - model.Object(place.global).address;
    const std::vector<DataModel::AddressHit> hits = lookup.Find(place.address);
    const bool isFound = std::ranges::any_of(hits, [&place](const DataModel::AddressHit& hit) {
        return hit.place.global == place.global;
    });
    Fuzzing::Require(isFound == (offset < model.SizeOf(place.global)),
                     "a variable holds the addresses of its size");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static DataModel::Model* const sModel = [] {
        static DataModel::Model sFilled;
        Fill(sFilled);
        return &sFilled;
    }();
    static DataModel::AddressLookup sLookup(*sModel);
    const std::string_view path = Fuzzing::InputBytes(data, size).Rest();
    const DataModel::Model::PathResult one = sModel->ResolvePath(path);
    const std::vector<DataModel::Model::PathResult> all = sModel->ResolvePaths(path);
    Fuzzing::Require(!all.empty(), "a path has an answer");
    for (const DataModel::Model::PathResult& each : all) {
        Fuzzing::Require(each.found == each.problem.empty(), "a path resolves or has a problem");
        if (each.found) {
            CheckPlace(*sModel, sLookup, each.place);
        }
    }
    Fuzzing::Require(one.found == all.front().found &&
                         one.place.address == all.front().place.address,
                     "the first answer is the answer");
    Fuzzing::Require(one.resolvedLength <= path.size(), "no more resolves than was asked");
    CheckPatterns(path);
    CheckAddress(path);
    return 0;
}
