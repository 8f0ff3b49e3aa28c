// The versions of A2L that the program writes.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Program::A2l {

/// In their order.
enum class Version : std::uint8_t { V1_5_1, V1_6, V1_7_1 };

} // namespace Tessel::Norn::Brindle::Program::A2l
