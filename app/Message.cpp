#include "Message.h"

#include "Phrases.h"
#include "PlainText.h"
#include "Terminal.h"

#include <iostream>
#include <string>

namespace Tessel::Norn::Brindle::Program {

void Tell(std::string_view message) {
    std::string text(message);
    ReplaceControlCharacters(text);
    std::cerr << (IsStandardErrorColoured() ? "\x1B[1;31mbrindle:\x1B[0m " : "brindle: ") << text
              << '\n';
}

void Tell(std::string_view file, std::string_view message) {
    Tell(std::string(file).append(": ").append(message));
}

void Tell(const std::system_error& error) {
    std::string text = error.what();
    const std::string reason = error.code().message();
    if (text.ends_with(reason)) {
        text.replace(text.size() - reason.size(), reason.size(), SystemReason(error.code()));
    }
    Tell(text);
}

} // namespace Tessel::Norn::Brindle::Program
