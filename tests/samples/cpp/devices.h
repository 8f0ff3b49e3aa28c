// The devices of the plant: single, multiple and virtual inheritance, nested types, static members.
#ifndef DEVICES_H
#define DEVICES_H

#include "filters.h"

namespace plant {

class Device {
public:
    class Address {
    public:
        struct Route {
            u8 segment;
            u8 hop[3];
        };
        Route mRoute;
        u16 mPort;
    };
    enum State { Off, Starting = 5, Running };

    explicit Device(u16 port);
    virtual u32 Poll();
    virtual const char* Kind() const = 0;

    static u32 sCount;
    static const int sLimit = 12;
    static inline u16 sLastPort = 80;
    static Device* sFirst;

protected:
    Address mAddress{};
    State mState = Off;
    Device* mNext = nullptr;
};

namespace io {

struct Sampled : virtual Device {
    explicit Sampled(u16 port);
    u32 Poll() override;
    const char* Kind() const override;
    signal::Ring<i16, 4> mSamples;
};

struct Driven : virtual Device {
    explicit Driven(u16 port);
    const char* Kind() const override;
    union {
        u32 mOutput;
        struct {
            u16 low, high;
        } mHalves;
    };
    volatile u32 mPending : 5;
    u32 mLatched : 7;
};

class Valve : public Sampled, private Driven {
public:
    Valve(u16 port, Device& partner);
    u32 Poll() override;
    const char* Kind() const override;

private:
    Device& mPartner;
    u8 mPosition = 50;
};

} // namespace io

// Two bases without virtual functions, so that the second one's offset is plain.
struct Named {
    const char* mName;
    u8 mLength;
};
struct Placed {
    i32 mRow, mColumn;
};
class Label : public Named, protected Placed {
public:
    constexpr Label(const char* name, i32 row)
        : Named{name, 3}
        , Placed{row, 2} {}
    bool mIsShown : 1 = true;
    signed char mTilt : 4 = -2;
    wchar_t mSign = L'!';
};

class Timer final : public Device {
public:
    Timer();
    u32 Poll() override;
    const char* Kind() const override { return "timer"; }
    u32 (Timer::*mOnTick)() = &Timer::Poll;
    u32 Timer::*mWatched = &Timer::mTicks;
    u32 mTicks = 0;
};

extern io::Valve gMainValve;
extern Timer gTimer;
extern "C" u32 gRawInput;

} // namespace plant

#endif
