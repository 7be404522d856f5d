#include "Container.h"
#include "AVLTree.h"
#include "FailingAllocation.h"
#include "LinkedLists.h"
#include "RBTree.h"

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

constexpr std::uint32_t kKinds[] = {CONTAINER_LIST, CONTAINER_SORTED_LIST, CONTAINER_RB_TREE, CONTAINER_AVL_TREE};

bool IsTree(std::uint32_t kind)
{
    return kind == CONTAINER_RB_TREE || kind == CONTAINER_AVL_TREE;
}

struct EmptyAndFree
{
    void operator()(ContainerHandle_t *container) const
    {
        void *data = nullptr;
        while (RetrieveFromEnd(container, data) == Success && data)
            if (Pop(container, data) != Success && DeleteByData(container, data) != Success)
                break;
        UnInitContainer(container);
    }
};
using Owned = std::unique_ptr<ContainerHandle_t, EmptyAndFree>;

Owned Make(ContainerParams_t params)
{
    ContainerHandle_t *made = nullptr;
    EXPECT_EQ(InitContainer(&params, made), Success);
    return Owned(made);
}

// What is inside, read past the front end, with the rules of each kind checked on the way

using Elements = std::vector<void *>;

Elements ListElements(const ContainerHandle_t &list)
{
    Elements elements;
    const ListNode_t *last = nullptr;
    for (auto *node = static_cast<const ListNode_t *>(list.head); node; last = node, node = node->next)
    {
        EXPECT_EQ(node->previous, last);
        elements.push_back(node->data);
    }
    EXPECT_EQ(list.tail, last);
    return elements;
}

/// Returns the number of black nodes on each way down.
int VisitRB(const RBNode_t *node, const RBNode_t *parent, const RBNode_t *none, Elements &elements)
{
    if (node == none)
        return 0;
    EXPECT_EQ(node->parent, parent);
    EXPECT_TRUE(node->colour == RB_BLACK || parent->colour == RB_BLACK);
    const int left = VisitRB(node->child[0], node, none, elements);
    elements.push_back(node->data);
    EXPECT_EQ(VisitRB(node->child[1], node, none, elements), left);
    return left + (node->colour == RB_BLACK ? 1 : 0);
}

/// Returns the height.
int VisitAVL(const AVLNode_t *node, Elements &elements)
{
    if (!node)
        return 0;
    const int left = VisitAVL(node->child[0], elements);
    elements.push_back(node->data);
    const int right = VisitAVL(node->child[1], elements);
    EXPECT_LE(std::abs(left - right), 1);
    EXPECT_EQ(node->height, std::max(left, right) + 1);
    return node->height;
}

Elements Inside(const Owned &container)
{
    if (container->kind == CONTAINER_LIST || container->kind == CONTAINER_SORTED_LIST)
        return ListElements(*container);
    Elements elements;
    const auto *const root = static_cast<RBNode_t *>(container->head);
    if (container->kind == CONTAINER_AVL_TREE)
        VisitAVL(static_cast<AVLNode_t *>(container->head), elements);
    else // The sentinel is the parent of the root.
        VisitRB(root, root->parent, root->parent, elements);
    return elements;
}

// Random operations, beside a vector

/// One key from -25 to 25, stored in every way and over the whole range of the type.
struct Item
{
    explicit Item(int key)
        : number(key * 80000000), character(static_cast<std::int8_t>(key * 5)), real(static_cast<float>(key) / 4),
          text(std::to_string(key))
    {
    }

    void *Data(std::uint32_t dataType)
    {
        void *const places[] = {&number, &character, &real, text.data(), this};
        return places[dataType];
    }

    std::int32_t number;
    std::int8_t character;
    float real;
    std::string text;
};

std::int32_t CompareDescending(const void *first, const void *second)
{
    return static_cast<const Item *>(second)->number / 1000 - static_cast<const Item *>(first)->number / 1000;
}

bool Less(std::uint32_t dataType, const Item &first, const Item &second)
{
    if (dataType == DATA_STRING)
        return first.text < second.text;
    return dataType == DATA_CUSTOM ? first.number > second.number : first.number < second.number;
}

/// One operation's arguments, and what the container holds afterwards.
struct Step
{
    Item &item;
    Item searched;
    void *data;
    void *key;
    std::uint32_t index;
    Elements left;
};

/// What a container should hold; each operation tells whether it should succeed.
struct Model
{
    std::uint32_t kind;
    std::uint32_t dataType;
    std::vector<Item *> items = {};

    bool Insert(Step &step)
    {
        const auto less = [this](const Item *a, const Item *b) { return Less(dataType, *a, *b); };
        auto place = items.end();
        if (kind == CONTAINER_SORTED_LIST)
            place = std::lower_bound(items.begin(), items.end(), &step.item, less);
        else if (IsTree(kind))
            place = std::upper_bound(items.begin(), items.end(), &step.item, less);
        items.insert(place, &step.item);
        return true;
    }

