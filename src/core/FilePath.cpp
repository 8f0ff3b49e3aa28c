#include "core/FilePath.h"

#include "core/HostText.h"

#include <cstddef>
#include <system_error>
#include <type_traits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

namespace fs = std::filesystem;

/// True on Windows, where paths are wide. The functions for wide paths are templates, so that other
/// systems don't compile them.
constexpr bool sArePathsWide = std::is_same_v<fs::path::value_type, wchar_t>;

/// The path of a folder must leave room for a short file name, so that its limit is below the 259
/// characters of a file's path. This one fits both.
constexpr std::size_t sLongestUsualPath = 247;

template <typename Character>
constexpr bool IsSeparator(Character character) {
    return character == L'/' || character == L'\\';
}

/// True for `\\server\share\...`, and for `\\?\` and `\\.\`, which Windows takes unchanged.
template <typename Path>
bool HasTwoSeparators(const Path& path) {
    const auto& text = path.native();
    return text.size() > 2 && IsSeparator(text[0]) && IsSeparator(text[1]);
}

template <typename Path>
bool SpeaksToSystem(const Path& path) {
    const auto& text = path.native();
    return HasTwoSeparators(path) && (text[2] == L'?' || text[2] == L'.');
}

/// `path` after its two leading separators, in its normal spelling.
template <typename Path>
Path BehindTwoSeparators(const Path& path) {
    return Path(path.native().substr(2)).lexically_normal();
}

template <typename Path>
Path OpenedPath(const Path& path) {
    if (SpeaksToSystem(path)) {
        return path;
    }
    if (HasTwoSeparators(path)) {
        return path.native().size() <= sLongestUsualPath
                   ? path
                   : Path(L"\\\\?\\UNC\\" + BehindTwoSeparators(path).make_preferred().native());
    }
    std::error_code error;
    const Path full = std::filesystem::absolute(path, error);
    if (error || full.native().size() <= sLongestUsualPath) {
        return path;
    }
    // After the prefix Windows takes a path literally: it knows no other separator, and no "..".
    return Path(L"\\\\?\\" + full.lexically_normal().make_preferred().native());
}

template <typename Path>
Path NormalWidePath(const Path& path) {
    if (SpeaksToSystem(path)) {
        return path;
    }
    return HasTwoSeparators(path) ? Path(L"\\\\" + BehindTwoSeparators(path).native())
                                  : path.lexically_normal();
}

template <typename Path>
Path WidePath(std::string_view text) {
    const std::string valid = ToHostText(text);
    return Path(std::u8string(valid.begin(), valid.end()));
}

} // namespace

fs::path PathOfText(std::string_view text) {
    if constexpr (sArePathsWide) {
        return WidePath<fs::path>(text);
    } else {
        return {text};
    }
}

fs::path PathToOpen(std::string_view text) {
    if constexpr (sArePathsWide) {
        return OpenedPath(WidePath<fs::path>(text));
    } else {
        return {text};
    }
}

std::string TextOfPath(const fs::path& path) {
    if constexpr (sArePathsWide) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } else {
        return path.string();
    }
}

fs::path NormalPath(const fs::path& path) {
    if constexpr (sArePathsWide) {
        return NormalWidePath(path);
    } else {
        return path.lexically_normal();
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
