#include "Message.h"

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

} // namespace Tessel::Norn::Brindle::Program
