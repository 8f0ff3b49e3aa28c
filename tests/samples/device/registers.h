/* Registers of the device, in the style of vendors' headers: anonymous unions and structures, so
   that a register is reached as a whole and by its fields. */
#ifndef REGISTERS_H
#define REGISTERS_H

typedef __INT8_TYPE__ int8_t;
typedef __INT16_TYPE__ int16_t;
typedef __INT32_TYPE__ int32_t;
typedef __UINT8_TYPE__ uint8_t;
typedef __UINT16_TYPE__ uint16_t;
typedef __UINT32_TYPE__ uint32_t;
typedef __UINT64_TYPE__ uint64_t;

/* One type for several anonymous members. */
struct range {
    int16_t low;
    int16_t high;
};

typedef struct {
    union {
        volatile uint32_t CR;
        struct {
            volatile uint32_t EN : 1;
            volatile uint32_t MODE : 3;
            uint32_t : 4;
            volatile uint32_t PRESCALE : 16;
        } CR_b;
    };
    union {
        volatile uint32_t SR;
        struct {
            volatile uint32_t OVERFLOW : 1;
            uint32_t : 15;
            volatile uint32_t CAPTURED : 2;
        };
        volatile uint8_t SR_BYTES[4];
    };
    struct {
        struct {
            volatile uint16_t CAPTURE[4];
            union {
                volatile uint16_t FILTER;
                struct {
                    volatile uint8_t FILTER_LOW;
                    volatile uint8_t FILTER_HIGH;
                };
            };
        };
        const uint16_t RESERVED[3];
    };
} TIMER_TypeDef;

typedef struct {
    volatile uint32_t DATA;
    struct {
        volatile uint32_t SET;
        volatile uint32_t CLEAR;
    } BANK[2];
} PORT_TypeDef;

/* Units of the bus: nothing is aligned, fields cross their bytes. */
#pragma pack(push, 1)
struct frame {
    uint8_t start;
    uint16_t kind : 3;
    uint16_t number : 11;
    uint16_t flags : 7;
    int32_t position : 21;
    uint32_t stamp;
    uint64_t serial : 40;
    uint64_t check : 9;
    union {
        uint32_t raw;
        uint32_t priority : 5;
        struct {
            uint16_t sender : 12;
            uint16_t receiver : 12;
        };
    };
    uint8_t end;
};
#pragma pack(pop)

struct __attribute__((packed)) mixed {
    uint8_t first : 5;
    uint16_t second : 9;
    uint32_t third : 27;
    int8_t fourth : 2;
    uint32_t plain;
    uint16_t last : 16;
};

struct span {
    struct range;
    struct {
        struct range;
        uint8_t count;
    } inner;
    union {
        struct {
            uint8_t low_byte, high_byte;
        };
        uint16_t both;
    };
};

enum level { LEVEL_LOW = -1, LEVEL_NORMAL, LEVEL_HIGH = 300 };

extern TIMER_TypeDef TIMER;
extern volatile PORT_TypeDef PORT;
extern volatile PORT_TypeDef SENSOR;
extern struct frame last_frame;
extern uint16_t ticks;
int16_t clamp(int16_t value);
void timers_run(void);

#endif
