// Why a read failed, where the program knows more than the reader's message says. A read session
// adds it to that message, in its language.
#pragma once

#include <cstdint>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Of the messages of the reader.
enum class MessageLanguage : std::uint8_t { English, German };

/// What is known when a read has failed.
enum class ReadProblem : std::uint8_t {
    CouldNotRead,
    NoMemory,
    DirectoryGiven,
    PipeGiven,
    EmptyFile,
    ReadAsCoff,
    NoWindowsImage,
};

/// A problem in words, without a full stop unless it is a message of its own.
std::string ProblemText(ReadProblem problem, MessageLanguage language);

/// What the system says of a file that can't be read at all; empty if it can.
std::string SystemProblem(const std::string& file, MessageLanguage language);

} // namespace Tessel::Norn::Brindle::Program
