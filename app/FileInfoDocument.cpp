// The description of files for a program, as JSON.
#include "FileInfo.h"
#include "ImageDocument.h"
#include "ResultOutput.h"

#include "core/HostText.h"
#include "host/ContainerDetection.h"

namespace Tessel::Norn::Brindle::Program {

namespace {

void WriteUnits(JsonWriter& json, const Reader::DWARF::ReadFacts& facts) {
    WriteKey(json, "units");
    json.StartArray();
    for (const Reader::DWARF::UnitGroup& group : facts.Units()) {
        json.StartObject();
        WriteField(json, "dwarfVersion", static_cast<std::uint64_t>(group.version));
        WriteField(json, "language", std::uint64_t{group.language});
        WriteField(json, "languageName", Reader::DWARF::LanguageName(group.language));
        WriteField(json, "count", std::uint64_t{group.count});
        json.EndObject();
    }
    json.EndArray();
    WriteField(json, "typeUnits", std::uint64_t{facts.TypeUnits()});
    WriteKey(json, "producers");
    json.StartArray();
    for (const Reader::DWARF::ProducerCount& producer : facts.Producers()) {
        json.StartObject();
        WriteField(json, "producer", producer.producer);
        WriteField(json, "count", std::uint64_t{producer.count});
        json.EndObject();
    }
    json.EndArray();
}

void WriteInfo(JsonWriter& json, const FileInfo& info) {
    json.StartObject();
    WriteField(json, "file", Reader::DWARF::ToHostText(info.file));
    WriteField(json, "container", Reader::DWARF::ContainerName(info.result.container));
    WriteField(json, "ok", info.result.isOk);
    WriteKey(json, "error");
    if (info.result.isOk) {
        json.Null();
    } else {
        WriteText(json, info.result.error);
    }
    WriteImageField(json, "image", info.image);
    WriteUnits(json, info.result.facts);
    WriteField(json, "entries", info.result.facts.Entries());
    WriteField(json, "symbols", info.result.facts.Symbols());
    WriteField(json, "compileUnits", info.compileUnits);
    WriteField(json, "variables", info.variables);
    WriteField(json, "symbolVariables", info.symbolVariables);
    WriteKey(json, "notes");
    json.StartArray();
    for (const std::string& note : info.notes) {
        WriteText(json, note);
    }
    json.EndArray();
    json.EndObject();
}

} // namespace

void WriteInfoDocument(const std::vector<FileInfo>& infos, ResultOutput& output) {
    JsonWriter json(output);
    json.StartObject();
    WriteField(json, "version", kJsonVersion);
    WriteKey(json, "files");
    json.StartArray();
    for (const FileInfo& info : infos) {
        WriteInfo(json, info);
        output.Put('\n');
    }
    json.EndArray();
    json.EndObject();
    output.Put('\n');
}

} // namespace Tessel::Norn::Brindle::Program
