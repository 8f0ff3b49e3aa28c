/* The only unit that knows the power supply whole. */
#include "plant.h"

struct supply {
    struct limits voltage;
    union word identity;
    enum { SUPPLY_BATTERY, SUPPLY_MAINS = 300 } source;
    struct cell {
        uint16_t millivolts;
        int8_t celsius;
        struct cell* neighbour;
    } cells[4];
    long double energy;
};

static struct supply main_supply = {{11.5f, 14.0f}, {7}, SUPPLY_MAINS, {{3300, 20, 0}}, 1.0L};
struct supply* const active_supply = &main_supply;

int supply_check(const struct supply* supply) {
    static long counter = 30;
    counter += supply->cells[counter & 3].millivolts;
    main_supply.cells[0].neighbour = &main_supply.cells[1];
    return supply->source == SUPPLY_MAINS && counter != 0;
}
