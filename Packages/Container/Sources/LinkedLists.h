#pragma once

#include "Container.h"

/// The plain and the sorted doubly linked list. The operations are those that the inits put into a container's table;
/// the front end calls them. All but LinkedListPush, SortedLinkedListPush, ListRetrieveFromEnd and ListPop walk from
/// the head.

struct ListNode_t
{
    /// The caller's.
    void *data = nullptr;
    /// Null at the head.
    ListNode_t *previous = nullptr;
    /// Null at the tail.
    ListNode_t *next = nullptr;
};

/// Makes `container` an empty plain list. Returns Success; Missing for null.
Status LinkedListInit(ContainerHandle_t *container);

/// Makes `container` an empty sorted list. Returns Success; Missing for null, for DATA_CUSTOM without a comparison or
/// when the promised position function is missing.
Status SortedLinkedListInit(ContainerHandle_t *container);

/// The position function of sorted lists without one of their own: the index of the first element that `data` does not
/// order after, else the element count.
std::uint32_t DefaultListPosition(ContainerHandle_t *container, const void *data);

/// Inserts `data` before the element at `index`, or at the end when `index` is the element count. Returns Success;
/// Missing for null data; NotFound for a negative or larger index; NoMemory.
Status LinkedListInsertAtIndex(ContainerHandle_t &list, void *data, std::uint32_t index);

/// Appends `data`. Returns Success; Missing for null data; NoMemory.
Status LinkedListPush(ContainerHandle_t &list, void *data);

/// Stores the element at `index` into `data`. Returns Success; Missing for an empty list; NotFound for a negative
/// index; Failed for an index at or beyond the element count.
Status ListRetrieveFromIndex(ContainerHandle_t &list, void *&data, std::uint32_t index);

/// Stores the last element into `data`. Returns Success; Failed for an empty list.
Status ListRetrieveFromEnd(ContainerHandle_t &list, void *&data);

/// Removes the element at `index`. Returns Success; Missing for an empty list; NotFound for a negative index or one at
/// or beyond the element count.
Status ListDeleteAtIndex(ContainerHandle_t &list, std::uint32_t index);

/// Removes the first element equal to `data`. Returns Success; Missing for null data, without a comparison and for an
/// empty list; NotFound when no element is equal.
Status ListDeleteByData(ContainerHandle_t &list, const void *data);

/// Removes the last element and stores it into `data`. Returns Success; Failed for an empty list.
Status ListPop(ContainerHandle_t &list, void *&data);

/// Puts `newData` in the place of the first element equal to `oldData`. Returns Success; Missing for null data or
/// without a comparison; NotFound when no element is equal.
Status ListUpdateNode(ContainerHandle_t &list, const void *oldData, void *newData);

/// Inserts `data` at the index that the position function gives; by default in front of the elements equal to it.
/// Returns Missing for null data, else what LinkedListInsertAtIndex returns for that index.
Status SortedLinkedListInsert(ContainerHandle_t &list, void *data);

/// Appends `data` where that keeps the order. Returns Success; Missing for null data; NoMemory; NotFound when `data`
/// orders before the last element.
Status SortedLinkedListPush(ContainerHandle_t &list, void *data);

/// Removes the first element equal to `oldData` and inserts `newData` as SortedLinkedListInsert does, in the same node
/// and so without allocating. Returns Missing for null data; what ListDeleteByData and then SortedLinkedListInsert
/// return. When the position function gives an index that does not exist, the old element stays where it was.
Status SortedListUpdateNode(ContainerHandle_t &list, const void *oldData, void *newData);
