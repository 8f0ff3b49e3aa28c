// How numbers and names travel in a report: a column of numbers is one text, and a name is written
// once and referred to by number. The page unpacks both and knows what columns mean.
#pragma once

#include "ResultOutput.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <rapidjson/writer.h>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Output of JSON within a script element. "<" is written as an escape, so that no text ends the
/// element or begins a comment.
class ScriptOutput {
public:
    using Ch = char;

    /// @param output borrowed
    explicit ScriptOutput(ResultOutput& output)
        : mOutput(output) {}

    void Put(char character) {
        if (character == '<') {
            mOutput.Write("\\u003c");
        } else {
            mOutput.Put(character);
        }
    }
    void Flush() {}
    /// Writes a text that has no "<" in one piece.
    void Write(std::string_view text) { mOutput.Write(text); }

private:
    ResultOutput& mOutput;
};

/// Writes the JSON of a report. Most of it is long base64 texts, and names of plain letters: these
/// are copied without looking for characters to escape once more.
class PackWriter : public rapidjson::Writer<ScriptOutput> {
public:
    using Writer::Writer;

    /// A text as `WriteText` writes it, faster.
    void FastText(std::string_view text);
    /// @param text without any character that JSON or a script element escapes
    void PlainText(std::string_view text);
};

/// Texts by their numbers. Number 0 is the empty text.
class TextTable {
public:
    /// @param expected approximate number of texts; only saves time
    explicit TextTable(std::size_t expected = 0);

    /// The number of a text that outlives the table.
    std::uint32_t NumberOf(std::string_view text);
    /// The number of a text of which the table keeps a copy.
    std::uint32_t NumberOfCopy(std::string text);

    /// Writes the texts as an array.
    void Write(PackWriter& json) const;

private:
    std::unordered_map<std::string_view, std::uint32_t> mNumbers;
    std::vector<std::string_view> mTexts;
    std::deque<std::string> mCopies;
};

/// Writes numbers as one text: the width of a number in bytes (0, 1, 2, 4 or 8), a colon, and the
/// numbers in base64, least significant byte first. Width 0 says that all of them are 0.
void WriteColumn(PackWriter& json, std::string_view key, std::span<const std::uint64_t> numbers);

/// Writes bytes as base64.
void WriteBytes(PackWriter& json, std::string_view key, std::span<const std::uint8_t> bytes);

} // namespace Tessel::Norn::Brindle::Program
