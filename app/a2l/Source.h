// The files of an A2L description as they lie on disk, and what is wrong with one. Everything else
// of this folder works on views of their bytes; nothing here changes them.
#pragma once

#include "a2l/Encoding.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// One file, read whole. Its bytes stay where they are as long as the object lives.
class Source {
public:
    /// @param bytes what the file holds; decoded, if its encoding is one that is
    Source(std::string path, std::string bytes, Encoding encoding = Encoding::Bytes)
        : mPath(std::move(path))
        , mBytes(std::move(bytes))
        , mEncoding(encoding) {}

    [[nodiscard]] const std::string& Path() const { return mPath; }
    [[nodiscard]] std::string_view Bytes() const { return mBytes; }

    /// Gives a part of `Bytes`, or what replaces one, as the file has it.
    void WriteEncoded(std::string_view text,
                      const std::function<void(std::string_view)>& sink) const;

    /// Number of the line of a position, counted from 1. Cheap where positions are asked in rising
    /// order.
    [[nodiscard]] std::size_t LineOf(std::size_t position) const;

private:
    std::string mPath;
    std::string mBytes;
    Encoding mEncoding;
    mutable std::size_t mCountedTo = 0;
    mutable std::size_t mLine = 1;
};

/// Input that can't be read as A2L: "FILE:LINE: what was expected".
class Fault : public std::runtime_error {
public:
    Fault(const Source& source, std::size_t position, const std::string& problem);
    /// About a file as a whole.
    Fault(const std::string& path, const std::string& problem);
};

/// Gives the bytes of a file, or nothing if it can't be read.
using FileLoader = std::function<std::optional<std::string>(const std::string& path)>;

/// Reads a file of the system. @throws Fault with the system's reason if it can't be read
std::string LoadFile(const std::string& path);

/// All files of one description: the one that the user names, then those that it includes, each
/// once.
class SourceSet {
public:
    /// @param loader called once for each file
    explicit SourceSet(FileLoader loader)
        : mLoader(std::move(loader)) {}

    /// The file of a path. @throws Fault if it can't be read or is no text
    const Source& Open(const std::string& path);

    /// Finds the file that an include names: beside the file that includes it. Backslashes part
    /// folders too, since most of these files come from Windows.
    const Source& OpenIncluded(const Source& from, std::size_t position, std::string_view name);

    [[nodiscard]] const std::vector<std::unique_ptr<Source>>& All() const { return mSources; }

private:
    const Source* Find(const std::string& path);

    FileLoader mLoader;
    std::vector<std::unique_ptr<Source>> mSources;
    std::unordered_map<std::string, const Source*> mByPath;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
