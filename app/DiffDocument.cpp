#include "DiffDocument.h"

#include "DifferenceTable.h"
#include "JsonOutput.h"

#include "core/HostText.h"

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::uint64_t sDocumentVersion = 1;

} // namespace

void WriteDiffStart(const std::string& oldFile, const std::string& newFile, ResultOutput& output) {
    JsonWriter json(output);
    json.StartObject();
    WriteField(json, "version", sDocumentVersion);
    WriteField(json, "old", Reader::DWARF::ToHostText(oldFile));
    WriteField(json, "new", Reader::DWARF::ToHostText(newFile));
    WriteKey(json, "rows");
    // The key has its colon only once a value follows.
    output.Put(':');
}

void WriteDiffEnd(bool isComplete, const DifferenceSummary& summary, ResultOutput& output) {
    JsonWriter json(output);
    output.Write(",\"complete\":");
    json.Bool(isComplete);
    json.Reset(output);
    output.Write(",\"summary\":");
    json.StartObject();
    WriteField(json, "appeared", summary.appeared);
    WriteField(json, "vanished", summary.vanished);
    WriteField(json, "moved", summary.moved);
    WriteField(json, "changed", summary.changed);
    WriteField(json, "leaves", summary.leaves);
    WriteField(json, "symbols", summary.symbols);
    WriteField(json, "renumbered", summary.sharedNames.renumbered);
    WriteField(json, "comparedByOrder", summary.sharedNames.byOrder);
    json.EndObject();
    output.Write("}\n");
}

} // namespace Tessel::Norn::Brindle::Program
