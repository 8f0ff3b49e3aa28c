// The map from text to pointer, the growable array and the range map: single cases that a fault
// would break, and long runs of random operations against containers of the standard library.
#include "container/VArrayAsTessel.h"
#include "container/VMapStringToPtr.h"
#include "container/VValueRangeMap.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <map>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {
namespace {

constexpr std::int32_t kMaximum = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinimum = std::numeric_limits<std::int32_t>::min();

using Random = std::mt19937;

template <typename Number>
Number Pick(Random& random, Number low, Number high) {
    return std::uniform_int_distribution<Number>(low, high)(random);
}

// All entries of a map; an entry met twice or an enumeration that doesn't end fails the test.
std::map<std::string, void*> Enumerate(const VMapStringToPtr& map) {
    std::map<std::string, void*> entries;
    VMapStringToPtr::Position position = map.GetStartPosition();
    for (std::int32_t step = 0; step < map.GetCount() && position != 0; ++step) {
        const char* key = nullptr;
        void* value = nullptr;
        map.GetNextAssoc(position, key, value);
        EXPECT_TRUE(entries.emplace(key, value).second) << key;
    }
    EXPECT_EQ(position, 0);
    return entries;
}

TEST(VMapStringToPtr, HashesSignedCharactersIn32Bits) {
    for (const auto& [key, hash] :
         {std::pair{"", 0U}, std::pair{"a", 97U}, std::pair{"main", 4026341U},
          std::pair{"\xE9", 0xFFFFFFE9U}, std::pair{"\x80z", 0xFFFFEFFAU},
          std::pair{"\x01\xFF", 32U}, std::pair{"_ZN6engine5startEv", 1234175537U},
          std::pair{"\xE9tat s\xFCr\x80", 3532642771U}}) {
        EXPECT_EQ(VMapStringToPtr::HashKey(key), hash) << key;
    }
}

TEST(VMapStringToPtr, FilesEachKeyOnceUnderItsExactBytes) {
    VMapStringToPtr map(10);
    std::array<int, 6> targets{};
    // "Ab" and "BA" have the same hash; the texts after them differ only in case or in their last
    // byte.
    const std::array<const char*, 6> keys{"", "Ab", "BA", "ab", "Abc", "\xE4"};
    ASSERT_EQ(VMapStringToPtr::HashKey(keys[1]), VMapStringToPtr::HashKey(keys[2]));

    for (std::size_t index = 0; index < keys.size(); ++index) {
        std::string key = keys[index];
        void*& value = map[key.c_str()];
        EXPECT_EQ(value, nullptr);
        value = &targets[index];
        EXPECT_EQ(&map[keys[index]], &value);
        key.assign(key.size(), '#');
    }

    EXPECT_EQ(map.GetCount(), 6);
    EXPECT_EQ(map.GetHashTableSize(), 17U);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        void* value = nullptr;
        EXPECT_TRUE(map.Lookup(keys[index], value));
        EXPECT_EQ(value, &targets[index]);
    }
    void* value = targets.data();
    EXPECT_FALSE(map.Lookup("A", value));
    EXPECT_EQ(value, targets.data());
    EXPECT_EQ(map.GetCount(), 6);
}

TEST(VMapStringToPtr, KeepsReferencesAndShortChainsWhileItGrows) {
    VMapStringToPtr map(10);
    std::vector<void**> values;
    for (int number = 0; number < 20000; ++number) {
        values.push_back(&map[std::to_string(number).c_str()]);
        ASSERT_GE(map.GetHashTableSize(), static_cast<std::uint32_t>(map.GetCount()));
        EXPECT_TRUE(number != 16 || map.GetHashTableSize() == 17U);
    }
    for (int number = 0; number < 20000; ++number) {
        ASSERT_EQ(&map[std::to_string(number).c_str()], values[static_cast<std::size_t>(number)]);
    }
    const std::uint32_t grownSize = map.GetHashTableSize();
    map.RemoveAll();
    EXPECT_EQ(map.GetHashTableSize(), grownSize);
    EXPECT_EQ(map.GetStartPosition(), 0);
}

