// The container kinds beside other containers that do the same work in the same way: a node of its own for every
// element, which holds a pointer to the caller's integer; the same mutex held for every single operation, also for each
// step of a walk; operations that are called and not put inline, as those of a library are.

#include "Container.h"
#include "Platform.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <list>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

#ifdef HAVE_BSD_TREE
#include <bsd/sys/tree.h>
#endif
#ifdef HAVE_GLIB
#include <glib.h>
#endif

namespace
{

using Element = std::int32_t;

class Locked
{
public:
    Locked() : m_mutex(Platform::MakeMutex("ContainerBenchmark")) {}
    ~Locked() { Platform::CloseMutex(m_mutex); }
    Locked(const Locked &) = delete;
    Locked &operator=(const Locked &) = delete;

protected:
    Platform::MutexLock Lock() const { return Platform::MutexLock(m_mutex); }

private:
    Platform::MutexHandle m_mutex;
};

template <ContainerKind kind>
class OwnContainer
{
public:
    OwnContainer()
    {
        ContainerParams_t params{.name = "ContainerBenchmark", .kind = kind, .dataType = DATA_INT32};
        InitContainer(&params, m_container);
    }
    ~OwnContainer() { UnInitContainer(m_container); }
    OwnContainer(const OwnContainer &) = delete;
    OwnContainer &operator=(const OwnContainer &) = delete;

    void Add(Element *element) { Insert(m_container, element); }
    void Remove(Element *element) { DeleteByData(m_container, element); }
    Element *TakeLast()
    {
        void *last = nullptr;
        Pop(m_container, last);
        return static_cast<Element *>(last);
    }
    void StartWalk() { m_index = 0; }
    /// The next element of a walk, null after the last one.
    Element *Next()
    {
        void *data = nullptr;
        return RetrieveFromIndex(m_container, data, m_index++) == StatusCode::Success ? static_cast<Element *>(data)
                                                                                      : nullptr;
    }

private:
    ContainerHandle_t *m_container = nullptr;
    std::uint32_t m_index = 0;
};

class StdList : Locked
{
public:
    [[gnu::noinline]] void Add(Element *element)
    {
        const auto lock = Lock();
        m_list.push_back(element);
    }
    [[gnu::noinline]] Element *TakeLast()
    {
        const auto lock = Lock();
        Element *const last = m_list.back();
        m_list.pop_back();
        return last;
    }

private:
    std::list<Element *> m_list;
};

class StdMultiset : Locked
{
public:
    [[gnu::noinline]] void Add(Element *element)
    {
        const auto lock = Lock();
        m_set.insert(element);
    }
    [[gnu::noinline]] void Remove(Element *element)
    {
        const auto lock = Lock();
        m_set.erase(m_set.find(element));
    }
    void StartWalk() { m_next = m_set.begin(); }
    [[gnu::noinline]] Element *Next()
    {
        const auto lock = Lock();
        return m_next == m_set.end() ? nullptr : *m_next++;
    }

private:
    struct Less
    {
        bool operator()(const Element *first, const Element *second) const { return *first < *second; }
    };
    std::multiset<Element *, Less> m_set;
    std::multiset<Element *, Less>::iterator m_next;
};

#ifdef HAVE_BSD_TREE
// The analyzer loses track of the nodes in the macros' code.
// NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete, clang-analyzer-cplusplus.NewDeleteLeaks)
struct BsdNode
{
    RB_ENTRY(BsdNode) entry;
    Element *data;
};

int CompareBsdNodes(const BsdNode *first, const BsdNode *second)
{
    return (*first->data > *second->data) - (*first->data < *second->data);
}

RB_HEAD(BsdHead, BsdNode);
RB_GENERATE_INTERNAL(BsdHead, BsdNode, entry, CompareBsdNodes, [[maybe_unused]] static)

class BsdTree : Locked
{
public:
    [[gnu::noinline]] void Add(Element *element)
    {
        const auto lock = Lock();
        auto *const node = new BsdNode{{}, element};
        RB_INSERT(BsdHead, &m_head, node);
    }
    [[gnu::noinline]] void Remove(Element *element)
    {
        const auto lock = Lock();
        BsdNode searched{{}, element};
        delete RB_REMOVE(BsdHead, &m_head, RB_FIND(BsdHead, &m_head, &searched));
    }
    void StartWalk() { m_next = RB_MIN(BsdHead, &m_head); }
    [[gnu::noinline]] Element *Next()
    {
        const auto lock = Lock();
        const BsdNode *const node = m_next;
        m_next = node ? RB_NEXT(BsdHead, &m_head, m_next) : nullptr;
        return node ? node->data : nullptr;
    }

private:
    BsdNode *m_next = nullptr;
    BsdHead m_head = RB_INITIALIZER(&m_head);
};
// NOLINTEND(clang-analyzer-cplusplus.NewDelete, clang-analyzer-cplusplus.NewDeleteLeaks)
#endif

#ifdef HAVE_GLIB
gint CompareElements(gconstpointer first, gconstpointer second)
{
    const Element left = *static_cast<const Element *>(first);
    const Element right = *static_cast<const Element *>(second);
    return (left > right) - (left < right);
}

class GLibTree : Locked
{
public:
    GLibTree() : m_tree(g_tree_new(CompareElements)) {}
    ~GLibTree() { g_tree_destroy(m_tree); }

