/* Variables of the kinds whose bytes become values. */
enum phase { PHASE_BACK = -1, PHASE_REST, PHASE_RUN };
enum address { ADDRESS_ROM, ADDRESS_PORT = 0xF0000000U };
enum wide { WIDE_LOW = 5, WIDE_HIGH = 0x100000005LL, WIDE_BACK = -1 };
enum all { ALL_WORD = 0xFFFFFFFFU, ALL_BITS = 0xFFFFFFFFFFFFFFFFULL };

/* Packed, so that fields cross the storage units of their type. */
struct __attribute__((packed)) fields {
    unsigned long long lead : 5;
    unsigned long long wide : 62;
    long long last : 61;
    enum phase phase : 3;
};

#ifdef __clang__
__fp16 half;
#else
_Float16 half;
#endif
float single;
double twin;
signed char letter;
unsigned short count;
long long distance;
unsigned long long ticks;
_Bool enabled;
enum phase phase;
enum address address;
enum wide wide;
enum all all;
struct fields fields;
struct fields* link;

int main(void) {
    return 0;
}
