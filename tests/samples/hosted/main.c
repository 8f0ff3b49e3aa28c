/* A program for a system with a C library, compiled as its user would: by the compiler's defaults.
 */
#include <math.h>
#include <stdio.h>
#include <string.h>

typedef struct {
    const char* name;
    double factor;
    float samples[3];
    union {
        int whole;
        struct {
            short low, high;
        };
    };
} channel_t;

channel_t channels[2] = {{"inlet", 0.5, {1, 2, 3}, {4}}, {"outlet", 1.5, {0}, {5}}};
static double sum = 1;
long double energy;
_Complex double phasor;
_Atomic int pending = 3;
#ifdef __linux__
_Thread_local int own = 4;
#else
int own = 4;
#endif
static char line[40];

static double weigh(const channel_t* channel) {
    static unsigned calls = 1;
    ++calls;
    return sqrt(channel->factor) * calls;
}

int main(void) {
    for (int number = 0; number < 2; ++number) {
        static int rounds = 2;
        sum += weigh(&channels[number]) + rounds++;
    }
    energy += sum;
    phasor += own;
    snprintf(line, sizeof line, "%s %g", channels[pending & 1].name, sum);
    puts(line);
    return (int)strlen(line);
}
