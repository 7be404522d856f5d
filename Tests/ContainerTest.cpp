#include "ContainerInside.h"
#include "FailingAllocation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace StatusCode;

namespace
{

// Random operations, beside a vector

/// One key from -25 to 25, stored in every way and over the range of the type.
struct Item
{
    explicit Item(int key)
        : number(key * 80000000), character(static_cast<std::int8_t>(key * 5)),
          real(static_cast<float>(key) / 4), text{static_cast<char>('Z' + key)}
    {
    }

    void *Data(std::uint32_t dataType)
    {
        void *const data[] = {&number, &character, &real, text, this};
        return data[dataType];
    }

    std::int32_t number;
    std::int8_t character;
    float real;
    char text[2];
};

std::int32_t CompareItems(const void *first, const void *second)
{
    return static_cast<const Item *>(first)->character - static_cast<const Item *>(second)->character;
}

TEST(InitContainer, BuiltInComparisonsGiveOneZeroOrMinusOne)
{
    for (const std::uint32_t dataType : {DATA_INT32, DATA_CHAR, DATA_FLOAT, DATA_STRING})
        for (int i = 0; i < 51 * 51; ++i)
        {
            const int first = i % 51 - 25, second = i / 51 - 25;
            EXPECT_EQ(Make({.dataType = dataType})->compare(Item(first).Data(dataType), Item(second).Data(dataType)),
                      (first > second) - (first < second));
        }
    const float number = 1, notANumber = std::nanf("");
    EXPECT_EQ(Make({.dataType = DATA_FLOAT})->compare(&notANumber, &number), -1);
    EXPECT_EQ(Make({.dataType = DATA_FLOAT})->compare(&number, &notANumber), -1);
}

/// A container, what it should hold, and the arguments of the next operation.
struct Comparison
{
    ContainerHandle_t *own;
    Elements expected = {};
    void *data = nullptr;
    void *searched = nullptr;
    std::uint32_t index = 0;

    bool Put(bool possible, std::ptrdiff_t place)
    {
        if (possible)
            expected.insert(expected.begin() + place, data);
        return possible;
    }

    bool Take(std::ptrdiff_t place)
    {
        const bool possible = place >= 0 && place < std::ssize(expected);
        if (possible)
            expected.erase(expected.begin() + place);
        return possible;
    }

    /// A sorted list puts an element in front of its equals, a tree behind them.
    std::ptrdiff_t Place() const
    {
        const std::int32_t least = own->kind == CONTAINER_SORTED_LIST ? 1 : 0;
        const auto isBefore = [&](void *other) { return IsPlain(own) || own->compare(data, other) >= least; };
        return std::count_if(expected.begin(), expected.end(), isBefore);
    }

    /// Of equal elements a list takes the first, a tree any: then it is the one that is gone.
    std::ptrdiff_t Taken() const
    {
        const Elements left = IsTree(own) ? Inside(own) : Elements();
        const auto isTaken = [&](void *other)
        { return own->compare(searched, other) == 0 && std::count(left.begin(), left.end(), other) == 0; };
        return std::find_if(expected.begin(), expected.end(), isTaken) - expected.begin();
    }

    bool Push()
    {
        const bool inOrder = IsPlain(own) || expected.empty() || own->compare(data, expected.back()) >= 0;
        return Put(!IsTree(own) && inOrder, std::ssize(expected));
    }