    [[gnu::noinline]] void Add(Element *element)
    {
        const auto lock = Lock();
        g_tree_insert(m_tree, element, element);
    }
    [[gnu::noinline]] void Remove(Element *element)
    {
        const auto lock = Lock();
        g_tree_remove(m_tree, element);
    }
    void StartWalk() { m_next = g_tree_node_first(m_tree); }
    [[gnu::noinline]] Element *Next()
    {
        const auto lock = Lock();
        GTreeNode *const node = m_next;
        m_next = node ? g_tree_node_next(node) : nullptr;
        return node ? static_cast<Element *>(g_tree_node_value(node)) : nullptr;
    }

private:
    GTreeNode *m_next = nullptr;
    GTree *m_tree;
};
#endif

/// The integers below a count, in another order every time: in one order they would be learnt by the branch predictor.
class Elements
{
public:
    explicit Elements(std::int64_t count) : m_elements(static_cast<std::size_t>(count))
    {
        std::iota(m_elements.begin(), m_elements.end(), 0);
    }

    std::vector<Element> &Shuffle()
    {
        std::shuffle(m_elements.begin(), m_elements.end(), m_random);
        return m_elements;
    }

private:
    std::vector<Element> m_elements;
    std::mt19937 m_random;
};

template <typename Tested>
void AddAll(Tested &tested, std::vector<Element> &elements)
{
    for (Element &element : elements)
        tested.Add(&element);
}

template <typename Tested>
void RemoveAll(Tested &tested, std::vector<Element> &elements)
{
    for (Element &element : elements)
        tested.Remove(&element);
}

/// From the smallest on, so that no node has two children: of those containers free different nodes, and what is then
/// allocated for the next run would lie in different order.
template <typename Tested>
void Clear(Tested &tested, const std::vector<Element> &elements)
{
    for (Element element = 0; element < static_cast<Element>(elements.size()); ++element)
        tested.Remove(&element);
}

template <typename Tested>
std::int64_t WalkAll(Tested &tested)
{
    std::int64_t sum = 0;
    tested.StartWalk();
    while (const Element *const element = tested.Next())
        sum += *element;
    return sum;
}

/// Of this thread: what else the machine does costs it nothing.
double ProcessorSeconds()
{
    std::timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

template <typename Work>
double Seconds(Work work)
{
    const double start = ProcessorSeconds();
    work();
    return ProcessorSeconds() - start;
}

/// Each of these times one work, once, on a container of its own.
struct Inserting
{
    template <typename Tested>
    static double Run(Elements &elements)
    {
        Tested tested;
        std::vector<Element> &shuffled = elements.Shuffle();
        const double seconds = Seconds([&] { AddAll(tested, shuffled); });
        Clear(tested, shuffled);
        return seconds;
    }
};

struct Deleting
{
    template <typename Tested>
    static double Run(Elements &elements)
    {
        Tested tested;
        std::vector<Element> added = elements.Shuffle();
        AddAll(tested, added);
        std::vector<Element> &searched = elements.Shuffle();
        return Seconds([&] { RemoveAll(tested, searched); });
    }
};

struct Walking
{
    template <typename Tested>
    static double Run(Elements &elements)
    {
        Tested tested;
        std::vector<Element> &shuffled = elements.Shuffle();
        AddAll(tested, shuffled);
        const double seconds = Seconds([&] { benchmark::DoNotOptimize(WalkAll(tested)); });
        Clear(tested, shuffled);
        return seconds;
    }
};

struct PushingAndPopping
{
    template <typename Tested>
    static double Run(Elements &elements)
    {
        Tested tested;
        std::vector<Element> &shuffled = elements.Shuffle();
        return Seconds(
            [&]
            {
                AddAll(tested, shuffled);
                for (std::size_t count = shuffled.size(); count > 0; --count)
                    benchmark::DoNotOptimize(tested.TakeLast());
            });
    }
};

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Has both do the same work in turns, so that whatever else the machine does slows down both, each once before and
/// once after the other. Reports the time of `Own` and, as "ratio", the median of what it took in proportion to
/// `Other`.
template <typename Work, typename Own, typename Other>
void Compare(benchmark::State &state)
{
    Elements ownElements(state.range(0));
    Elements otherElements(state.range(0));
    std::vector<double> ratios;
    for (auto iteration : state)
    {
        double own = Work::template Run<Own>(ownElements);
        const double other = Work::template Run<Other>(otherElements) + Work::template Run<Other>(otherElements);
        own += Work::template Run<Own>(ownElements);
        state.SetIterationTime(own / 2);
        ratios.push_back(own / other);
    }
    state.counters["ratio"] = Median(ratios);
}

template <typename Work, typename Own, typename Other>
void Register(const std::string &name)
{
    benchmark::RegisterBenchmark(name.c_str(), Compare<Work, Own, Other>)->Arg(1000)->Arg(100000)->UseManualTime();
}

template <typename Own, typename Other>
void RegisterTrees(const std::string &names)
{
    Register<Inserting, Own, Other>("Insert/" + names);
    Register<Deleting, Own, Other>("Delete/" + names);
    Register<Walking, Own, Other>("Walk/" + names);
}

void RegisterAll()
{
    using RBTree = OwnContainer<CONTAINER_RB_TREE>;
    using AVLTree = OwnContainer<CONTAINER_AVL_TREE>;
    Register<PushingAndPopping, OwnContainer<CONTAINER_LIST>, StdList>("PushAndPop/List/std::list");
    RegisterTrees<RBTree, StdMultiset>("RBTree/std::multiset");
    RegisterTrees<AVLTree, StdMultiset>("AVLTree/std::multiset");
#ifdef HAVE_BSD_TREE
    RegisterTrees<RBTree, BsdTree>("RBTree/BSD");
#endif
#ifdef HAVE_GLIB
    RegisterTrees<AVLTree, GLibTree>("AVLTree/GTree");
#endif
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RegisterAll();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
