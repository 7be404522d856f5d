#pragma once

#include "Container.h"

/// The red-black tree. The operations are those that RBTreeInit puts into a container's table; the front end calls
/// them. The root is black, a red node has no red child, and every path from a node down passes the same number of
/// black nodes. Each tree has a sentinel, black and without data, that stands for every missing child and for the
/// root's parent. Equal elements stay in the order in which they were inserted.

enum RBColour : std::uint32_t
{
    RB_BLACK = 0,
    RB_RED = 1
};

struct RBNode_t
{
    /// Left and right.
    RBNode_t *child[2] = {};
    RBNode_t *parent = nullptr;
    /// Of RBColour.
    std::uint32_t colour = RB_BLACK;
    /// The caller's.
    void *data = nullptr;
};

/// Makes `container` an empty tree. Returns Success; Missing for null and for DATA_CUSTOM without a comparison;
/// NoMemory.
Status RBTreeInit(ContainerHandle_t *container);

/// Inserts `data` behind the elements equal to it, in logarithmic time. Returns Success; Missing for null data;
/// NoMemory.
Status RBTreeInsert(ContainerHandle_t &tree, void *data);

/// Removes the element equal to `data` that stands nearest to the root, in logarithmic time. Returns Success; Missing
/// for null data; Failed when no element is equal.
Status RBTreeDelete(ContainerHandle_t &tree, const void *data);

/// Stores the element at `index` (in order, read as an unsigned number) into `data`. Following up the last index asked
/// for costs the difference, anything else a walk from the smallest element. Returns Success; NotFound for an index at
/// or beyond the element count; Failed for a tree of more than 99 levels.
Status RBTreeRetrieveFromIndex(ContainerHandle_t &tree, void *&data, std::uint32_t index);

/// Stores the largest element into `data`, null for an empty tree. Returns Success.
Status RBTreeRetrieveFromEnd(ContainerHandle_t &tree, void *&data);

/// Removes the element that RBTreeDelete removes for `oldData` and inserts `newData`, without allocating. Returns
/// Missing for null data, else what RBTreeDelete returns.
Status RBTreeUpdateNode(ContainerHandle_t &tree, const void *oldData, void *newData);
