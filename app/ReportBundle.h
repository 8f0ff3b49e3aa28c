// The committed bundle `app/report/bundle/report.html` as bytes of the program. CMake generates its
// source.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

std::string_view ReportBundle();

} // namespace Tessel::Norn::Brindle::Program
