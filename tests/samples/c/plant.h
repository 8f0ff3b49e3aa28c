/* What all units of the controller know of the plant: motors, their control, the words on the bus.
 */
#ifndef PLANT_H
#define PLANT_H

#include "types.h"

enum mode { MODE_FAULT = -1, MODE_OFF, MODE_MANUAL, MODE_AUTOMATIC = 7 };

typedef enum {
    ALARM_NONE = 0,
    ALARM_CURRENT = 0x10,
    ALARM_TEMPERATURE = 0x200,
    ALARM_STOP = 0x80000000u
} alarm_t;

struct limits {
    float low;
    float high;
};

struct pid {
    float gain;
    float integral;
    struct limits output;
};

union word {
    uint32_t all;
    struct {
        uint16_t first;
        uint16_t second;
    } halves;
    uint8_t bytes[4];
};

struct status {
    unsigned ready : 1;
    unsigned fault : 3;
    int trim : 5;
    unsigned : 4;
    unsigned phase : 12;
    uint8_t channel : 3;
    uint8_t range : 6;
    uint16_t count : 10;
    int16_t slope : 9;
    _Bool enabled : 1;
    enum mode mode : 5;
    unsigned : 0;
    uint64_t stamp : 40;
    uint64_t source : 20;
    char tail;
};

union frame {
    uint32_t raw;
    unsigned priority : 3;
    struct {
        uint8_t id : 4;
        uint8_t length : 4;
        uint8_t payload[3];
    } parts;
};

struct motor;
typedef void (*fault_handler_t)(struct motor* motor, alarm_t alarm);

typedef struct motor {
    const char* name;
    struct motor* next;
    struct motor* previous;
    struct pid loops[2];
    union word serial;
    union {
        float speed;
        struct {
            uint16_t ticks;
            uint16_t scale;
        };
    };
    struct {
        int32_t position;
        union {
            int32_t target;
            uint8_t target_bytes[4];
        };
    };
    struct status status;
    volatile enum mode mode;
    fault_handler_t on_fault;
    winding_t current;
} motor_t;

/* Known to most units by name alone; supply.c has it whole. */
struct supply;

extern motor_t motors[3];
extern volatile uint32_t tick;
extern struct supply* const active_supply;
extern int spare_words[4];
extern uint32_t calibration;

/* Filled by the factory; its unit is built without debug information. */
extern uint32_t factory_settings[8];
extern uint8_t factory_revision;

void motor_step(motor_t* motor);
void sensors_sample(void);
int supply_check(const struct supply* supply);

#endif
