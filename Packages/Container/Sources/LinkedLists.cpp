#include "LinkedLists.h"

#include <new>
#include <utility>

namespace
{

constexpr ContainerOperations_t kPlainListOperations = {
    .insertAtIndex = LinkedListInsertAtIndex,
    .insert = LinkedListPush,
    .retrieveFromIndex = ListRetrieveFromIndex,
    .retrieveFromEnd = ListRetrieveFromEnd,
    .deleteAtIndex = ListDeleteAtIndex,
    .deleteByData = ListDeleteByData,
    .push = LinkedListPush,
    .pop = ListPop,
    .updateNode = ListUpdateNode,
};

constexpr ContainerOperations_t kSortedListOperations = {
    .insert = SortedLinkedListInsert,
    .retrieveFromIndex = ListRetrieveFromIndex,
    .retrieveFromEnd = ListRetrieveFromEnd,
    .deleteAtIndex = ListDeleteAtIndex,
    .deleteByData = ListDeleteByData,
    .push = SortedLinkedListPush,
    .pop = ListPop,
    .updateNode = SortedListUpdateNode,
};

/// A node on its way into or out of a list.
using NodeOwner = std::unique_ptr<ListNode_t>;

/// A place between two neighbours; null stands for the list's own end.
struct Gap
{
    ListNode_t *previous;
    ListNode_t *next;
};

ListNode_t *Head(const ContainerHandle_t &list)
{
    return static_cast<ListNode_t *>(list.head);
}

ListNode_t *Tail(const ContainerHandle_t &list)
{
    return static_cast<ListNode_t *>(list.tail);
}

NodeOwner MakeNode(void *data)
{
    // Not the operator new that does not throw: it is a call around this one.
    try
    {
        return NodeOwner(new ListNode_t{.data = data});
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
}

bool IsNegative(std::uint32_t index)
{
    return static_cast<std::int32_t>(index) < 0;
}

ListNode_t *NodeAt(const ContainerHandle_t &list, std::uint32_t index)
{
    ListNode_t *node = Head(list);
    for (; node && index > 0; --index)
        node = node->next;
    return node;
}

ListNode_t *FindEqual(const ContainerHandle_t &list, const void *data)
{
    ListNode_t *node = Head(list);
    while (node && list.compare(data, node->data) != 0)
        node = node->next;
    return node;
}

/// Finds the gap in front of the element at `index`, or the one behind the last element when `index` is the count.
bool FindGap(const ContainerHandle_t &list, std::uint32_t index, Gap &gap)
{
    if (IsNegative(index))
        return false;
    gap = {nullptr, Head(list)};
    for (; gap.next && index > 0; --index)
        gap = {gap.next, gap.next->next};
    return index == 0;
}

void SetNext(ContainerHandle_t &list, ListNode_t *node, ListNode_t *next)
{
    if (node)
        node->next = next;
    else
        list.head = next;
}

void SetPrevious(ContainerHandle_t &list, ListNode_t *node, ListNode_t *previous)
{
    if (node)
        node->previous = previous;
    else
        list.tail = previous;
}

void Link(ContainerHandle_t &list, Gap gap, NodeOwner owner)
{
    ListNode_t *const node = owner.release();
    node->previous = gap.previous;
    node->next = gap.next;
    SetNext(list, gap.previous, node);
    SetPrevious(list, gap.next, node);
}

NodeOwner Unlink(ContainerHandle_t &list, ListNode_t *node)
{
    // Read before anything is written: for all the compiler knows, that changes the node.
    const Gap gap = {node->previous, node->next};
    SetNext(list, gap.previous, gap.next);
    SetPrevious(list, gap.next, gap.previous);
    return NodeOwner(node);
}

void Append(ContainerHandle_t &list, NodeOwner node)
{
    Link(list, {Tail(list), nullptr}, std::move(node));
}

Status Init(ContainerHandle_t &list, const ContainerOperations_t &operations)
{
    list.head = nullptr;
    list.tail = nullptr;
    list.operations = operations;
    return StatusCode::Success;
}

} // namespace

Status LinkedListInit(ContainerHandle_t *container)
{
    return container ? Init(*container, kPlainListOperations) : StatusCode::Missing;
}

Status SortedLinkedListInit(ContainerHandle_t *container)
{
    if (!container || (container->dataType == DATA_CUSTOM && !container->compare) ||
        (container->hasPositionFunction && !container->position))
        return StatusCode::Missing;
    return Init(*container, kSortedListOperations);
}

std::uint32_t DefaultListPosition(ContainerHandle_t *container, const void *data)
{
    std::uint32_t position = 0;
    for (const ListNode_t *node = Head(*container); node && container->compare(data, node->data) > 0; node = node->next)
        ++position;
    return position;
}

Status LinkedListInsertAtIndex(ContainerHandle_t &list, void *data, std::uint32_t index)
{
    if (!data)
        return StatusCode::Missing;
    Gap gap = {};
    if (!FindGap(list, index, gap))
        return StatusCode::NotFound;
    NodeOwner node = MakeNode(data);
    if (!node)
        return StatusCode::NoMemory;
    Link(list, gap, std::move(node));
    return StatusCode::Success;
}

Status LinkedListPush(ContainerHandle_t &list, void *data)
{
    if (!data)
        return StatusCode::Missing;
    NodeOwner node = MakeNode(data);
    if (!node)
        return StatusCode::NoMemory;
    Append(list, std::move(node));
    return StatusCode::Success;
}

Status ListRetrieveFromIndex(ContainerHandle_t &list, void *&data, std::uint32_t index)
{
    if (!list.head)
        return StatusCode::Missing;
    if (IsNegative(index))
        return StatusCode::NotFound;
    const ListNode_t *const node = NodeAt(list, index);
    if (!node)
        return StatusCode::Failed;
    data = node->data;
    return StatusCode::Success;
}

Status ListRetrieveFromEnd(ContainerHandle_t &list, void *&data)
{
    if (!list.tail)
        return StatusCode::Failed;
    data = Tail(list)->data;
    return StatusCode::Success;
}

Status ListDeleteAtIndex(ContainerHandle_t &list, std::uint32_t index)
{
    if (!list.head)
        return StatusCode::Missing;
    ListNode_t *const node = IsNegative(index) ? nullptr : NodeAt(list, index);
    if (!node)
        return StatusCode::NotFound;
    Unlink(list, node);
    return StatusCode::Success;
}

Status ListDeleteByData(ContainerHandle_t &list, const void *data)
{
    if (!data || !list.compare || !list.head)
        return StatusCode::Missing;
    ListNode_t *const node = FindEqual(list, data);
    if (!node)
        return StatusCode::NotFound;
    Unlink(list, node);
    return StatusCode::Success;
}

Status ListPop(ContainerHandle_t &list, void *&data)
{
    if (!list.tail)
        return StatusCode::Failed;
    data = Unlink(list, Tail(list))->data;
    return StatusCode::Success;
}

Status ListUpdateNode(ContainerHandle_t &list, const void *oldData, void *newData)
{
    if (!oldData || !newData || !list.compare)
        return StatusCode::Missing;
    ListNode_t *const node = FindEqual(list, oldData);
    if (!node)
        return StatusCode::NotFound;
    node->data = newData;
    return StatusCode::Success;
}

Status SortedLinkedListInsert(ContainerHandle_t &list, void *data)
{
    if (!data)
        return StatusCode::Missing;
    return LinkedListInsertAtIndex(list, data, list.position(&list, data));
}

Status SortedLinkedListPush(ContainerHandle_t &list, void *data)
{
    if (!data)
        return StatusCode::Missing;
    NodeOwner node = MakeNode(data);
    if (!node)
        return StatusCode::NoMemory;
    if (list.tail && list.compare(data, Tail(list)->data) < 0)
        return StatusCode::NotFound;
    Append(list, std::move(node));
    return StatusCode::Success;
}

Status SortedListUpdateNode(ContainerHandle_t &list, const void *oldData, void *newData)
{
    if (!oldData || !newData || !list.head)
        return StatusCode::Missing;
    ListNode_t *const found = FindEqual(list, oldData);
    if (!found)
        return StatusCode::NotFound;
    const Gap oldGap = {found->previous, found->next};
    NodeOwner node = Unlink(list, found);
    Gap newGap = {};
    const bool placed = FindGap(list, list.position(&list, newData), newGap);
    if (placed)
        node->data = newData;
    Link(list, placed ? newGap : oldGap, std::move(node));
    return placed ? StatusCode::Success : StatusCode::NotFound;
}
