#include "ContainerInside.h"
#include "FailingAllocation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <gtest/gtest.h>
#include <numeric>
#include <optional>
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
    void *Data(std::uint32_t dataType)
    {
        void *const data[] = {&number, &character, &real, text, this};
        return data[dataType];
    }

    int key;
    std::int32_t number = key * 80000000;
    std::int8_t character = static_cast<std::int8_t>(key * 5);
    float real = static_cast<float>(key) / 4;
    char text[2] = {static_cast<char>('Z' + key)};
};

std::int32_t CompareItems(const void *first, const void *second)
{
    return static_cast<const Item *>(first)->key - static_cast<const Item *>(second)->key;
}

constexpr std::size_t kNowhere = ~std::size_t{0};

/// A container, what it should hold, and the arguments of the next operation.
struct Comparison
{
    ContainerHandle_t *own;
    Elements expected = {};
    void *data = nullptr;
    void *searched = nullptr;
    std::uint32_t index = 0;

    void Put(std::size_t place)
    {
        if (place <= expected.size())
            expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(place), data);
    }

    void Take(std::size_t place)
    {
        if (place < expected.size())
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(place));
    }

    /// A sorted list puts an element in front of its equals, a tree behind them.
    std::size_t Place() const
    {
        const std::int32_t least = own->kind == CONTAINER_SORTED_LIST ? 1 : 0;
        const auto isBefore = [&](void *other) { return IsPlain(own) || own->compare(data, other) >= least; };
        return static_cast<std::size_t>(std::count_if(expected.begin(), expected.end(), isBefore));
    }

    /// Of equal elements a list takes the first, a tree any: then it is the one that is gone.
    std::size_t Taken() const
    {
        const Elements left = IsTree(own) ? Inside(own) : Elements();
        const auto isTaken = [&](void *other)
        { return own->compare(searched, other) == 0 && std::count(left.begin(), left.end(), other) == 0; };
        return static_cast<std::size_t>(std::find_if(expected.begin(), expected.end(), isTaken) - expected.begin());
    }

    void Push()
    {
        if (IsPlain(own) || (!IsTree(own) && (expected.empty() || own->compare(data, expected.back()) >= 0)))
            Put(expected.size());
    }

    void Update()
    {
        const std::size_t taken = Taken(), size = expected.size();
        Take(taken);
        if (taken < size)
            Put(IsPlain(own) ? taken : Place());
    }
};

/// An operation, and the same on what is expected; those that add first, those that remove last.
constexpr std::pair<Status (*)(Comparison &), void (*)(Comparison &)> kOperations[] = {
    {[](auto &c) { return Insert(c.own, c.data); }, [](auto &c) { c.Put(c.Place()); }},
    {[](auto &c) { return Push(c.own, c.data); }, [](auto &c) { c.Push(); }},
    {[](auto &c) { return InsertAtIndex(c.own, c.data, c.index); },
     [](auto &c) { c.Put(IsPlain(c.own) ? c.index : kNowhere); }},
    {[](auto &c) { return WithoutMemory(0, [&c] { return UpdateNode(c.own, c.searched, c.data); }); },
     [](auto &c) { c.Update(); }},
    {[](auto &c) { return DeleteByData(c.own, c.searched); }, [](auto &c) { c.Take(c.Taken()); }},
    {[](auto &c) { return DeleteAtIndex(c.own, c.index); },
     [](auto &c) { c.Take(IsTree(c.own) ? kNowhere : c.index); }},
    {[](auto &c) { return Pop(c.own, c.data); },
     [](auto &c) { c.Take(!c.expected.empty() && c.data == c.expected.back() ? c.expected.size() - 1 : kNowhere); }},
};