    bool Update()
    {
        const std::ptrdiff_t taken = Taken();
        return Take(taken) && Put(true, IsPlain(own) ? taken : Place());
    }
};

/// An operation, and the same on what is expected, which tells whether it should have succeeded.
struct Operation
{
    Status (*own)(Comparison &c);
    bool (*expected)(Comparison &c);
};

/// Those that add first, those that remove last.
constexpr Operation kOperations[] = {
    {[](auto &c) { return Insert(c.own, c.data); }, [](auto &c) { return c.Put(true, c.Place()); }},
    {[](auto &c) { return Push(c.own, c.data); }, [](auto &c) { return c.Push(); }},
    {[](auto &c) { return InsertAtIndex(c.own, c.data, c.index); },
     [](auto &c) { return c.Put(IsPlain(c.own) && c.index <= c.expected.size(), c.index); }},
    {[](auto &c) { return UpdateNode(c.own, c.searched, c.data); }, [](auto &c) { return c.Update(); }},
    {[](auto &c) { return DeleteByData(c.own, c.searched); }, [](auto &c) { return c.Take(c.Taken()); }},
    {[](auto &c) { return DeleteAtIndex(c.own, c.index); }, [](auto &c) { return !IsTree(c.own) && c.Take(c.index); }},
    {[](auto &c) { return Pop(c.own, c.data); },
     [](auto &c) { return !IsTree(c.own) && c.Take(std::ssize(c.expected) - 1); }},
};

void CompareWithVector(std::uint32_t kind, std::uint32_t dataType, std::mt19937 &random)
{
    std::uniform_int_distribution keys(-25, 25);
    std::deque<Item> items;
    const Owned container = Make({.kind = kind, .dataType = dataType, .compare = CompareItems});
    Comparison c{container.get()};
    for (int step = 0; step < 5000 && !testing::Test::HasFailure(); ++step)
    {
        Item searched(keys(random));
        c.searched = searched.Data(dataType);
        c.data = items.emplace_back(keys(random)).Data(dataType);
        c.index = static_cast<std::uint32_t>(random() % (c.expected.size() + 2));
        // Grows and shrinks in turns.
        const Operation &operation = kOperations[random() % 4 + (step % 500 < 250 ? 0 : 3)];
        const Status status = operation.own(c);
        EXPECT_EQ(status == Success, operation.expected(c));
        ASSERT_EQ(Inside(c.own), c.expected);
        void *found = nullptr;
        EXPECT_EQ(RetrieveFromIndex(c.own, found, c.index) == Success, c.index < c.expected.size());
        EXPECT_EQ(found, c.index < c.expected.size() ? c.expected[c.index] : nullptr);
        found = nullptr;
        RetrieveFromEnd(c.own, found);
        EXPECT_EQ(found, c.expected.empty() ? nullptr : c.expected.back());
    }
}

TEST(Container, AgreesWithVectorOverRandomOperations)
{
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    for (const std::uint32_t kind : kKinds)
        for (const std::uint32_t dataType : {DATA_INT32, DATA_CHAR, DATA_FLOAT, DATA_STRING, DATA_CUSTOM})
        {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " kind " << kind << " type " << dataType);
            CompareWithVector(kind, dataType, random);
        }
}

// Every answer that refuses, on an empty container and on one that holds 1, 3, 5

std::int32_t one = 1, three = 3, five = 5, nine = 9;
constexpr std::uint32_t kNegative = 0xFFFFFFFF;

struct Refusal
{
    const char *call;
    Status (*make)(ContainerHandle_t *container, void *&data);
    /// The status of each kind, in a digit, in the order of kKinds; null where it would be no refusal.
    const char *empty;
    const char *filled;
};

