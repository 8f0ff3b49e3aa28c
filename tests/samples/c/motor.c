/* Control of the motors: tables, static state on every level of nesting. */
#include "plant.h"

static void stop_motor(motor_t* motor, alarm_t alarm);

volatile uint32_t tick = 1;
extern volatile uint32_t system_tick __attribute__((alias("tick")));
const int16_t sine[2][4][3] = {{{0, 1, 2}, {3, 4, 5}}, {{-1, -2, -3}}};

motor_t motors[3] = {
    {.name = "feed", .next = &motors[1], .loops = {{.gain = 1.5f}}, .on_fault = stop_motor},
    {.name = "drain", .next = &motors[2], .previous = &motors[0], .mode = MODE_MANUAL},
    {.name = "mixer", .previous = &motors[1], .status = {.trim = -3, .stamp = 0x123456789AULL}},
};

static int32_t counter = 10;
static struct {
    uint8_t head;
    alarm_t entries[6];
} alarm_log = {1, {ALARM_CURRENT}};

static void stop_motor(motor_t* motor, alarm_t alarm) {
    static uint32_t stops = 2;
    motor->mode = MODE_FAULT;
    alarm_log.entries[alarm_log.head++ % 6] = alarm;
    stops += tick;
    if (stops > 5) {
        static uint16_t overflow = 3;
        overflow = (uint16_t)(overflow + stops);
        {
            static uint8_t stops = 4;
            stops = (uint8_t)(stops ^ overflow);
            motor->serial.bytes[0] = stops;
        }
        for (unsigned round = 0; round < tick; ++round) {
            static struct limits seen = {-1.0f, 1.0f};
            seen.high += seen.low;
            motor->speed = seen.high;
        }
    }
}

void motor_step(motor_t* motor) {
    static uint32_t stops = 7;
    struct pid* const loop = &motor->loops[tick & 1];
    loop->integral += loop->gain * (float)(motor->target - motor->position);
    motor->status.phase = (unsigned)sine[0][tick & 3][counter % 3] & 0xFFF;
    counter += ++stops == 100;
    if (loop->integral > loop->output.high && motor->on_fault)
        motor->on_fault(motor, ALARM_CURRENT);
}
