// Shared by the commands on A2L files: the image that they read, the file that they write, and how
// the target counts its memory.
#pragma once

#include "ExitStatus.h"
#include "ReadArguments.h"

#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program::A2l {

struct ImageArguments {
    ReadArguments read;
    std::string image;
    /// Empty for standard output.
    std::string output;
    /// Addresses in files count words of 16 bits.
    bool hasWordAddresses = false;
};

/// @name Adding arguments
/// `arguments` receives the values and must outlive the parsing.
/// @{
/// Adds `IMAGE`.
void AddImageArgument(CLI::App& command, const std::string& purpose, ImageArguments& arguments);

/// Adds `--output`.
CLI::Option* AddOutputArgument(CLI::App& command, ImageArguments& arguments);

/// Adds `--word-addresses`.
void AddWordAddressArgument(CLI::App& command, ImageArguments& arguments);
/// @}

/// Reads the whole image. An incomplete one is refused, after a message: what was not read would
/// look as if the image lacked it. @return whether the model has all addresses
ExitStatus ReadWholeImage(const ImageArguments& arguments, DataModel::Model& model);

} // namespace Tessel::Norn::Brindle::Program::A2l
