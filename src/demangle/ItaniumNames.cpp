#include "demangle/ItaniumNames.h"

#include "demangle/NameText.h"

#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sShortestName = 4;

/// Start position that marks a name of another form.
constexpr std::size_t sNoStart = std::string_view::npos;

struct Prefix {
    std::string_view text;
    std::size_t start;
};

/// The first prefix that a name begins with decides, so the longer ones come first.
constexpr std::array sPrefixes = {Prefix{"_ZTVNSt", 7}, Prefix{"_ZTVSt", 6}, Prefix{"_ZTVN", 5},
                                  Prefix{"_ZTV", 4}, Prefix{"__N", 3}};

bool IsQualifier(char character) {
    return character == 'K' || character == 'V';
}

/// Position after the qualifiers of a nested name of at least `sShortestName` characters.
std::size_t FindStartBehindQualifiers(std::string_view name) {
    if (!IsQualifier(name[3])) {
        return 3;
    }
    if (name.size() < 5) {
        return sNoStart;
    }
    return IsQualifier(name[4]) ? 5 : 4;
}

std::size_t FindStart(std::string_view name) {
    if (name.size() < sShortestName) {
        return sNoStart;
    }
    if (name.starts_with("_ZN")) {
        return FindStartBehindQualifiers(name);
    }
    for (const Prefix& prefix : sPrefixes) {
        if (name.starts_with(prefix.text)) {
            return prefix.start;
        }
    }
    return sNoStart;
}

/// The components of one name, as ranges of it.
class ComponentList {
public:
    /// False if there are more components than the list takes.
    bool Read(std::string_view rest) {
        while (!rest.empty()) {
            if (rest.front() == 'L') {
                rest.remove_prefix(1);
            }
            int digits = 0;
            const int length = ParseNameLength(rest, rest.size(), digits);
            if (length == 0) {
                return true;
            }
            rest.remove_prefix(static_cast<std::size_t>(digits));
            if (rest.empty()) {
                return true;
            }
            const std::string_view component = rest.substr(0, static_cast<std::size_t>(length));
            if (!Record(component)) {
                return false;
            }
            rest.remove_prefix(component.size());
        }
        return true;
    }

    /// False if there is nothing to write.
    bool Write(char* out, int outSize, const VDemanglingOptions& options) {
        if (mCount == 0) {
            return false;
        }
        if (options.mStripUnderscore && mComponents[0].front() == '_') {
            mComponents[0].remove_prefix(1);
            if (mComponents[0].empty()) {
                return false;
            }
        }
        utStrNCpy(out, mComponents[0], outSize);
        for (std::size_t index = 1; index < mCount; ++index) {
            AppendText(out, options.mScopeSeparator, outSize);
            AppendText(out, mComponents[index], outSize);
        }
        return true;
    }

private:
    /// False if the list is full. Components that the compiler made up are passed over.
    bool Record(std::string_view component) {
        if (component.starts_with("_INTERNAL")) {
            return true;
        }
        if (mCount == mComponents.size()) {
            return false;
        }
        mComponents[mCount++] = component;
        return true;
    }

    std::array<std::string_view, 16> mComponents;
    std::size_t mCount = 0;
};

} // namespace

bool DemangleItaniumName(char* out, int outSize, std::string_view name, bool& demangled,
                         const VDemanglingOptions& options) {
    const std::size_t start = FindStart(name);
    if (start >= name.size()) {
        return false;
    }
    ComponentList components;
    if (!components.Read(name.substr(start)) || !components.Write(out, outSize, options)) {
        return false;
    }
    demangled = true;
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
