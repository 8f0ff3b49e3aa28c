// The signal path: template instances, references, pointers to members, names that meet those of
// other units.
#include "devices.h"

namespace {
u32 polls = 4;
} // namespace

static union {
    float level;
    u32 levelBits;
};
static const volatile bool isTuned = true;

namespace signal {

inline namespace v2 {
u16 revision = 2;
}

struct Sample {
    i16 value;
    Quality quality : 8;
    Slope slope : 3;
};

Ring<i32, 3> gHistory;
Ring<Ring<Sample, 2>, 2> gNested;
ShortRing<const char*> gTexts;
Stage<i32, float> gScale = {[](const i32& raw) { return static_cast<float>(raw) * 0.5f; }, 0,
                            nullptr};
Stage<Sample> gClamp;
extern const int gThreshold = 40;
Gate<Quality::Uncertain, true, &gThreshold> gGate;

i32& gLatest = gHistory.mItems[0];
const Quality& gQuality = gGate.mSeen;
u32&& gBound = 9;
u16 plant::Device::Address::*gPortOf = &plant::Device::Address::mPort;
Sample (*gConvert)(const Sample&, plant::Device*, Quality) = nullptr;
decltype(nullptr) gNothing;
char16_t gUnit[4] = u"kPa";
char32_t gSymbol = U'\u00b0';

void Update(plant::Device& device) {
    static u32 polls = 5;
    static auto sMeasure = [](int value) { return value + 1; };
    struct {
        u32 poll;
    } static sLast;
    sLast.poll = device.Poll() + static_cast<u32>(sMeasure(2));
    gHistory.Put(static_cast<i32>(sLast.poll));
    gTexts.Put(device.Kind());
    gNested.Put({});
    level = gScale.Run(gLatest);
    gClamp.Run(gNested.mItems[0].mItems[0]);
    polls = polls + levelBits + ::polls++ + isTuned + revision + sizeof(gGate);
}

} // namespace signal
