// One read of one file, with all types, into the default data model: what growth.py measures from
// outside. Arguments are options as NAME=VALUE, then the file.
#include "core/OptionTable.h"
#include "host/ContainerDetection.h"
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/DataModel.h"

#include <iostream>
#include <string>
#include <string_view>

using namespace Tessel::Norn::Brindle;

namespace {

bool SetOption(std::string_view setting) {
    const std::size_t separator = setting.find('=');
    const Reader::DWARF::OptionDescription* option =
        Reader::DWARF::FindOption(setting.substr(0, separator));
    return option != nullptr && separator != std::string_view::npos &&
           Reader::DWARF::AssignOption(*option, setting.substr(separator + 1));
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "usage: read_once [OPTION=VALUE...] FILE\n";
        return 2;
    }
    for (int index = 1; index < count - 1; ++index) {
        if (!SetOption(arguments[index])) {
            std::cerr << "no such option: " << arguments[index] << '\n';
            return 2;
        }
    }
    DataModel::Model model;
    const DataModel::Factory::CurrentDataModel current(model);
    Reader::DWARF::VDWARFReader reader;
    reader.ReadAllTypes(true);
    reader.SignalErrorCallback = [](auto, std::uint32_t, const std::string&,
                                    const std::string& text) { std::cerr << text << '\n'; };
    const std::string file = arguments[count - 1];
    const bool isRead = reader.Read(file, Reader::DWARF::DetectContainer(file));
    std::cout << (isRead ? "read " : "failed ") << model.ObjectCount() << '\n';
    return 0;
}