const Refusal kRefusals[] = {
    {"InsertAtIndex null", [](auto *c, auto &) { return InsertAtIndex(c, nullptr, 0); }, "4555", "4555"},
    {"InsertAtIndex 4", [](auto *c, auto &) { return InsertAtIndex(c, &nine, 4); }, "2555", "2555"},
    {"InsertAtIndex -1", [](auto *c, auto &) { return InsertAtIndex(c, &nine, kNegative); }, "2555", "2555"},
    {"Insert null", [](auto *c, auto &) { return Insert(c, nullptr); }, "4444", "4444"},
    {"RetrieveFromIndex 3", [](auto *c, auto &d) { return RetrieveFromIndex(c, d, 3); }, "4424", "5522"},
    {"RetrieveFromIndex -1", [](auto *c, auto &d) { return RetrieveFromIndex(c, d, kNegative); }, "4424", "2222"},
    {"DeleteAtIndex 3", [](auto *c, auto &) { return DeleteAtIndex(c, 3); }, "4455", "2255"},
    {"DeleteAtIndex -1", [](auto *c, auto &) { return DeleteAtIndex(c, kNegative); }, "4455", "2255"},
    {"DeleteByData null", [](auto *c, auto &) { return DeleteByData(c, nullptr); }, "4444", "4444"},
    {"DeleteByData 9", [](auto *c, auto &) { return DeleteByData(c, &nine); }, "4454", "2252"},
    {"Push null", [](auto *c, auto &) { return Push(c, nullptr); }, "4455", "4455"},
    {"UpdateNode null, 9", [](auto *c, auto &) { return UpdateNode(c, nullptr, &nine); }, "4444", "4444"},
    {"UpdateNode 1, null", [](auto *c, auto &) { return UpdateNode(c, &one, nullptr); }, "4444", "4444"},
    {"Pop", [](auto *c, auto &d) { return Pop(c, d); }, "5555", nullptr},
    {"RetrieveFromEnd", [](auto *c, auto &d) { return RetrieveFromEnd(c, d); }, "5515", nullptr},
    {"UpdateNode 9, 1", [](auto *c, auto &) { return UpdateNode(c, &nine, &one); }, "2454", "2252"},
};

TEST(Container, RefusalsHaveTheirStatusAndChangeNothing)
{
    for (const std::uint32_t kind : kKinds)
        for (const Refusal &refusal : kRefusals)
        {
            SCOPED_TRACE(testing::Message() << refusal.call << ", kind " << kind);
            const Owned container = Make({.kind = kind});
            void *data = &nine;
            EXPECT_EQ(refusal.make(nullptr, data), Missing);
            EXPECT_EQ(refusal.make(container.get(), data), refusal.empty[kind] - '0');
            EXPECT_TRUE(Inside(container.get()).empty());
            if (!refusal.filled)
                continue;
            for (std::int32_t *number : {&one, &three, &five})
                EXPECT_EQ(Insert(container.get(), number), Success);
            EXPECT_EQ(refusal.make(container.get(), data), refusal.filled[kind] - '0');
            EXPECT_EQ(Inside(container.get()), (Elements{&one, &three, &five}));
            EXPECT_EQ(data, &nine);
        }
}

TEST(Container, PlainListWithoutComparisonFindsNothing)
{
    const Owned container = Make({.kind = CONTAINER_LIST, .dataType = DATA_CUSTOM});
    EXPECT_EQ(Insert(container.get(), &one), Success);
    EXPECT_EQ(DeleteByData(container.get(), &one), Missing);
    EXPECT_EQ(UpdateNode(container.get(), &one, &nine), Missing);
}

TEST(Container, SortedListAsksThePositionFunction)
{
    const Owned container = Make({.kind = CONTAINER_SORTED_LIST,
                                  .hasPositionFunction = 1,
                                  .position = [](ContainerHandle_t *, const void *) { return std::uint32_t{0}; }});
    for (std::int32_t *number : {&one, &three, &five})
        EXPECT_EQ(Insert(container.get(), number), Success);
    container->position = [](ContainerHandle_t *, const void *) { return std::uint32_t{7}; };
    EXPECT_EQ(Insert(container.get(), &nine), NotFound);
    EXPECT_EQ(UpdateNode(container.get(), &three, &nine), NotFound);
    EXPECT_EQ(Inside(container.get()), (Elements{&five, &three, &one}));
}

TEST(Container, WithoutMemoryNothingChanges)
{
    for (const std::uint32_t kind : kKinds)
    {
        const Owned container = Make({.kind = kind});
        ContainerHandle_t *const c = container.get();
        const auto insert = [c] { return Insert(c, &three); };
        EXPECT_EQ(WithoutMemory(0, insert), NoMemory);
        EXPECT_TRUE(Inside(container.get()).empty());
        EXPECT_EQ(insert(), Success);
        EXPECT_EQ(WithoutMemory(0, insert), kind == CONTAINER_AVL_TREE ? Failed : NoMemory);
        EXPECT_EQ(WithoutMemory(0, [c] { return Push(c, &five); }), IsTree(c) ? Failed : NoMemory);
        EXPECT_EQ(WithoutMemory(0, [c] { return InsertAtIndex(c, &five, 1); }),
                  kind == CONTAINER_LIST ? NoMemory : Failed);
        EXPECT_EQ(Inside(container.get()), Elements{&three});
        EXPECT_EQ(WithoutMemory(0, [c] { return UpdateNode(c, &three, &five); }), Success);
        EXPECT_EQ(Inside(container.get()), Elements{&five});
    }
}

