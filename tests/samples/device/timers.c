/* Timing, and the frames on the bus. Names of statics repeat those of the other unit. */
#include "registers.h"

struct frame last_frame = {1, 2, 3, 4, -5, 6, 7, 8, {9}, 10};
struct mixed mixed_fields = {1, 2, 3, -1, 5, 6};
struct span limits[2] = {{{-3, 3}, {{-4, 4}, 5}, {{6, 7}}}};
static int16_t counter = 20;
static struct {
    struct span own;
    union {
        uint32_t word;
        struct {
            uint32_t low : 12;
            uint32_t high : 20;
        };
    };
} history[2];
volatile uint64_t wide = 0x123456789AULL;
_Bool is_running;
__CHAR16_TYPE__ letter16 = u'a';
__CHAR32_TYPE__ letter32 = U'b';

/* Inlined wherever it is called: its static exists without a function that has code. */
__attribute__((always_inline)) static inline int16_t limited(int16_t value) {
    static int16_t seen = 4;
    seen = (int16_t)(seen + (value > limits[0].high));
    return value > seen ? seen : value;
}

int16_t clamp(int16_t value) {
    return (int16_t)(limited(value) + limited((int16_t)(value + 1)));
}

void timers_run(void) {
    static uint16_t starts = 3;
    for (uint8_t round = 0; round < 2; ++round) {
        static uint16_t starts = 5;
        history[round].own = limits[round];
        starts = (uint16_t)(starts + TIMER.CAPTURE[round]);
        last_frame.number = starts & 0x7FFU;
    }
    counter = (int16_t)(counter + (int16_t)starts);
    last_frame.position = mixed_fields.fourth + counter;
    is_running = letter16 == letter32;
    wide |= (uint16_t)(++ticks + starts);
}