TEST(VMapStringToPtr, EndsAnEnumerationWithNullAndBorrowsKeysOnRequest) {
    const std::string key = "a text that the caller owns";
    for (const bool isBorrowed : {false, true}) {
        VMapStringToPtr map(1, isBorrowed);
        map[key.c_str()] = &map;
        VMapStringToPtr::Position position = map.GetStartPosition();
        EXPECT_EQ(position, -1);
        const char* storedKey = nullptr;
        void* value = nullptr;
        map.GetNextAssoc(position, storedKey, value);
        EXPECT_EQ(storedKey, key);
        EXPECT_EQ(static_cast<const void*>(storedKey) == key.c_str(), isBorrowed);
        EXPECT_EQ(value, &map);
        EXPECT_EQ(position, 0);
        map.GetNextAssoc(position, storedKey, value);
        EXPECT_EQ(storedKey, nullptr);
        EXPECT_EQ(value, nullptr);
        EXPECT_EQ(position, 0);
    }
}

TEST(VMapStringToPtr, TakesAnyTableAndBlockSize) {
    for (const std::uint32_t tableSize : {0U, 1U, 2U, 1000U}) {
        for (const std::int32_t blockSize : {kMinimum, 0, 1, 3}) {
            VMapStringToPtr map(blockSize);
            map.InitHashTable(tableSize, tableSize != 2);
            for (int number = 0; number < 100; ++number) {
                map[std::to_string(number).c_str()] = &map;
            }
            EXPECT_EQ(Enumerate(map).size(), 100U);
        }
    }
}

TEST(VMapStringToPtr, SurvivesATableThatLeavesEntriesBehind) {
    VMapStringToPtr map(4);
    void*& left = map["left behind"];
    for (const bool allocate : {true, false}) {
        map.InitHashTable(5, allocate);
        VMapStringToPtr::Position position = map.GetStartPosition();
        const char* key = "";
        void* value = &map;
        map.GetNextAssoc(position, key, value);
        EXPECT_EQ(key, nullptr);
        EXPECT_EQ(position, 0);
        EXPECT_FALSE(map.Lookup("left behind", value));
    }
    EXPECT_NE(&map["left behind"], &left);
    // The leak checker reports if the first entry's key isn't freed with the rest.
}

TEST(VMapStringToPtr, AgreesWithAnOrderedMap) {
    Random random(20240611);
    for (const std::int32_t blockSize : {1, 7, 10}) {
        VMapStringToPtr map(blockSize);
        std::map<std::string, void*> model;
        std::array<char, 64> targets{};
        for (int step = 0; step < 20000; ++step) {
            std::string key(Pick<std::size_t>(random, 0, 5), '\0');
            for (char& character : key) {
                character = "aAbB!\x80\xFF\x7F"[Pick<std::size_t>(random, 0, 7)];
            }
            if (Pick(random, 0, 1) == 0) {
                void* target = &targets[Pick<std::size_t>(random, 0, 63)];
                map[key.c_str()] = target;
                model[key] = target;
            } else {
                void* value = nullptr;
                const auto expected = model.find(key);
                ASSERT_EQ(map.Lookup(key.c_str(), value), expected != model.end());
                ASSERT_EQ(value, expected != model.end() ? expected->second : nullptr);
            }
            ASSERT_EQ(static_cast<std::size_t>(map.GetCount()), model.size());
            if (step % 2500 == 0) {
                ASSERT_EQ(Enumerate(map), model);
            }
            if (step == 12000) {
                map.RemoveAll();
                model.clear();
            }
        }
        EXPECT_EQ(Enumerate(map), model);
    }
}

TEST(VArrayAsTessel, GrowsInStepsOfItsDelta) {
    struct Case {
        std::int32_t lower, delta, newUpper, elementCount, upper;
    };
    for (const Case& test :
         {Case{0, 20, 21, 40, 39}, Case{0, 20, 18, 20, 19}, Case{0, 20, 19, 40, 39},
          Case{0, 20, 20, 40, 39}, Case{0, 1, 4, 6, 5}, Case{0, 0, 4, 6, 5}, Case{5, 8, 5, 8, 12},
          Case{-5, 4, -2, 8, 2}, Case{0, 20, -1, 21, 20}, Case{5, 8, 4, 21, 25},
          Case{0, 20, kMaximum, 0, 20}, Case{1, kMaximum, 1, 0, 21},
          Case{kMinimum, 1, kMaximum, 0, kMinimum + 20}}) {
        VArrayAsTessel<int> array(test.lower + 20, test.lower, test.delta);
        EXPECT_EQ(array.Resize(test.newUpper), test.elementCount)
            << test.lower << ' ' << test.newUpper;
        EXPECT_EQ(array.GetUpperBound(), test.upper) << test.lower << ' ' << test.newUpper;
    }
}

