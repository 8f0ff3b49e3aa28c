// The files of an A2L description as they lie on disk, and errors in them. The rest of this folder
// works on views of their bytes; nothing here changes them.
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

/// One file, read whole. Its bytes keep their place as long as the object lives.
class Source {
public:
    /// @param bytes contents of the file; decoded, if the encoding isn't `Bytes`
    Source(std::string path, std::string bytes, Encoding encoding = Encoding::Bytes)
        : mPath(std::move(path))
        , mBytes(std::move(bytes))
        , mEncoding(encoding) {}

    [[nodiscard]] const std::string& Path() const { return mPath; }
    [[nodiscard]] std::string_view Bytes() const { return mBytes; }

    /// Writes a part of `Bytes`, or its replacement, in the encoding of the file.
    void WriteEncoded(std::string_view text,
                      const std::function<void(std::string_view)>& sink) const;

    /// Number of the line of a position, counted from 1. Fast if positions are asked for in
    /// ascending order.
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
    /// About the whole file.
    Fault(const std::string& path, const std::string& problem);
};

/// Returns the bytes of a file, or nothing if it can't be read.
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

    /// The file at a path. @throws Fault if it can't be read or is not a text
    const Source& Open(const std::string& path);

    /// Finds the file of an include, relative to the including file. Backslashes separate folders
    /// too, since most of these files come from Windows.
    const Source& OpenIncluded(const Source& from, std::size_t position, std::string_view name);

    [[nodiscard]] const std::vector<std::unique_ptr<Source>>& All() const { return mSources; }

private:
    const Source* Find(const std::string& path);

    FileLoader mLoader;
    std::vector<std::unique_ptr<Source>> mSources;
    std::unordered_map<std::string, const Source*> mByPath;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
