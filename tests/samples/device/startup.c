/* Start of the device: the vector table, which lies at the lowest address, and the registers. */
#include "registers.h"

typedef void (*vector_t)(void);
void reset(void);

static void ignore(void) {
    static uint8_t ignored;
    ++ignored;
}

__attribute__((section(".vectors"), used))
const vector_t vector_table[4] = {reset, ignore, ignore, reset};

/* Lies in no section of the image: the build takes the section away. */
__attribute__((section(".ports"))) volatile PORT_TypeDef PORT;

/* Its section is part of the image, and nothing is loaded there. */
__attribute__((section(".timers"))) TIMER_TypeDef TIMER;

uint16_t ticks = 1;
static int16_t counter = 10;
enum level level = LEVEL_HIGH;

void reset(void) {
    /* Takes the place of the global of this name, and has none itself. */
    int16_t limits = (int16_t)(ticks + 1);
    static uint16_t starts = 2;
    while (++starts != 0) {
        static struct range counter = {-1, 1};
        PORT.BANK[0].SET = SENSOR.DATA + (uint32_t)clamp(limits);
        counter.high = (int16_t)(counter.high + counter.low);
        TIMER.CR_b.EN = (uint32_t)counter.high & 1U;
        timers_run();
    }
    level = (enum level)counter;
}