TEST(InitContainer, WithoutMemoryMakesNothing)
{
    for (const std::uint32_t kind : kKinds)
        for (long succeeding = 0; succeeding < (kind < CONTAINER_RB_TREE ? 2 : 3); ++succeeding)
        {
            ContainerParams_t params{.kind = kind};
            ContainerHandle_t *made = nullptr;
            EXPECT_EQ(WithoutMemory(succeeding, [&] { return InitContainer(&params, made); }),
                      succeeding == 0 ? Missing : Failed);
            EXPECT_EQ(made, nullptr);
        }
}

TEST(InitContainer, RefusesWhatItCannotMake)
{
    std::pair<ContainerParams_t, Status> refused[] = {
        {{.kind = 4}, NotFound},
        {{.kind = kNegative}, NotFound},
        {{.dataType = 5}, NotFound},
        {{.kind = CONTAINER_SORTED_LIST, .dataType = DATA_CUSTOM}, Failed},
        {{.kind = CONTAINER_RB_TREE, .dataType = DATA_CUSTOM}, Failed},
        {{.kind = CONTAINER_AVL_TREE, .dataType = DATA_CUSTOM}, Failed},
        {{.kind = CONTAINER_SORTED_LIST, .hasPositionFunction = 1}, Failed},
    };
    ContainerHandle_t none;
    ContainerHandle_t *made = &none;
    EXPECT_EQ(InitContainer(nullptr, made), Missing);
    for (auto &[params, expected] : refused)
        EXPECT_EQ(InitContainer(&params, made), expected);
    EXPECT_EQ(made, &none);
    EXPECT_EQ(UnInitContainer(nullptr), Missing);
}

std::string ReadVersion()
{
    std::string version(kContainerVersionSize, '?');
    EXPECT_EQ(GetContainerLibVersion(version.data()), Success);
    return version;
}
const std::string versionBeforeAnyContainer = ReadVersion();

TEST(InitContainer, WritesNameAndVersion)
{
    const std::string name(200, 'n');
    ContainerParams_t params{.name = name.c_str()};
    const Owned container = Make(params);
    EXPECT_EQ(container->name, std::string(127, 'n'));
    EXPECT_EQ(versionBeforeAnyContainer, std::string(kContainerVersionSize, '\0'));
    const std::string version = ReadVersion();
    EXPECT_EQ(std::string(&version[0]) + '.' + &version[3] + '.' + &version[6] + '.' + &version[11], "02.00.0.1001");
    EXPECT_EQ(GetContainerLibVersion(nullptr), Missing);
}

TEST(Container, TwoThreadsLoseNothing)
{
    std::vector<std::int32_t> numbers(4000);
    std::iota(numbers.begin(), numbers.end(), 0);
    for (const std::uint32_t kind : kKinds)
    {
        const Owned container = Make({.kind = kind});
        const auto insertAllAndDeleteEven = [&](std::size_t first)
        {
            for (std::size_t i = first; i < first + 2000; i += 2)
                EXPECT_TRUE(Insert(container.get(), &numbers[i]) == Success &&
                            Insert(container.get(), &numbers[i + 1]) == Success &&
                            DeleteByData(container.get(), &numbers[i]) == Success);
        };
        std::thread other(insertAllAndDeleteEven, 2000);
        insertAllAndDeleteEven(0);
        other.join();
        Elements left = Inside(container.get());
        std::sort(left.begin(), left.end());
        ASSERT_EQ(left.size(), 2000u);
        for (std::size_t i = 0; i < left.size(); ++i)
            EXPECT_EQ(left[i], &numbers[2 * i + 1]);
    }
}

} // namespace
