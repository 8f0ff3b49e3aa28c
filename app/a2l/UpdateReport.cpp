#include "a2l/UpdateReport.h"

#include "Message.h"
#include "Phrases.h"
#include "TableWriter.h"

#include "a2l/Identifiers.h"
#include "a2l/Numbers.h"
#include "core/HostText.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using Reader::DWARF::ToHostText;

constexpr std::array sColumns = {Column{"object"},
                                 Column{"kind"},
                                 Column{"file"},
                                 Column{"line", true},
                                 Column{"symbol"},
                                 Column{"status"},
                                 Column{"action"},
                                 Column{"oldAddress", true},
                                 Column{"newAddress", true},
                                 Column{"oldMask", true},
                                 Column{"newMask", true},
                                 Column{"differences"},
                                 Column{"nowAtOldAddress"},
                                 Column{"problem"},
                                 Column{"nearNames"}};

/// At most this many lines of one kind are written for a person.
constexpr std::size_t sMostLines = 50;

std::string PaddedHexadecimal(std::uint64_t number) {
    return Notation("0x00000000", false).Write(number);
}

std::string_view ActionOf(const ObjectResult& result, MissingChoice missing) {
    if (result.status != Status::NotFound) {
        return {};
    }
    if (missing == MissingChoice::Zero) {
        return "zeroed";
    }
    return result.isRemoved ? "removed" : "kept";
}

std::string DifferencesOf(const ObjectResult& result) {
    std::string text;
    for (const Difference& difference : result.differences) {
        text.append(text.empty() ? "" : "; ")
            .append(Phrased("{}: {} in the file, {} in the image", difference.what,
                            difference.inFile, difference.inImage));
    }
    return ToHostText(text);
}

std::string SymbolOf(const Object& object) {
    std::string symbol = ToHostText(UnquotedText(object.link.Text()));
    if (symbol.empty() || object.linkOffset == 0) {
        return symbol;
    }
    return symbol + (object.linkOffset > 0 ? "+" : "") + std::to_string(object.linkOffset);
}

Cell NumberCell(bool isThere, std::uint64_t number) {
    return isThere ? Cell(Address{number}) : Cell();
}

std::string FateOf(const ObjectResult& result, const Object& object, MissingChoice missing) {
    const std::string old = PaddedHexadecimal(object.address.value);
    if (result.isRemoved) {
        return Phrased("removed");
    }
    const bool isZeroed = result.status == Status::NotFound && missing == MissingChoice::Zero;
    return Phrased(
        isZeroed ? Phrase("its address {} is set to 0") : Phrase("its address {} is kept"), old);
}

std::string MoveOf(const ObjectResult& result, const Object& object) {
    std::string text;
    if (result.newAddress != object.address.value) {
        text = Phrased("moved from {} to {}", PaddedHexadecimal(object.address.value),
                       PaddedHexadecimal(result.newAddress));
    }
    if (result.newMask != object.bitMask.value) {
        text.append(text.empty() ? "" : ", ")
            .append(Phrased("bit mask {} is now {}", PaddedHexadecimal(object.bitMask.value),
                            PaddedHexadecimal(result.newMask)));
    }
    return text;
}

std::string ProblemOf(const ObjectResult& result, const Object& object, MissingChoice missing) {
    std::string text = result.status == Status::NotFound
                           ? Phrased("not found in the image: {}", result.problem)
                           : result.problem;
    if (!result.nearNames.empty()) {
        text += Phrased("; similar names: {}", result.nearNames);
    }
    text += "; " + FateOf(result, object, missing);
    if (!result.nowAtOldAddress.empty() && !result.isRemoved) {
        text += Phrased(", where the image has {}", result.nowAtOldAddress);
    }
    return text;
}

/// Lines of one kind, of which only the first are written.
class Lines {
public:
    Lines(const Document& document, bool hasReport)
        : mDocument(document)
        , mHasReport(hasReport) {}
    ~Lines() {
        if (mCount > sMostLines) {
            Tell(Phrased(mHasReport
                             ? Phrase("... and {} more like these; the report has all")
                             : Phrase("... and {} more like these; --report FILE writes all"),
                         std::to_string(mCount - sMostLines)));
        }
    }
    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;
    Lines(Lines&&) = delete;
    Lines& operator=(Lines&&) = delete;

    void Add(const ObjectResult& result, const std::function<std::string()>& text) {
        if (mCount++ < sMostLines) {
            const Object& object = mDocument.objects[result.object];
            Tell(object.name.source->Path() + ":" + std::to_string(object.line),
                 ToHostText(object.name.Text()) + ": " + text());
        }
    }

private:
    const Document& mDocument;
    bool mHasReport;
    std::size_t mCount = 0;
};

std::string Counted(std::size_t count, Phrase phrase) {
    return count == 0 ? std::string() : Phrased(phrase, std::to_string(count));
}

} // namespace

std::span<const Column> UpdateColumns() {
    return sColumns;
}

void WriteUpdateRows(const Document& document, const UpdateResult& result, MissingChoice missing,
                     TableWriter& table) {
    for (const ObjectResult& one : result.objects) {
        const Object& object = document.objects[one.object];
        const std::string name = ToHostText(object.name.Text());
        const std::string file = ToHostText(object.name.source->Path());
        const std::string symbol = SymbolOf(object);
        const std::string differences = DifferencesOf(one);
        const std::string problem = ToHostText(one.problem);
        const bool hasMask = object.bitMask.span.IsSet();
        const std::array<Cell, sColumns.size()> row{
            name,
            KeywordOf(object.kind),
            file,
            std::uint64_t{object.line},
            symbol,
            NameOf(one.status),
            ActionOf(one, missing),
            Address{object.address.value},
            NumberCell(!one.isRemoved, one.newAddress),
            NumberCell(hasMask, object.bitMask.value),
            NumberCell(hasMask && !one.isRemoved, one.newMask),
            differences,
            one.nowAtOldAddress,
            problem,
            one.nearNames};
        table.AddRow(row);
    }
    table.Finish();
}

void TellUpdate(const Document& document, const UpdateResult& result, MissingChoice missing,
                bool hasReport) {
    std::size_t different = 0;
    {
        Lines moved(document, hasReport);
        for (const ObjectResult& one : result.objects) {
            if (one.status == Status::Updated) {
                moved.Add(one, [&] { return MoveOf(one, document.objects[one.object]); });
            }
        }
    }
    {
        Lines differing(document, hasReport);
        for (const ObjectResult& one : result.objects) {
            if (!one.differences.empty()) {
                ++different;
                differing.Add(one, [&] { return DifferencesOf(one); });
            }
        }
    }
    {
        Lines lost(document, hasReport);
        for (const ObjectResult& one : result.objects) {
            if (!one.problem.empty()) {
                lost.Add(one,
                         [&] { return ProblemOf(one, document.objects[one.object], missing); });
            }
        }
    }
    for (const std::string& remark : result.remarks) {
        Tell(remark);
    }
    const auto count = [&result](Status status) {
        return result.counts[static_cast<std::size_t>(status)];
    };
    Tell(Phrased("{} objects: {} updated, {} unchanged", std::to_string(result.objects.size()),
                 std::to_string(count(Status::Updated)), std::to_string(count(Status::Unchanged))) +
         Counted(count(Status::NotFound), ", {} not found") +
         Counted(count(Status::Ambiguous), ", {} ambiguous") +
         Counted(count(Status::OutOfRange), ", {} out of range") +
         Counted(different, ", {} with another type or size than the image") +
         Counted(result.withoutAddress, ", {} without an address"));
}

} // namespace Tessel::Norn::Brindle::Program::A2l
