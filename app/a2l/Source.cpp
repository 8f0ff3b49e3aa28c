#include "a2l/Source.h"

#include "Platform.h"

#include "core/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using Reader::DWARF::NormalPath;
using Reader::DWARF::PathOfText;
using Reader::DWARF::PathToOpen;
using Reader::DWARF::TextOfPath;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Why bytes can't be the text of an A2L file; empty if they can.
std::string TextProblem(std::string_view bytes) {
    const std::size_t zero = bytes.find('\0');
    if (zero == std::string_view::npos) {
        return {};
    }
    const std::string_view start = bytes.substr(0, 64);
    const auto zeros = static_cast<std::size_t>(std::ranges::count(start, '\0'));
    return zeros * 2 >= start.size() - 1 && start.size() > 1 && zero < 2
               ? "the file looks like UTF-16 without its byte order mark; convert it to UTF-8"
               : "expected an A2L text, got a binary file";
}

/// A file as a text. @throws Fault if it is not a text
std::unique_ptr<Source> SourceOf(const std::string& path, std::string bytes) {
    const Encoding encoding = EncodingOf(bytes);
    if (encoding != Encoding::Bytes) {
        std::optional<std::string> text = Decode(bytes, encoding);
        if (!text) {
            throw Fault(path, "the file begins as UTF-16 or UTF-32 and has bytes that aren't");
        }
        bytes = std::move(*text);
    }
    if (const std::string problem = TextProblem(bytes); !problem.empty()) {
        throw Fault(path, problem);
    }
    return std::make_unique<Source>(path, std::move(bytes), encoding);
}

/// One spelling for each file, so that none is read twice.
std::string Normal(const std::string& path) {
    return TextOfPath(NormalPath(PathOfText(path)));
}

} // namespace

std::size_t Source::LineOf(std::size_t position) const {
    if (position < mCountedTo) {
        mCountedTo = 0;
        mLine = 1;
    }
    const auto start = mBytes.begin() + static_cast<std::ptrdiff_t>(mCountedTo);
    const auto end =
        mBytes.begin() + static_cast<std::ptrdiff_t>(std::min(position, mBytes.size()));
    mLine += static_cast<std::size_t>(std::count(start, end, '\n'));
    mCountedTo = std::min(position, mBytes.size());
    return mLine;
}

void Source::WriteEncoded(std::string_view text,
                          const std::function<void(std::string_view)>& sink) const {
    if (mEncoding == Encoding::Bytes) {
        sink(text);
    } else {
        sink(Encode(text, mEncoding));
    }
}

Fault::Fault(const Source& source, std::size_t position, const std::string& problem)
    : std::runtime_error(source.Path() + ":" + std::to_string(source.LineOf(position)) + ": " +
                         problem) {}

Fault::Fault(const std::string& path, const std::string& problem)
    : std::runtime_error(path + ": " + problem) {}

std::string LoadFile(const std::string& path) {
    const auto fail = [&path](int reason) {
        throw Fault(path, std::generic_category().message(reason));
    };
    std::error_code error;
    if (std::filesystem::is_directory(FileStatus(path, error))) {
        fail(EISDIR);
    }
    errno = 0;
    const std::unique_ptr<std::FILE, Closer> file(OpenToRead(path));
    if (!file) {
        fail(errno);
    }
    std::string bytes;
    const std::uintmax_t size = std::filesystem::file_size(PathToOpen(path), error);
    // One more byte detects the end of the file without another round.
    std::size_t room = error ? 1U << 16U : static_cast<std::size_t>(size) + 1;
    for (std::size_t filled = 0;;) {
        bytes.resize(filled + room);
        const std::size_t count = std::fread(bytes.data() + filled, 1, room, file.get());
        filled += count;
        if (count < room) {
            bytes.resize(filled);
            break;
        }
        room = filled;
    }
    if (std::ferror(file.get()) != 0) {
        fail(errno != 0 ? errno : EIO);
    }
    return bytes;
}

const Source* SourceSet::Find(const std::string& path) {
    const std::string normal = Normal(path);
    if (const auto known = mByPath.find(normal); known != mByPath.end()) {
        return known->second;
    }
    std::optional<std::string> bytes = mLoader(normal);
    if (!bytes) {
        return nullptr;
    }
    mSources.push_back(SourceOf(path, std::move(*bytes)));
    return mByPath[normal] = mSources.back().get();
}

const Source& SourceSet::Open(const std::string& path) {
    const Source* const source = Find(path);
    if (source == nullptr) {
        throw Fault(path, std::generic_category().message(ENOENT));
    }
    return *source;
}

const Source& SourceSet::OpenIncluded(const Source& from, std::size_t position,
                                      std::string_view name) {
    const std::filesystem::path folder = PathOfText(from.Path()).parent_path();
    std::string portable(name);
    std::ranges::replace(portable, '\\', '/');
    for (const std::string& spelling : {std::string(name), portable}) {
        if (const Source* const source = Find(TextOfPath(folder / PathOfText(spelling)))) {
            return *source;
        }
    }
    throw Fault(from, position, "the included file '" + std::string(name) + "' can't be read");
}

} // namespace Tessel::Norn::Brindle::Program::A2l
