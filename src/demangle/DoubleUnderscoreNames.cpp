#include "demangle/DoubleUnderscoreNames.h"

#include "demangle/NameText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sFrameCount = 16;
constexpr std::size_t sSegmentCount = 16;
constexpr std::size_t sSegmentSize = 2048;

enum class CharacterClass : std::uint8_t { Replaced, Kept, Dot, AngleBracket };

constexpr CharacterClass ClassOf(char character) {
    const bool isLetter =
        (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    if (isLetter || IsDigit(character) || character == '[' || character == ']' ||
        character == '_') {
        return CharacterClass::Kept;
    }
    if (character == '.') {
        return CharacterClass::Dot;
    }
    return character == '<' || character == '>' ? CharacterClass::AngleBracket
                                                : CharacterClass::Replaced;
}

constexpr auto sCharacterClasses = [] {
    std::array<CharacterClass, 256> classes{};
    for (std::size_t code = 0; code < classes.size(); ++code) {
        classes[code] = ClassOf(static_cast<char>(code));
    }
    return classes;
}();

bool IsKept(char character, const VDemanglingOptions& options) {
    switch (sCharacterClasses[static_cast<unsigned char>(character)]) {
    case CharacterClass::Kept:
        return true;
    case CharacterClass::Dot:
        return !options.mReplaceDot;
    case CharacterClass::AngleBracket:
        return !options.mReplaceAngleBrackets;
    case CharacterClass::Replaced:
        break;
    }
    return false;
}

/// False if the parser could only copy the name unchanged. Most names are like that, and checking
/// first saves clearing the work area.
bool IsWorthParsing(std::string_view name, const VDemanglingOptions& options) {
    char previous = '\0';
    for (const char character : name) {
        if (!IsKept(character, options) || (character == '_' && previous == '_')) {
            return true;
        }
        previous = character;
    }
    return false;
}

enum class FrameState : std::uint8_t {
    Scanning,  ///< copies characters and looks for `__`
    Plain,     ///< copies characters up to the frame's end
    Qualified, ///< reads the next name of a qualified list
    Finished   ///< jumps to the frame's end
};

/// A part of the name that is read in one way. Its end may lie beyond the end of the name, if a
/// length promises more characters than there are.
struct Frame {
    FrameState state = FrameState::Scanning;
    std::size_t end = 0;
    int namesLeft = 0;
};

/// Takes one name apart into segments: the base name, and its qualifiers in the order found.
class DoubleUnderscoreParser {
public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): segments are cleared when opened
    DoubleUnderscoreParser(std::string_view name, const VDemanglingOptions& options)
        : mName(name)
        , mOptions(options) {
        Begin(FrameState::Scanning);
    }

    /// False if the tables are too small for the name.
    bool Parse() {
        while (mDepth > 0 && !mIsTooDeep) {
            Step();
        }
        return !mIsTooDeep;
    }

    /// Writes what the parse found; false if that is the unchanged name.
    bool Write(char* out, int outSize, bool& demangled) const {
        if (mSegment == 0) {
            if (!mIsChanged) {
                return false;
            }
            demangled = mIsDemangled;
            utStrNCpy(out, mSegments[0].data(), outSize);
            return true;
        }
        demangled = true;
        WriteQualifiedName(out, outSize);
        return true;
    }

private:
    void Begin(FrameState state) {
        mFrames[0] = {state, mName.size(), 0};
        mDepth = 1;
        mPosition = 0;
        OpenSegment(0);
        mWritePosition = 0;
    }

    void OpenSegment(std::size_t segment) {
        mSegment = segment;
        mSegments[segment].fill('\0');
    }

    /// Starts over with the whole name as plain text, which opens no segment any more.
    void Fail() {
        mIsChanged = false;
        mIsDemangled = false;
        Begin(FrameState::Plain);
    }

    [[nodiscard]] Frame& Top() { return mFrames[mDepth - 1]; }

    /// Puts a frame on top and opens a segment for its text, whose write position is left to the
    /// caller.
    void PushWithSegment(FrameState state, std::size_t end, int namesLeft = 0) {
        // Each frame but the first comes with a segment, so the frames can't outnumber them.
        static_assert(sFrameCount >= sSegmentCount);
        if (mSegment + 1 == sSegmentCount) {
            mIsTooDeep = true;
            return;
        }
        OpenSegment(mSegment + 1);
        mFrames[mDepth++] = {state, end, namesLeft};
    }

    void Push(FrameState state, std::size_t begin, std::size_t end) {
        mPosition = begin;
        PushWithSegment(state, end);
        mWritePosition = 0;
    }

    void SkipFrame() {
        mPosition = Top().end;
        --mDepth;
    }

    void Step() {
        if (mPosition >= Top().end || mPosition >= mName.size()) {
            --mDepth;
            return;
        }
        switch (Top().state) {
        case FrameState::Scanning:
            return Scan();
        case FrameState::Plain:
            return CopyCharacter();
        case FrameState::Qualified:
            return ReadListedName();
        case FrameState::Finished:
            return SkipFrame();
        }
    }

    void ReadListedName() {
        if (Top().namesLeft == 0) {
            return SkipFrame();
        }
        --Top().namesLeft;
        std::size_t digits = 0;
        const std::size_t length = ParseLength(mPosition, digits);
        if (length == 0) {
            return Fail();
        }
        const std::size_t begin = mPosition + digits;
        Push(FrameState::Scanning, begin, begin + length);
    }

    void Scan() {
        const bool isDecoration = Holds(mPosition, "__") && mPosition + 2 < mName.size();
        if (!isDecoration && !mIsListPending) {
            return CopyCharacter();
        }
        mIsListPending = false;
        ReadDecoration(isDecoration ? mPosition + 2 : mPosition);
    }

    void ReadDecoration(std::size_t position) {
        const char letter = mName[position];
        if (IsDigit(letter)) {
            return ReadClassName(position);
        }
        switch (letter) {
        case 'Q':
            return ReadList(position);
        case '$':
            return SkipDollar(position);
        case 'N':
            return ReadNumberedName(position);
        case 't':
            return ReadTemplate(position);
        case 'b':
            return ReadBase(position);
        case 'v':
            return ReadVirtualTable(position);
        default:
            return Fail();
        }
    }

    void ReadClassName(std::size_t position) {
        std::size_t digits = 0;
        const std::size_t length = ParseLength(position, digits);
        if (length == 0 || digits > 4) {
            return Fail();
        }
        const std::size_t begin = position + digits;
        if (begin >= Top().end) {
            return CopyCharacter();
        }
        NoteList(begin);
        Push(FrameState::Scanning, begin, std::min(begin + length, Top().end));
    }

    void ReadList(std::size_t position) {
        if (Left(position) < 3 || !IsDigit(mName[position + 1]) || mName[position + 1] == '0') {
            return Fail();
        }
        const int nameCount = mName[position + 1] - '0';
        const bool isSeparated = mName[position + 2] == 'B' || mName[position + 2] == '_';
        mPosition = position + (isSeparated ? 3 : 2);
        PushWithSegment(FrameState::Qualified, Top().end, nameCount);
    }

    void SkipDollar(std::size_t position) {
        mPosition = position + 1;
        mIsChanged = true;
        mIsDemangled = true;
    }

    void ReadNumberedName(std::size_t position) {
        if (Left(position) < 3 || mName[position + 1] != '_') {
            return Fail();
        }
        std::size_t digits = 0;
        const std::size_t length = ParseLength(position + 2, digits);
        const std::size_t behindDigits = position + 2 + digits;
        if (length == 0 || !Holds(behindDigits, "_")) {
            return Fail();
        }
        Top().state = FrameState::Finished;
        Push(FrameState::Plain, behindDigits + 1, behindDigits + 1 + length);
    }

    void ReadTemplate(std::size_t position) {
        if (!Holds(position, "t_") && !Holds(position, "tm__")) {
            return Fail();
        }
        if (mSegment > 0) {
            Top().state = FrameState::Plain;
            return;
        }
        Push(FrameState::Plain, mPosition, mName.size());
    }

    void ReadBase(std::size_t position) {
        if (!Holds(position, "b_")) {
            return Fail();
        }
        constexpr std::string_view mark = "__b";
        if (mWritePosition + mark.size() < sSegmentSize) {
            mark.copy(mSegments[mSegment].data() + mWritePosition, mark.size());
        }
        NoteList(position + 2);
        Push(FrameState::Scanning, position + 2, Top().end);
    }

    void ReadVirtualTable(std::size_t position) {
        return Holds(position, "vtbl") ? CopyCharacter() : Fail();
    }

    /// Remembers a qualified list in the place of a name, without `__` before it.
    void NoteList(std::size_t position) {
        mIsListPending =
            Left(position) >= 3 && mName[position] == 'Q' && IsDigit(mName[position + 1]);
    }

    void CopyCharacter() {
        const char character = mName[mPosition];
        if (IsKept(character, mOptions)) {
            Put(character);
            ++mPosition;
            return;
        }
        mIsChanged = true;
        if (Holds(mPosition, "::")) {
            PutScope();
            mPosition += 2;
            return;
        }
        Put('_');
        ++mPosition;
    }

    /// The last byte of a segment stays its terminator: characters that don't fit are dropped.
    void Put(char character) {
        if (mWritePosition + 1 < sSegmentSize) {
            mSegments[mSegment][mWritePosition++] = character;
        }
    }

    void PutScope() {
        auto& segment = mSegments[mSegment];
        if (mWritePosition == 0 || segment[mWritePosition - 1] == '.') {
            return Put('_');
        }
        const auto room = static_cast<int>(sSegmentSize - 1 - mWritePosition);
        mWritePosition += static_cast<std::size_t>(
            utStrNCpy(segment.data() + mWritePosition, mOptions.mScopeSeparator, room));
    }

    void WriteQualifiedName(char* out, int outSize) const {
        *out = '\0';
        for (std::size_t segment = 1; segment <= mSegment; ++segment) {
            if (mSegments[segment][0] != '\0') {
                AppendText(out, mSegments[segment].data(), outSize);
                AppendText(out, mOptions.mScopeSeparator, outSize);
            }
        }
        const char* baseName = mSegments[0].data();
        AppendText(out, mOptions.mStripUnderscore && *baseName == '_' ? baseName + 1 : baseName,
                   outSize);
    }

    [[nodiscard]] bool Holds(std::size_t position, std::string_view text) const {
        return position <= mName.size() && mName.substr(position).starts_with(text);
    }

    /// Characters of the name from a position that lies in it.
    [[nodiscard]] std::size_t Left(std::size_t position) const { return mName.size() - position; }

    /// The length at a position, if it fits the frame; else 0.
    [[nodiscard]] std::size_t ParseLength(std::size_t position, std::size_t& digits) {
        const std::size_t end = Top().end;
        const std::size_t room = position < end ? end - position : 0;
        int digitCount = 0;
        const int length = ParseNameLength(mName.substr(position, room), room, digitCount);
        digits = static_cast<std::size_t>(digitCount);
        return static_cast<std::size_t>(length);
    }

    std::string_view mName;
    const VDemanglingOptions& mOptions;
    std::size_t mPosition = 0;
    std::size_t mDepth = 0;
    std::size_t mSegment = 0;
    std::size_t mWritePosition = 0;
    bool mIsChanged = false;
    bool mIsDemangled = false;
    bool mIsTooDeep = false;
    bool mIsListPending = false;
    std::array<Frame, sFrameCount> mFrames;
    std::array<std::array<char, sSegmentSize>, sSegmentCount> mSegments;
};

} // namespace

bool DemangleDoubleUnderscoreName(char* out, int outSize, std::string_view name, bool& demangled,
                                  const VDemanglingOptions& options) {
    if (!IsWorthParsing(name, options)) {
        return false;
    }
    DoubleUnderscoreParser parser(name, options);
    return parser.Parse() && parser.Write(out, outSize, demangled);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