void CompareWithVector(std::uint32_t kind, std::uint32_t dataType, std::mt19937 &random)
{
    std::uniform_int_distribution keys(-25, 25);
    std::deque<Item> items;
    const Owned container = Make({.kind = kind, .dataType = dataType, .compare = CompareItems});
    Comparison c{container.get()};
    for (int step = 0; step < 5000 && !testing::Test::HasFailure(); ++step)
    {
        Item &added = items.emplace_back(keys(random)), searched{keys(random)};
        c.data = added.Data(dataType);
        c.searched = searched.Data(dataType);
        const std::int32_t order = (searched.key > added.key) - (searched.key < added.key);
        EXPECT_TRUE(dataType == DATA_CUSTOM || c.own->compare(c.searched, c.data) == order);
        c.index = static_cast<std::uint32_t>(random() % (c.expected.size() + 2));
        // Grows and shrinks in turns.
        const auto &[operate, expect] = kOperations[random() % 4 + (step % 500 < 250 ? 0 : 3)];
        const Elements before = c.expected;
        const Status status = operate(c);
        expect(c);
        EXPECT_EQ(status == Success, c.expected != before);
        ASSERT_EQ(Inside(c.own), c.expected);
        void *found = &c, *last = &c, *const none = kind == CONTAINER_RB_TREE ? nullptr : &c;
        RetrieveFromIndex(c.own, found, c.index);
        RetrieveFromEnd(c.own, last);
        EXPECT_EQ(found, c.index < c.expected.size() ? c.expected[c.index] : &c);
        EXPECT_EQ(last, c.expected.empty() ? none : c.expected.back());
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
constexpr std::uint32_t kNegative = 0x80000000;

/// In the order of kKinds: list, sorted list, red-black tree, AVL tree.
using Statuses = std::array<Status, std::size(kKinds)>;

constexpr Statuses All(Status status)
{
    return {status, status, status, status};
}
/// Of an operation that only lists have, and of one that only the plain list has.
constexpr Statuses Lists(Status status)
{
    return {status, status, Failed, Failed};
}
constexpr Statuses PlainList(Status status)
{
    return {status, Failed, Failed, Failed};
}

/// Of an index in an empty container.
constexpr Statuses kNothingThere = {Missing, Missing, NotFound, Missing};

struct Refusal
{
    Status (*make)(ContainerHandle_t *container, void *&data);
    Statuses empty;
    /// Nothing where it would be no refusal.
    std::optional<Statuses> filled;
};

const Refusal kRefusals[] = {
    {[](auto *c, auto &) { return InsertAtIndex(c, nullptr, 0); }, PlainList(Missing), PlainList(Missing)},
    {[](auto *c, auto &) { return InsertAtIndex(c, &nine, 4); }, PlainList(NotFound), PlainList(NotFound)},
    {[](auto *c, auto &) { return InsertAtIndex(c, &nine, kNegative); }, PlainList(NotFound), PlainList(NotFound)},
    {[](auto *c, auto &) { return Insert(c, nullptr); }, All(Missing), All(Missing)},
    {[](auto *c, auto &d) { return RetrieveFromIndex(c, d, 3); }, kNothingThere,
     Statuses{Failed, Failed, NotFound, NotFound}},
    {[](auto *c, auto &d) { return RetrieveFromIndex(c, d, kNegative); }, kNothingThere, All(NotFound)},
    {[](auto *c, auto &) { return DeleteAtIndex(c, 3); }, Lists(Missing), Lists(NotFound)},
    {[](auto *c, auto &) { return DeleteAtIndex(c, kNegative); }, Lists(Missing), Lists(NotFound)},
    {[](auto *c, auto &) { return DeleteByData(c, nullptr); }, All(Missing), All(Missing)},
    {[](auto *c, auto &) { return DeleteByData(c, &nine); }, Statuses{Missing, Missing, Failed, Missing},
     Statuses{NotFound, NotFound, Failed, NotFound}},
    {[](auto *c, auto &) { return Push(c, nullptr); }, Lists(Missing), Lists(Missing)},
    {[](auto *c, auto &) { return UpdateNode(c, nullptr, &nine); }, All(Missing), All(Missing)},
    {[](auto *c, auto &) { return UpdateNode(c, &one, nullptr); }, All(Missing), All(Missing)},
    {[](auto *c, auto &) { return UpdateNode(c, &nine, &one); }, Statuses{NotFound, Missing, Failed, Missing},
     Statuses{NotFound, NotFound, Failed, NotFound}},
    {[](auto *c, auto &d) { return Pop(c, d); }, All(Failed), {}},
    {[](auto *c, auto &d) { return RetrieveFromEnd(c, d); }, Statuses{Failed, Failed, Success, Failed}, {}},
    {[](auto *c, auto &) { return WithoutMemory(0, [c] { return InsertAtIndex(c, &nine, 0); }); }, PlainList(NoMemory),
     PlainList(NoMemory)},
    {[](auto *c, auto &) { return WithoutMemory(0, [c] { return Insert(c, &nine); }); }, All(NoMemory),
     Statuses{NoMemory, NoMemory, NoMemory, Failed}},
    {[](auto *c, auto &) { return WithoutMemory(0, [c] { return Push(c, &nine); }); }, Lists(NoMemory),
     Lists(NoMemory)},
};

TEST(Container, RefusalsHaveTheirStatusAndChangeNothing)
{
    for (const std::uint32_t kind : kKinds)
        for (const Refusal &refusal : kRefusals)
        {
            SCOPED_TRACE(testing::Message() << "refusal " << &refusal - kRefusals << ", kind " << kind);
            const Owned container = Make({.kind = kind});
            void *data = &nine;
            EXPECT_EQ(refusal.make(nullptr, data), Missing);
            EXPECT_EQ(refusal.make(container.get(), data), refusal.empty[kind]);
            EXPECT_TRUE(Inside(container.get()).empty());
            if (!refusal.filled)
                continue;
            for (std::int32_t *number : {&one, &three, &five})
                EXPECT_EQ(Insert(container.get(), number), Success);
            EXPECT_EQ(refusal.make(container.get(), data), (*refusal.filled)[kind]);
            EXPECT_EQ(Inside(container.get()), (Elements{&one, &three, &five}));
            EXPECT_EQ(data, &nine);
        }
}

TEST(Container, PlainListComparesWhatIsSearchedWithWhatItHolds)
{
    const auto isNine = [](const void *first, const void *) { return first == &nine ? 0 : 1; };
    const Owned container = Make({.kind = CONTAINER_LIST, .dataType = DATA_CUSTOM, .compare = isNine});
    for (std::int32_t *number : {&one, &five})
        EXPECT_EQ(Insert(container.get(), number), Success);
    EXPECT_EQ(UpdateNode(container.get(), &nine, &three), Success);
    EXPECT_EQ(DeleteByData(container.get(), &nine), Success);
    container->compare = nullptr;
    EXPECT_EQ(UpdateNode(container.get(), &nine, &one), Missing);
    EXPECT_EQ(DeleteByData(container.get(), &nine), Missing);
    EXPECT_EQ(Inside(container.get()), Elements{&five});
}

std::uint32_t place = 0;

TEST(Container, SortedListAsksThePositionFunction)
{
    const auto position = [](ContainerHandle_t *, const void *) { return place; };
    const Owned container = Make({.kind = CONTAINER_SORTED_LIST, .hasPositionFunction = 1, .position = position});
    for (std::int32_t *number : {&one, &three, &five})
        EXPECT_EQ(Insert(container.get(), number), Success);
    place = 7;
    EXPECT_EQ(Insert(container.get(), &nine), NotFound);
    EXPECT_EQ(UpdateNode(container.get(), &three, &nine), NotFound);
    EXPECT_EQ(Inside(container.get()), (Elements{&five, &three, &one}));
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
    ContainerHandle_t none, *made = &none;
    EXPECT_EQ(InitContainer(nullptr, made), Missing);
    for (auto &[params, expected] : refused)
        EXPECT_EQ(InitContainer(&params, made), expected);
    EXPECT_EQ(UnInitContainer(nullptr), Missing);
    for (auto *const init : {LinkedListInit, SortedLinkedListInit, RBTreeInit, AVLTreeInit})
        EXPECT_EQ(init(nullptr), Missing);
    for (auto *const init : {RBTreeInit, AVLTreeInit})
        EXPECT_EQ(WithoutMemory(0, [&] { return init(&none); }), NoMemory);
    for (const std::uint32_t kind : kKinds)
        for (long succeeding = 0; succeeding < (kind < CONTAINER_RB_TREE ? 1 : 2) + ALLOCATIONS_OF_A_MUTEX;
             ++succeeding)
        {
            ContainerParams_t params{.kind = kind};
            EXPECT_EQ(WithoutMemory(succeeding, [&] { return InitContainer(&params, made); }),
                      succeeding == 0 ? Missing : Failed);
            EXPECT_TRUE(params.compare && params.position);
        }
    EXPECT_EQ(made, &none);
}

std::string version(kContainerVersionSize, '?');
const Status kReadBeforeAnyContainer = GetContainerLibVersion(version.data());

TEST(InitContainer, WritesNameAndVersionAndTakesNotANumberForLess)
{
    const std::string name(200, 'n'), zeros(4, '\0');
    EXPECT_EQ(version, zeros + zeros + zeros + zeros);
    const Owned container = Make({.name = name.c_str(), .dataType = DATA_FLOAT});
    EXPECT_EQ(container->name, std::string(127, 'n'));
    EXPECT_EQ(GetContainerLibVersion(nullptr), Missing);
    EXPECT_EQ(GetContainerLibVersion(version.data()), Success);
    EXPECT_EQ(version, std::string("02\00000\0", 6) + '0' + zeros + "1001" + '\0');
    const float number = 1, notANumber = std::nanf("");
    EXPECT_EQ(container->compare(&notANumber, &number), -1);
    EXPECT_EQ(container->compare(&number, &notANumber), -1);
}

TEST(Container, TwoThreadsLoseNothing)
{
    std::vector<std::int32_t> numbers(4000);
    std::iota(numbers.begin(), numbers.end(), 0);
    for (const std::uint32_t kind : kKinds)
    {
        const Owned container = Make({.kind = kind});
        const auto insertAllAndDeleteHalf = [&](std::size_t first)
        {
            for (std::size_t i = first; i < numbers.size(); i += 2)
                EXPECT_TRUE(Insert(container.get(), &numbers[i]) == Success &&
                            (i % 4 < 2 || DeleteByData(container.get(), &numbers[i]) == Success));
        };
        std::thread other(insertAllAndDeleteHalf, 1);
        insertAllAndDeleteHalf(0);
        other.join();
        Elements left = Inside(container.get());
        std::sort(left.begin(), left.end());
        ASSERT_EQ(left.size(), numbers.size() / 2);
        for (std::size_t i = 0; i < left.size(); ++i)
            EXPECT_EQ(left[i], &numbers[i / 2 * 4 + i % 2]);
    }
}

} // namespace
