// Class templates of the signal path: type parameters, value parameters, nested instances.
#ifndef FILTERS_H
#define FILTERS_H

using u8 = __UINT8_TYPE__;
using u16 = __UINT16_TYPE__;
using u32 = __UINT32_TYPE__;
using i16 = __INT16_TYPE__;
using i32 = __INT32_TYPE__;

namespace signal {

enum class Quality : u8 { Bad, Uncertain = 0x40, Good = 0xC0 };
enum class Slope : i16 { Falling = -1, Flat, Rising };

template <typename Item, int Capacity>
class Ring {
public:
    enum Fill { Empty, Partial, Full = Capacity };

    void Put(const Item& item) {
        mItems[mHead] = item;
        mHead = (mHead + 1) % Capacity;
        mFill = mHead == 0 ? Full : Partial;
        ++sWrites;
    }

    Item mItems[Capacity] = {};
    Fill mFill = Empty;
    static inline u32 sWrites = Capacity;

private:
    u32 mHead = 0;
};

template <typename Input, typename Output = Input>
struct Stage {
    using Function = Output (*)(const Input&);
    Function mFunction;
    Output mLast;
    Stage* mNext;

    Output Run(const Input& input) {
        static u32 sRuns = 0;
        ++sRuns;
        mLast = mFunction(input);
        return mNext ? mNext->mLast : mLast;
    }
};

template <Quality Limit, bool IsStrict, const int* Table>
struct Gate {
    Quality mSeen = Limit;
    bool mIsOpen : 1 = IsStrict;
    bool mIsHeld : 1 = false;
    const int* mTable = Table;
};

template <typename Item>
using ShortRing = Ring<Item, 2>;

} // namespace signal

#endif
