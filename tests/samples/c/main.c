/* Start of the controller, and the scalars, local types and odd shapes that no other unit needs. */
#include "plant.h"

struct packet {
    uint16_t length;
    union frame frames[2];
    uint8_t data[];
};

#pragma pack(push, 1)
struct packed_header {
    uint8_t kind;
    uint32_t stamp;
    uint16_t code : 11;
    uint16_t flags : 5;
    uint64_t serial;
};
#pragma pack(pop)

char letter = 'a';
signed char small = -1;
_Bool is_ready;
long long wide = -5;
unsigned long machine_word = 6;
_Complex float phasor;
__WCHAR_TYPE__ wide_letter;
void* anything;
const void* volatile seen;
void (*vector)(void);
struct packet* incoming;
struct packed_header header = {1, 2, 3, 4, 5};
alarm_t last_alarm = ALARM_STOP;
const union frame default_frame = {.parts = {3, 2, {1}}};
struct nobody* unknown_pointer;

struct {
    int32_t x, y;
} origin = {1, 2}, corners[2][2];

union {
    float real;
    uint32_t bits;
} converter;

static uint8_t only_written __attribute__((used)) = 9;
static const uint32_t version __attribute__((used)) = 0x0102;

static int local_types(int choice) {
    struct step {
        int16_t from, to;
        enum { STEP_UP, STEP_DOWN } direction;
    };
    static struct step steps[3] = {{1, 2, STEP_DOWN}};
    typedef int16_t height_t;
    static height_t height = 5;
    height = (height_t)(height + steps[choice % 3].to);
    return height;
}

__attribute__((noinline)) static int run(void) {
    extern uint8_t factory_revision;
    for (unsigned number = 0; number < 3; ++number)
        motor_step(&motors[number]);
    sensors_sample();
    origin.x += (int32_t)(factory_settings[1] + factory_revision);
    is_ready = supply_check(active_supply);
    return local_types(origin.x) + (int)tick;
}

void reset(void) {
    while (run())
        ++machine_word;
}
