/* What the device doesn't use: the linker may discard all of it. */
#include "registers.h"

uint32_t spare_words[4] = {1, 2};
static struct range spare_range = {-1, 1};
int16_t spare_level;

int16_t spare_clamp(int16_t value) {
    static int16_t spare_calls = 3;
    ++spare_calls;
    spare_range.high = value;
    return (int16_t)(spare_calls + spare_level);
}
