#pragma once

#include "AVLTree.h"
#include "Container.h"
#include "LinkedLists.h"
#include "RBTree.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

constexpr std::uint32_t kKinds[] = {CONTAINER_LIST, CONTAINER_SORTED_LIST, CONTAINER_RB_TREE, CONTAINER_AVL_TREE};

inline bool IsPlain(const ContainerHandle_t *container)
{
    return container->kind == CONTAINER_LIST;
}

inline bool IsTree(const ContainerHandle_t *container)
{
    return container->kind == CONTAINER_RB_TREE || container->kind == CONTAINER_AVL_TREE;
}

/// Nodes are the caller's to remove.
struct EmptyAndFree
{
    void operator()(ContainerHandle_t *container) const
    {
        void *data = nullptr;
        while (Pop(container, data) == StatusCode::Success ||
               (RetrieveFromEnd(container, data) == StatusCode::Success &&
                DeleteByData(container, data) == StatusCode::Success))
            continue;
        UnInitContainer(container);
    }
};
using Owned = std::unique_ptr<ContainerHandle_t, EmptyAndFree>;

inline Owned Make(ContainerParams_t params)
{
    ContainerHandle_t *made = nullptr;
    EXPECT_EQ(InitContainer(&params, made), StatusCode::Success);
    return Owned(made);
}

using Elements = std::vector<void *>;

inline Elements ListElements(const ContainerHandle_t &list)
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
inline int VisitRB(const RBNode_t *node, const RBNode_t *parent, const RBNode_t *none, Elements &elements)
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
inline int VisitAVL(const AVLNode_t *node, Elements &elements)
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

/// What `container` holds, read past the front end, with the rules of its kind checked on the way.
inline Elements Inside(const ContainerHandle_t *container)
{
    if (!IsTree(container))
        return ListElements(*container);
    Elements elements;
    const auto *const root = static_cast<RBNode_t *>(container->head);
    if (container->kind == CONTAINER_AVL_TREE)
        VisitAVL(static_cast<AVLNode_t *>(container->head), elements);
    else // The sentinel is the parent of the root.
        VisitRB(root, root->parent, root->parent, elements);
    return elements;
}
