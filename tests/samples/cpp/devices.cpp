// The devices and their static data.
#include "devices.h"

extern "C" void __cxa_pure_virtual() {
    for (;;) {
    }
}

namespace plant {

u32 Device::sCount = 1;
Device* Device::sFirst = nullptr;
Timer gTimer;
u32 gRawInput = 17;

namespace {
u32 polls = 3;
struct Journal {
    u16 mLines;
    Device::State mStates[2][3];
} journal = {1, {{Device::Running}}};
} // namespace

Device::Device(u16 port) {
    mAddress.mPort = port;
    mNext = sFirst;
    sFirst = this;
    ++sCount;
}

u32 Device::Poll() {
    journal.mStates[polls & 1][journal.mLines % 3] = mState;
    return ++polls;
}

Timer::Timer()
    : Device(1) {}

u32 Timer::Poll() {
    static Label sLabel("tick", 4);
    static u32 sSeen = gRawInput;
    sLabel.mIsShown = sSeen != 0;
    return mTicks += Device::Poll();
}

namespace io {

Sampled::Sampled(u16 port)
    : Device(port) {}

u32 Sampled::Poll() {
    mSamples.Put(static_cast<i16>(gRawInput));
    return Device::Poll();
}

const char* Sampled::Kind() const {
    return "sampled";
}

Driven::Driven(u16 port)
    : Device(port)
    , mOutput(0)
    , mPending(3)
    , mLatched(9) {}

const char* Driven::Kind() const {
    return "driven";
}

Valve::Valve(u16 port, Device& partner)
    : Device(port)
    , Sampled(port)
    , Driven(port)
    , mPartner(partner) {}

u32 Valve::Poll() {
    struct Move {
        u8 from;
        i16 by;
    };
    static Move sMoves[2] = {{1, -1}};
    sMoves[0].from = mPosition;
    mPosition = static_cast<u8>(mPosition + sMoves[1].by);
    return mPartner.Poll() + Sampled::Poll();
}

const char* Valve::Kind() const {
    return "valve";
}

} // namespace io

io::Valve gMainValve(2, gTimer);

} // namespace plant
