// A host on the data model that comes with the library. It prints every variable of a file or,
// when paths such as 'motor.pid[2].gain' follow, where each of them leads.

#include <brindle/core/VElfOptions.h>
#include <brindle/host/ContainerDetection.h>
#include <brindle/host/CurrentDataModel.h>
#include <brindle/host/VDWARFReader.h>
#include <brindle/model/DataModel.h>
#include <cstdint>
#include <iostream>
#include <string>

using namespace Tessel::Norn::Brindle;

namespace {

void PrintVariables(const DataModel::Model& model) {
    model.ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        std::cout << std::hex << std::showbase << variable.address << std::dec << ' '
                  << model.SizeOf(variable.id) << ' ' << model.QualifiedName(variable.id) << '\n';
    });
}

bool PrintPlace(const DataModel::Model& model, const std::string& path) {
    const DataModel::Model::PathResult result = model.ResolvePath(path);
    if (!result.found) {
        std::cerr << path << ": " << result.problem << " after '"
                  << path.substr(0, result.resolvedLength) << "'\n";
        return false;
    }
    std::cout << std::hex << std::showbase << result.place.address << std::dec << ' '
              << result.place.size << ' ' << model.TypeText(result.place.type);
    if (result.place.isBitField) {
        std::cout << " bits " << result.place.bitOffset << " to "
                  << result.place.bitOffset + static_cast<std::int64_t>(result.place.bitSize) - 1;
    }
    std::cout << '\n';
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: default_model FILE [PATH...]\n";
        return 2;
    }

    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);

    Reader::DWARF::VElfOptions::mTryReadCorruptedCompileUnits = 1; // an option of the reader
    Reader::DWARF::VDWARFReader reader;
    reader.SignalErrorCallback = [](auto, auto, const auto&, const std::string& message) {
        std::cerr << message << '\n';
    };
    bool isComplete = reader.Read(argv[1], Reader::DWARF::DetectContainer(argv[1]));

    if (argc == 2) {
        PrintVariables(model);
    }
    for (int argument = 2; argument < argc; ++argument) {
        isComplete = PrintPlace(model, argv[argument]) && isComplete;
    }
    return isComplete ? 0 : 1;
}
