#include "FileInfo.h"

#include "Phrases.h"

#include "host/SymbolNamespace.h"
#include "model/DataModel.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

void CountVariables(const DataModel::Model& model, FileInfo& info) {
    model.ForEach(ObjectKind::Global, [&](const ModelObject& variable) {
        const ModelObject scope = model.Object(variable.scope);
        const bool isSymbol =
            scope.kind == ObjectKind::Namespace && scope.name == DataModel::sSymbolNamespaceName;
        ++info.variables;
        info.symbolVariables += isSymbol ? 1 : 0;
    });
}

std::vector<std::string> NotesOf(const FileInfo& info) {
    const ReadResult& result = info.result;
    std::vector<std::string> notes;
    for (const Reader::DWARF::ReadRemark& remark : result.remarks.All()) {
        notes.push_back(remark.text);
    }
    const bool hasUnits = !result.facts.Units().empty() || result.facts.TypeUnits() != 0;
    if (result.isOk && !info.HasContents()) {
        notes.push_back(Phrased("a file of another kind, or damaged: it has neither sections in "
                                "memory nor symbols"));
    } else if (std::string text = WithoutVariablesText(result); !text.empty()) {
        notes.push_back(std::move(text));
    } else if (result.isOk && notes.empty() && !hasUnits) {
        notes.push_back(Phrased("no debug information: variables come from the symbol table, "
                                "without types; compile and link with -g, and read the file "
                                "before it is stripped"));
    }
    if (!info.image.hasContents) {
        notes.push_back(WithoutContentsText());
    }
    return notes;
}

} // namespace

std::string WithoutContentsText() {
    return Phrased("no initial values: only debug information is in this file, not the contents of "
                   "its sections; the image that it was split from has them");
}

FileInfo ReadFileInfo(ReadSession& session, const std::string& file) {
    DataModel::Model model;
    FileInfo info;
    info.file = file;
    info.result = session.Read(file, model);
    info.image = model.Image();
    model.ForEach(ObjectKind::CompileUnit, [&](const ModelObject&) { ++info.compileUnits; });
    CountVariables(model, info);
    info.notes = NotesOf(info);
    return info;
}

} // namespace Tessel::Norn::Brindle::Program
