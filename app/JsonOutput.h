// How the program writes JSON: RapidJSON's streaming writer on the result output, with the few
// forms that several commands share. Texts given here are valid UTF-8.
#pragma once

#include "ResultOutput.h"

#include <cstdint>
#include <rapidjson/writer.h>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Version of everything that the program writes as JSON, as docs/schema describes it. It grows
/// when a field is removed or changes its meaning, not when fields are added.
inline constexpr std::uint64_t kJsonVersion = 1;

using JsonWriter = rapidjson::Writer<ResultOutput>;

// Templates, since a report is written to an output of its own.

template <typename Output>
void WriteText(rapidjson::Writer<Output>& json, std::string_view text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

template <typename Output>
void WriteKey(rapidjson::Writer<Output>& json, std::string_view key) {
    json.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
}

template <typename Output>
void WriteField(rapidjson::Writer<Output>& json, std::string_view key, std::string_view text) {
    WriteKey(json, key);
    WriteText(json, text);
}

template <typename Output>
void WriteField(rapidjson::Writer<Output>& json, std::string_view key, std::uint64_t number) {
    WriteKey(json, key);
    json.Uint64(number);
}

template <typename Output>
void WriteField(rapidjson::Writer<Output>& json, std::string_view key, bool flag) {
    WriteKey(json, key);
    json.Bool(flag);
}

} // namespace Tessel::Norn::Brindle::Program