    bool InsertAtIndex(Step &step)
    {
        const bool possible = kind == CONTAINER_LIST && step.index <= items.size();
        if (possible)
            items.insert(items.begin() + step.index, &step.item);
        return possible;
    }

    bool Push(Step &step)
    {
        const bool disorders =
            kind == CONTAINER_SORTED_LIST && !items.empty() && Less(dataType, step.item, *items.back());
        if (!IsTree(kind) && !disorders)
            items.push_back(&step.item);
        return !IsTree(kind) && !disorders;
    }

    bool DeleteAtIndex(std::size_t index)
    {
        const bool possible = !IsTree(kind) && index < items.size();
        if (possible)
            items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
        return possible;
    }

    /// Of equal elements a list takes the first, a tree any: then it is the one that is gone.
    auto Find(const Step &step)
    {
        const auto taken = [&](Item *item)
        {
            return !Less(dataType, *item, step.searched) && !Less(dataType, step.searched, *item) &&
                   (!IsTree(kind) || std::count(step.left.begin(), step.left.end(), item->Data(dataType)) == 0);
        };
        return std::find_if(items.begin(), items.end(), taken);
    }

    bool DeleteByData(const Step &step)
    {
        const auto found = Find(step);
        return found != items.end() && (items.erase(found), true);
    }

    bool UpdateNode(Step &step)
    {
        if (kind != CONTAINER_LIST)
            return DeleteByData(step) && Insert(step);
        const auto found = Find(step);
        return found != items.end() && (*found = &step.item, true);
    }
};

struct Operation
{
    Status (*own)(ContainerHandle_t *container, Step &step);
    bool (*expected)(Model &model, Step &step);
};

/// Those that add first, those that remove last.
const Operation kOperations[] = {
    {[](auto *c, Step &s) { return Insert(c, s.data); }, [](Model &m, Step &s) { return m.Insert(s); }},
    {[](auto *c, Step &s) { return Push(c, s.data); }, [](Model &m, Step &s) { return m.Push(s); }},
    {[](auto *c, Step &s) { return InsertAtIndex(c, s.data, s.index); },
     [](Model &m, Step &s) { return m.InsertAtIndex(s); }},
    {[](auto *c, Step &s) { return UpdateNode(c, s.key, s.data); }, [](Model &m, Step &s) { return m.UpdateNode(s); }},
    {[](auto *c, Step &s) { return DeleteByData(c, s.key); }, [](Model &m, Step &s) { return m.DeleteByData(s); }},
    {[](auto *c, Step &s) { return DeleteAtIndex(c, s.index); },
     [](Model &m, Step &s) { return m.DeleteAtIndex(s.index); }},
    {[](auto *c, Step &s) { return Pop(c, s.key); },
     [](Model &m, Step &) { return m.DeleteAtIndex(m.items.size() - 1); }},
};

void CompareWithVector(std::uint32_t kind, std::uint32_t dataType, std::mt19937 &random)
{
    const auto below = [&random](std::size_t end) { return static_cast<std::uint32_t>(random() % end); };
    std::deque<Item> items;
    const Owned container = Make({.kind = kind, .dataType = dataType, .compare = CompareDescending});
    Model model{kind, dataType};
    for (int count = 0; count < 5000 && !testing::Test::HasFailure(); ++count)
    {
        Item &item = items.emplace_back(static_cast<int>(below(51)) - 25);
        Step step{item, Item(static_cast<int>(below(51)) - 25), item.Data(dataType), nullptr, 0, {}};
        step.key = step.searched.Data(dataType);
        step.index = below(model.items.size() + 2);
        // Grows and shrinks in turns.
        const Operation &operation = kOperations[below(4) + (count % 500 < 250 ? 0 : 3)];
        const bool succeeded = operation.own(container.get(), step) == Success;
        step.left = Inside(container);
        EXPECT_EQ(succeeded, operation.expected(model, step));

        Elements expected;
        for (Item *left : model.items)
            expected.push_back(left->Data(dataType));
        ASSERT_EQ(step.left, expected);
        void *found = nullptr;
        EXPECT_EQ(RetrieveFromIndex(container.get(), found, step.index) == Success, step.index < expected.size());
        EXPECT_EQ(found, step.index < expected.size() ? expected[step.index] : nullptr);
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
    /// The status of each kind, in a digit, in the order of kKinds.
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
            EXPECT_EQ(refusal.make(container.get(), data), refusal.empty[kind] - '0');
            EXPECT_TRUE(Inside(container).empty());
            for (std::int32_t *number : {&one, &three, &five})
                EXPECT_EQ(Insert(container.get(), number), Success);
            EXPECT_EQ(refusal.make(container.get(), data), refusal.filled[kind] - '0');
            EXPECT_EQ(Inside(container), (Elements{&one, &three, &five}));
            EXPECT_EQ(data, &nine);
            EXPECT_EQ(refusal.make(nullptr, data), Missing);
        }
}

