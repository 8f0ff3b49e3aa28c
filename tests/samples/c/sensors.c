/* Sampling: registers, typedef chains, qualifiers, weak and common symbols. */
#include "plant.h"

struct reading {
    adc_value_t value;
    const uint8_t channel;
    volatile uint8_t* flag;
};

struct ring {
    struct reading items[4];
    struct reading *in, *out;
    struct ring* overflow;
};

typedef const struct reading* (*filter_t)(const struct reading* reading, int strength, ...);
typedef filter_t (*filter_choice_t)(enum mode mode);

int spare_words[4];
double spare_ratio;
__attribute__((weak)) uint32_t calibration = 1000;
adc_register_t adc_results[2][8] = {{1}};
volatile const adc_register_t* const adc_base = adc_results[1];

static int32_t counter = 20;
static struct ring ring;
const char* const channel_names[] = {"inlet", "outlet", "ambient"};
int16_t (*row)[8];
uint8_t (*const pages[2])[4][16] = {0};

static const struct reading* smooth(const struct reading* reading, int strength, ...) {
    static struct reading last = {0, 3, 0};
    last.value = (adc_value_t)((last.value * strength + reading->value) / (strength + 1));
    return &last;
}

static filter_t choose(enum mode mode) {
    return mode == MODE_AUTOMATIC ? smooth : 0;
}

filter_choice_t choice = choose;
filter_t filters[2] = {smooth};

void sensors_sample(void) {
    struct reading* const in = ring.in ? ring.in : ring.items;
    in->value = (adc_value_t)(adc_results[0][counter & 7] + calibration);
    if (choice(motors[0].mode))
        ring.out = (struct reading*)filters[0](in, spare_words[0]);
    counter -= spare_words[1];
}