TEST(VArrayAsTessel, RefusesWhatMemoryCannotHold) {
    EXPECT_THROW(VArrayAsTessel<int>(kMaximum, kMinimum, 1), std::bad_alloc);
    EXPECT_THROW(VArrayAsTessel<int>(kMaximum, kMaximum, 1), std::bad_alloc);
    for (const std::int32_t lower : {kMinimum, -3, 0, 3, kMaximum - 30}) {
        VArrayAsTessel<int> array(lower + 2, lower, 10);
        EXPECT_EQ(array.AddAt(7, lower), lower);
        EXPECT_EQ(array.AddAt(8, kMaximum), -1);
        EXPECT_THROW(array[kMaximum], std::bad_alloc);
        if (lower != kMinimum) {
            EXPECT_EQ(array.AddAt(9, lower - 1), -1);
            EXPECT_THROW(array[lower - 1], std::out_of_range);
        }
        EXPECT_EQ(array.GetCount(), 1);
        EXPECT_EQ(array.GetUpperBound(), lower + 2);
        EXPECT_EQ(array[lower], 7);
    }
}

TEST(VArrayAsTessel, RefusesToGrowAFullArrayPastTheLastIndex) {
    VArrayAsTessel<int> array(kMaximum - 1, kMaximum - 2, 1);
    array.AddAt(1, kMaximum - 2);
    array.AddAt(2, kMaximum - 1);
    EXPECT_EQ(array.AddAt(3, kMaximum - 2), -1);
    EXPECT_EQ(array.GetCount(), 2);
    const auto order = [](int key, int element) { return key - element; };
    EXPECT_EQ(array.bsearch(9, order, kMinimum), kMaximum);
}

TEST(VArrayAsTessel, DropsElementsBeyondASmallerBoundForGood) {
    VArrayAsTessel<int> array(9, 0, 4);
    for (int index = 0; index < 10; ++index) {
        array[index] = index + 1;
    }
    EXPECT_EQ(array.Resize(2), 4);
    EXPECT_EQ(array.GetCount(), 4);
    EXPECT_EQ(array[9] + array[4], 0);
    EXPECT_EQ(array[3], 4);
}

TEST(VArrayAsTessel, InsertsAndExtendsLikeAVector) {
    Random random(77);
    for (const std::int32_t lower : {-6, 0, 4}) {
        VArrayAsTessel<int> array(lower + 3, lower, 5);
        std::vector<int> model;
        for (int step = 1; step < 3000; ++step) {
            const auto used = static_cast<std::int32_t>(model.size());
            const std::int32_t offset = Pick(random, 0, used + (step % 50 == 0 ? 30 : 0));
            const auto place = static_cast<std::size_t>(offset);
            if (offset > used) {
                model.resize(place);
            }
            if (step % 3 == 0) {
                model.resize(std::max(model.size(), place + 1));
                array[lower + offset] += step;
                model[place] += step;
            } else {
                ASSERT_EQ(array.AddAt(step, lower + offset), lower + offset);
                model.insert(model.begin() + offset, step);
            }
            ASSERT_EQ(static_cast<std::size_t>(array.GetCount()), model.size());
        }
        for (std::size_t index = 0; index < model.size(); ++index) {
            ASSERT_EQ(array[lower + static_cast<std::int32_t>(index)], model[index]);
        }
    }
}

TEST(VArrayAsTessel, SearchesWithinTheGivenBounds) {
    VArrayAsTessel<int> array(3, 0, 4);
    const auto order = [](int key, int element) { return key - element; };
    EXPECT_EQ(array.bsearch(1, order, 0), -1);
    for (int index = 0; index < 7; ++index) {
        array.AddAt(10 * index, index); // 0, 10, ... 60
    }
    struct Case {
        int key;
        std::int32_t low, high, result;
    };
    for (const Case& test :
         {Case{30, 0, -1, 3}, Case{31, 0, -1, 4}, Case{-5, 0, -1, 0}, Case{99, 0, -1, 7},
          Case{99, 0, 2, 3}, Case{10, 3, 5, 3}, Case{45, 3, kMaximum, 5}, Case{30, 5, 2, 5},
          Case{60, kMinimum, 6, 6}, Case{60, 7, 9, -1}, Case{60, kMaximum, kMaximum, -1}}) {
        EXPECT_EQ(array.bsearch(test.key, order, test.low, test.high), test.result)
            << test.key << " in " << test.low << ".." << test.high;
    }
}

