#include "model/RecordedCall.h"

namespace Tessel::Norn::Brindle::DataModel {

namespace {

void AppendCharacter(std::string& text, char character) {
    constexpr std::string_view sDigits = "0123456789ABCDEF";
    constexpr unsigned sFirstPrintable = 0x20;
    const auto code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
        text.append({'\\', character});
    } else if (code < sFirstPrintable) {
        text.append({'\\', 'x', sDigits[code / 16U], sDigits[code % 16U]});
    } else {
        text.push_back(character);
    }
}

/// Appends values of all types in the form of the text.
class ValueAppender {
public:
    explicit ValueAppender(std::string& text)
        : mText(text) {}

    void operator()(std::monostate) const {}
    void operator()(std::uint64_t number) const { mText.append(std::to_string(number)); }
    void operator()(std::int64_t number) const { mText.append(std::to_string(number)); }
    void operator()(bool flag) const { mText.append(flag ? "true" : "false"); }
    void operator()(const std::string& value) const {
        mText.push_back('"');
        for (const char character : value) {
            AppendCharacter(mText, character);
        }
        mText.push_back('"');
    }
    void operator()(const std::vector<std::uint64_t>& list) const {
        std::string_view separator = "[";
        for (const std::uint64_t number : list) {
            mText.append(separator).append(std::to_string(number));
            separator = ", ";
        }
        mText.append(list.empty() ? "[]" : "]");
    }

private:
    std::string& mText;
};

} // namespace

std::string RecordedCall::Text() const {
    std::string text(operation);
    std::string_view separator = "(";
    for (const RecordedArgument& argument : arguments) {
        text.append(separator).append(argument.name).append("=");
        std::visit(ValueAppender(text), argument.value);
        separator = ", ";
    }
    text.append(arguments.empty() ? "()" : ")");
    if (!std::holds_alternative<std::monostate>(result)) {
        text.append(" -> ");
        std::visit(ValueAppender(text), result);
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::DataModel
