#pragma once

#include "Container.h"

/// The AVL tree. The operations are those that AVLTreeInit puts into a container's table; the front end calls them. The
/// heights of a node's two sides differ by one at most. Equal elements stay in the order in which they were inserted.

struct AVLNode_t
{
    /// Left and right; null where missing.
    AVLNode_t *child[2] = {};
    /// Of the subtree: 1 for a leaf.
    std::int32_t height = 1;
    /// The caller's.
    void *data = nullptr;
};

/// Makes `container` an empty tree. Returns Success; Missing for null and for DATA_CUSTOM without a comparison;
/// NoMemory.
Status AVLTreeInit(ContainerHandle_t *container);

/// Inserts `data` behind the elements equal to it, in logarithmic time. Returns Success; Missing for null data; without
/// memory NoMemory for the first element and Failed for any later one.
Status AVLTreeInsert(ContainerHandle_t &tree, void *data);

/// Removes the element equal to `data` that stands nearest to the root, in logarithmic time. Returns Success; Missing
/// for null data and for an empty tree; NotFound when no element is equal.
Status AVLTreeDelete(ContainerHandle_t &tree, const void *data);

/// Stores the element at `index` (in order, read as an unsigned number) into `data`. Following up the last index asked
/// for costs the difference, anything else a walk from the smallest element. Returns Success; Missing for an empty
/// tree; NotFound for an index at or beyond the element count; Failed for a tree of more than 99 levels.
Status AVLTreeRetrieveFromIndex(ContainerHandle_t &tree, void *&data, std::uint32_t index);

/// Stores the largest element into `data`. Returns Success; Failed for an empty tree.
Status AVLTreeRetrieveFromEnd(ContainerHandle_t &tree, void *&data);

/// Removes the element that AVLTreeDelete removes for `oldData` and inserts `newData`, without allocating. Returns
/// Missing for null data, else what AVLTreeDelete returns.
Status AVLTreeUpdateNode(ContainerHandle_t &tree, const void *oldData, void *newData);
