// A host that tries what could fail only at run time when the library is a shared one: options that
// exist in both, exceptions that pass through, and types that must be recognized. Its only argument
// is an ELF file with debug information; it prints what is wrong.

#include <brindle/core/LibraryVersion.h>
#include <brindle/core/ModuleInfo.h>
#include <brindle/core/OptionTable.h>
#include <brindle/core/VElfOptions.h>
#include <brindle/core/Version.h>
#include <brindle/host/CurrentDataModel.h>
#include <brindle/host/VDWARFReader.h>
#include <brindle/model/DataModel.h>
#include <brindle/model/RecordingDataModel.h>
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle;
using Reader::DWARF::ModuleInfo;
using Reader::DWARF::VElfOptions;

namespace {

struct Interruption {
    std::string phase;
};

bool gIsGood = true;

void Expect(bool condition, const char* statement) {
    if (!condition) {
        std::cout << "wrong: " << statement << '\n';
        gIsGood = false;
    }
}

std::vector<std::uint64_t> Addresses(const std::string& file) {
    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);
    Reader::DWARF::VDWARFReader reader;
    Expect(reader.Read(file, Reader::DWARF::DWARFContainerType::Container_ELF), "the file is read");
    std::vector<std::uint64_t> addresses;
    model.ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        if (model.CompileUnitOf(variable.id) != 0) {
            addresses.push_back(variable.address);
        }
    });
    return addresses;
}

void CheckOptions(const std::string& file) {
    const std::vector<std::uint64_t> plain = Addresses(file);
    ModuleInfo::mModuleOffset = 0x10;
    std::vector<std::uint64_t> moved = Addresses(file);
    for (std::uint64_t& address : moved) {
        address += 0x10;
    }
    Expect(!plain.empty() && plain == moved, "an option of the host reaches the library");

    const Reader::DWARF::OptionDescription* option =
        Reader::DWARF::FindOption("mDumpProducerInfoFileName");
    Expect(option != nullptr && AssignOption(*option, "somewhere") &&
               VElfOptions::mDumpProducerInfoFileName == "somewhere",
           "an option that the library sets is that of the host");
    VElfOptions::mDumpProducerInfoFileName = "";
}

void CheckException(const std::string& file) {
    Reader::DWARF::VDWARFReader reader;
    reader.SetProgressTextCallback = [](const std::string& phase) { throw Interruption{phase}; };
    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);
    bool isCaught = false;
    try {
        reader.Read(file, Reader::DWARF::DWARFContainerType::Container_ELF);
    } catch (const Interruption& interruption) {
        isCaught = !interruption.phase.empty();
    }
    Expect(isCaught, "an exception of a callback passes through the library");
}

void CheckTypes() {
    DataModel::Model model;
    DataModel::RecordingDataModel recorder(model);
    const DataModel::Factory::CurrentDataModel current(recorder);
    DataModel::Factory::HostDataModel* known = DataModel::Factory::CurrentDataModel::Get();
    Expect(dynamic_cast<DataModel::RecordingDataModel*>(known) == &recorder &&
               dynamic_cast<DataModel::Model*>(known) == nullptr,
           "the types of models are the same on both sides");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    Expect(std::string(LibraryVersion()) == BRINDLE_VERSION, "headers and library agree");
    CheckOptions(argv[1]);
    CheckException(argv[1]);
    CheckTypes();
    return gIsGood ? 0 : 1;
}