TEST(VValueRangeMap, GrowsAtThe22ndRangeAndStaysSorted) {
    std::array<int, 22> units{};
    VValueRangeMap<std::uint32_t, int*> ranges;
    for (std::uint32_t number = 0; number < 22; ++number) {
        EXPECT_EQ(ranges.GetUpperBound(), 20);
        ranges.Insert(number * 7 % 22, 1, &units[number * 7 % 22]);
    }
    EXPECT_EQ(ranges.GetUpperBound(), 39);
    for (std::int32_t index = 0; index < 22; ++index) {
        EXPECT_EQ(ranges[index].mValue, &units[static_cast<std::size_t>(index)]);
    }
}

TEST(VValueRangeMap, TellsTheIndexAlsoWithoutAMatch) {
    VValueRangeMap<std::uint32_t, int*> ranges;
    std::int32_t index = 5;
    EXPECT_EQ(ranges.Find(0, &index), nullptr);
    EXPECT_EQ(index, -1);
    ranges.Insert(10, 1, nullptr);
    ranges.Insert(20, 2, nullptr);
    EXPECT_EQ(ranges.Find(15, &index)->mStart, 20U);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(ranges.Find(21, &index), nullptr);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(ranges.Find(10, nullptr)->mSize, 1);
}

TEST(VValueRangeMap, SizesAndLengthsReachBeyondTheLastPosition) {
    int last = 0;
    int other = 0;
    VValueRangeMap<std::uint32_t, int*> ranges;
    ranges.Insert(0xFFFFFFF0, 0x20, &last);
    ranges.Insert(0xFFFFFFF0, 0x90, &other); // taken: neither size nor value change
    EXPECT_EQ(ranges.FindElement(0xFFFFFFF8, 0x18), &last);
    EXPECT_EQ(ranges.FindElement(0xFFFFFFF8, 0x19), nullptr);
    EXPECT_EQ(ranges.FindElement(0xFFFFFFF0, 0xFFFFFFF0), nullptr);
    VValueRangeMap<std::uint32_t, int*> whole;
    whole.Insert(0, -1, &last); // 4 GiB less one byte
    EXPECT_EQ(whole.FindElement(0, 5), &last);
    EXPECT_EQ(whole.FindElement(0x80000000, 0x7FFFFFFF), &last);
    EXPECT_EQ(whole.FindElement(0x80000000, 0x80000000), nullptr);
}

TEST(VValueRangeMap, AgreesWithASearchThroughAllRanges) {
    struct Range {
        std::uint64_t start, size;
        const int* value;
    };
    Random random(4711);
    for (int round = 0; round < 40; ++round) {
        VValueRangeMap<std::uint32_t, const int*> ranges;
        std::vector<Range> model;
        const std::uint32_t base = round % 2 == 0 ? 0U : 0xFFFFFF00U;
        std::vector<int> values(64);
        for (const int& value : values) {
            const std::uint32_t start = base + Pick(random, 0U, 255U);
            const std::int32_t size = Pick(random, 0, 12);
            ranges.Insert(start, size, &value);
            if (std::ranges::find(model, start, &Range::start) == model.end()) {
                model.push_back({start, static_cast<std::uint64_t>(size), &value});
            }
        }
        ASSERT_EQ(static_cast<std::size_t>(ranges.GetCount()), model.size());
        std::ranges::sort(model, {}, &Range::start);
        for (std::uint32_t position = base; position - base < 256; ++position) {
            const auto next = std::ranges::upper_bound(model, position, {}, &Range::start);
            for (std::uint32_t length = 0; length < 14; ++length) {
                const bool isHeld =
                    next != model.begin() && std::prev(next)->start + std::prev(next)->size >=
                                                 std::uint64_t{position} + length;
                ASSERT_EQ(ranges.FindElement(position, length),
                          isHeld ? std::prev(next)->value : nullptr)
                    << position << " + " << length;
            }
        }
    }
}

TEST(VValueRangeMap, SortsUnsignedStarts) {
    VValueRangeMap<std::uint32_t, int*> ranges;
    const std::array<std::uint32_t, 6> starts{5, 0x80000000, 0, 0xFFFFFFFF, 0x7FFFFFFF, 5};
    for (std::size_t index = 0; index < starts.size(); ++index) {
        ranges[static_cast<std::int32_t>(index)] = {starts[index], 1, nullptr};
    }
    ranges.Sort();
    std::vector<std::uint32_t> sorted(starts.size());
    for (std::size_t index = 0; index < sorted.size(); ++index) {
        sorted[index] = ranges[static_cast<std::int32_t>(index)].mStart;
    }
    EXPECT_EQ(ranges.GetCount(), 6);
    EXPECT_THAT(sorted, testing::ElementsAre(0U, 5U, 5U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Reader::DWARF