TEST(Container, HasNoEndWhenEmpty)
{
    for (const std::uint32_t kind : kKinds)
    {
        const Owned container = Make({.kind = kind});
        void *data = &nine;
        EXPECT_EQ(Pop(container.get(), data), Failed);
        EXPECT_EQ(RetrieveFromEnd(container.get(), data), kind == CONTAINER_RB_TREE ? Success : Failed);
        EXPECT_EQ(data, kind == CONTAINER_RB_TREE ? nullptr : &nine);
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
    EXPECT_EQ(Inside(container), (Elements{&five, &three, &one}));
}

TEST(Container, WithoutMemoryNothingChanges)
{
    for (const std::uint32_t kind : kKinds)
    {
        const Owned container = Make({.kind = kind});
        ContainerHandle_t *const c = container.get();
        const auto insert = [c] { return Insert(c, &three); };
        EXPECT_EQ(WithoutMemory(0, insert), NoMemory);
        EXPECT_TRUE(Inside(container).empty());
        EXPECT_EQ(insert(), Success);
        EXPECT_EQ(WithoutMemory(0, insert), kind == CONTAINER_AVL_TREE ? Failed : NoMemory);
        EXPECT_EQ(WithoutMemory(0, [c] { return Push(c, &five); }), IsTree(kind) ? Failed : NoMemory);
        EXPECT_EQ(WithoutMemory(0, [c] { return InsertAtIndex(c, &five, 1); }),
                  kind == CONTAINER_LIST ? NoMemory : Failed);
        EXPECT_EQ(Inside(container), Elements{&three});
        EXPECT_EQ(WithoutMemory(0, [c] { return UpdateNode(c, &three, &five); }), Success);
        EXPECT_EQ(Inside(container), Elements{&five});
    }
}

TEST(InitContainer, WithoutMemoryMakesNothing)
{
    for (const std::uint32_t kind : kKinds)
        for (long succeeding = 0; succeeding < (IsTree(kind) ? 3 : 2); ++succeeding)
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

TEST(InitContainer, WritesNameVersionAndFunctions)
{
    const std::string name(200, 'n');
    ContainerParams_t params{.name = name.c_str(), .dataType = DATA_FLOAT};
    const Owned container = Make(params);
    EXPECT_EQ(container->name, std::string(127, 'n'));
    EXPECT_EQ(versionBeforeAnyContainer, std::string(kContainerVersionSize, '\0'));
    EXPECT_EQ(ReadVersion(), std::string("02\0"
                                         "00\0"
                                         "0\0\0\0\0"
                                         "1001",
                                         kContainerVersionSize));
    EXPECT_EQ(GetContainerLibVersion(nullptr), Missing);
    const float number = 1, notANumber = std::nanf("");
    EXPECT_EQ(container->compare(&notANumber, &number), -1);
    EXPECT_EQ(container->compare(&number, &notANumber), -1);
}

/// Inserts the numbers from `first` up and deletes every other one.
void InsertAndDelete(ContainerHandle_t *container, std::vector<std::int32_t> &numbers)
{
    for (std::size_t i = 1; i < numbers.size(); i += 2)
    {
        EXPECT_EQ(Insert(container, &numbers[i - 1]), Success);
        EXPECT_EQ(Insert(container, &numbers[i]), Success);
        EXPECT_EQ(DeleteByData(container, &numbers[i - 1]), Success);
        void *data = nullptr;
        EXPECT_EQ(RetrieveFromIndex(container, data, 0), Success);
    }
}

TEST(Container, TwoThreadsLoseNothing)
{
    for (const std::uint32_t kind : kKinds)
    {
        std::vector<std::int32_t> low(2000), high(2000);
        const Owned container = Make({.kind = kind});
        std::iota(low.begin(), low.end(), 0);
        std::iota(high.begin(), high.end(), 2000);
        std::thread other([&] { InsertAndDelete(container.get(), low); });
        InsertAndDelete(container.get(), high);
        other.join();
        Elements left = Inside(container);
        EXPECT_EQ(left.size(), 2000u);
        for (std::vector<std::int32_t> *numbers : {&low, &high})
            for (std::size_t i = 1; i < numbers->size(); i += 2)
                EXPECT_EQ(std::count(left.begin(), left.end(), &(*numbers)[i]), 1);
    }
}

} // namespace
