// A C++ program that leans on its run-time library, with the kinds of variables that C lacks.
#include <atomic>
#include <cstddef>
#include <string>
#include <utility>

namespace plant {

struct Base {
    virtual ~Base() = default;
    int mNumber = 1;
};

struct Sensor : virtual Base {
    enum class Kind : unsigned char { Plain, Filtered = 7 };
    static inline unsigned sCount = 2;
    static constexpr int kLimit = 30;
    union {
        float mValue;
        struct {
            unsigned short mLow, mHigh;
        };
    };
    Kind mKind = Kind::Filtered;
    int mScale = 3;
    unsigned mFlags : 3;
    std::byte mByte{9};
    int Read(int scale) { return static_cast<int>(mValue) * scale; }
};

template <typename Item, int Size>
struct Ring {
    static Item sLast;
    Item mItems[Size];
};
template <typename Item, int Size>
Item Ring<Item, Size>::sLast{};

Sensor sensor;
Ring<short, 3> ring = {{1, 2, 3}};
int Sensor::*place = &Sensor::mScale;
int (Sensor::*reader)(int) = &Sensor::Read;
int value = 4;
int& reference = value;
int&& moved = std::move(value);
std::nullptr_t nothing = nullptr;
std::atomic<int> pending{5};
std::string title = "plant";
char16_t letter = u'a';
#ifdef __linux__
thread_local int own = 6;
#else
int own = 6;
#endif

namespace {
static union {
    unsigned word;
    unsigned char bytes[4];
};
int hidden = 7;
} // namespace

auto twice = [](int number) {
    static int calls = 8;
    return number * 2 + calls++;
};

inline int Count() {
    static int count = 9;
    return ++count;
}

} // namespace plant

int main() {
    using namespace plant;
    word = static_cast<unsigned>(Count());
    hidden += twice(own) + Ring<short, 3>::sLast + moved + reference;
    return (sensor.*reader)(sensor.*place) + ring.mItems[0] + pending + hidden +
           static_cast<int>(title.size());
}
