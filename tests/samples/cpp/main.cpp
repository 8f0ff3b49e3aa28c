// Start of the controller.
#include "devices.h"

namespace signal {
void Update(plant::Device& device);
}

using plant::gTimer;
namespace valves = plant::io;

static signal::ShortRing<plant::Device*> pending;
static plant::Label labels[2] = {{"in", 1}, {"out", 2}};
extern "C" u32 plant_errors;
u32 plant_errors = 0;

// Compilers call it for large initialisations.
extern "C" void* memset(void* place, int value, __SIZE_TYPE__ size) {
    for (volatile u8* byte = static_cast<u8*>(place); size != 0; --size)
        *byte++ = static_cast<u8>(value);
    return place;
}

extern "C" void (*const __init_array_start[])();
extern "C" void (*const __init_array_end[])();

extern "C" void reset() {
    for (auto start = __init_array_start; start != __init_array_end; ++start)
        (*start)();
    for (;;) {
        pending.Put(&gTimer);
        valves::Valve* const valve = &plant::gMainValve;
        signal::Update(*valve);
        plant_errors += labels[plant_errors & 1].mIsShown;
    }
}
