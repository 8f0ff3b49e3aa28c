#include "InputLines.h"

#include <algorithm>
#include <istream>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::string_view sBlanks = " \t\r\f\v";

} // namespace

std::vector<std::string> ReadLines(std::istream& input) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        const std::size_t begin = line.find_first_not_of(sBlanks);
        if (begin != std::string::npos) {
            const std::size_t end = line.find_last_not_of(sBlanks) + 1;
            lines.push_back(line.substr(begin, end - begin));
        }
    }
    return lines;
}

std::vector<std::string> WithInputLines(const std::vector<std::string>& arguments,
                                        std::istream& input) {
    std::vector<std::string> all = arguments;
    const auto place = std::ranges::find(all, "-");
    if (place != all.end()) {
        const std::vector<std::string> lines = ReadLines(input);
        all.insert(all.erase(place), lines.begin(), lines.end());
    }
    return all;
}

} // namespace Tessel::Norn::Brindle::Program
