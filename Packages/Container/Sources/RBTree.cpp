#include "RBTree.h"

#include "Comparisons.h"
#include "TreeWalk.h"

#include <new>
#include <utility>

namespace
{

constexpr ContainerOperations_t kOperations = {
    .insert = RBTreeInsert,
    .retrieveFromIndex = RBTreeRetrieveFromIndex,
    .retrieveFromEnd = RBTreeRetrieveFromEnd,
    .deleteByData = RBTreeDelete,
    .updateNode = RBTreeUpdateNode,
};

struct RBState : ContainerState_t
{
    RBNode_t sentinel = {.child = {&sentinel, &sentinel}, .parent = &sentinel};
    TreeWalk<RBNode_t> walk;
};

/// A node on its way into or out of a tree.
using NodeOwner = std::unique_ptr<RBNode_t>;

RBState &State(const ContainerHandle_t &tree)
{
    return static_cast<RBState &>(*tree.state);
}

RBNode_t *None(const ContainerHandle_t &tree)
{
    return &State(tree).sentinel;
}

RBNode_t *Root(const ContainerHandle_t &tree)
{
    return static_cast<RBNode_t *>(tree.head);
}

TreeSide_t SideOf(const RBNode_t *node)
{
    return node == node->parent->child[kRight] ? kRight : kLeft;
}

/// Hangs `node` below `parent`, as the root where that is the sentinel.
void SetChild(ContainerHandle_t &tree, RBNode_t *parent, TreeSide_t side, RBNode_t *node)
{
    if (parent == None(tree))
        tree.head = node;
    else
        parent->child[side] = node;
}

void Replace(ContainerHandle_t &tree, RBNode_t *node, RBNode_t *by)
{
    SetChild(tree, node->parent, SideOf(node), by);
    by->parent = node->parent;
}

/// Lowers `node` to the given side and lifts its child from the other one into its place.
void Rotate(ContainerHandle_t &tree, RBNode_t *node, TreeSide_t side)
{
    RBNode_t *const lifted = node->child[1 - side];
    RBNode_t *const inner = lifted->child[side];
    node->child[1 - side] = inner;
    inner->parent = node;
    Replace(tree, node, lifted);
    lifted->child[side] = node;
    node->parent = lifted;
}

void RestoreAfterInsert(ContainerHandle_t &tree, RBNode_t *node)
{
    while (node->parent->colour == RB_RED)
    {
        RBNode_t *const grandparent = node->parent->parent;
        const TreeSide_t side = SideOf(node->parent);
        RBNode_t *const uncle = grandparent->child[1 - side];
        grandparent->colour = RB_RED;
        if (uncle->colour == RB_RED)
        {
            uncle->colour = RB_BLACK;
            node->parent->colour = RB_BLACK;
            node = grandparent;
            continue;
        }
        if (SideOf(node) != side)
        {
            node = node->parent;
            Rotate(tree, node, side);
        }
        node->parent->colour = RB_BLACK;
        Rotate(tree, grandparent, 1 - side);
    }
    Root(tree)->colour = RB_BLACK;
}

/// Gives back the black node that the paths through `node` lack, where that takes a rotation; `sibling` is black and
/// has a red child.
void RotateBlackOver(ContainerHandle_t &tree, RBNode_t *node, RBNode_t *sibling)
{
    RBNode_t *const parent = node->parent;
    const TreeSide_t side = SideOf(node);
    if (sibling->child[1 - side]->colour == RB_BLACK)
    {
        sibling->child[side]->colour = RB_BLACK;
        sibling->colour = RB_RED;
        Rotate(tree, sibling, 1 - side);
        sibling = parent->child[1 - side];
    }
    sibling->colour = parent->colour;
    parent->colour = RB_BLACK;
    sibling->child[1 - side]->colour = RB_BLACK;
    Rotate(tree, parent, side);
}

/// `node` took the place of a black node; it may be the sentinel.
void RestoreAfterDelete(ContainerHandle_t &tree, RBNode_t *node)
{
    while (node != Root(tree) && node->colour == RB_BLACK)
    {
        RBNode_t *const parent = node->parent;
        const TreeSide_t side = SideOf(node);
        RBNode_t *sibling = parent->child[1 - side];
        if (sibling->colour == RB_RED)
        {
            sibling->colour = RB_BLACK;
            parent->colour = RB_RED;
            Rotate(tree, parent, side);
            sibling = parent->child[1 - side];
        }
        if (sibling->child[kLeft]->colour == RB_RED || sibling->child[kRight]->colour == RB_RED)
        {
            RotateBlackOver(tree, node, sibling);
            break;
        }
        sibling->colour = RB_RED;
        node = parent;
    }
    node->colour = RB_BLACK;
}

/// Where a node is to hang.
struct Place
{
    RBNode_t *parent;
    TreeSide_t side;
};

/// Equal data goes to the right.
Place FindPlace(const ContainerHandle_t &tree, const void *data)
{
    return WithComparison(tree,
                          [&tree, data](auto compare)
                          {
                              RBNode_t *parent = None(tree);
                              std::int32_t order = 0;
                              for (RBNode_t *node = Root(tree); node != None(tree);)
                              {
                                  parent = node;
                                  order = compare(data, node->data);
                                  // Not an index made from the order: that would wait for the data.
                                  if (order < 0)
                                      node = node->child[kLeft];
                                  else
                                      node = node->child[kRight];
                              }
                              return Place{parent, order < 0 ? kLeft : kRight};
                          });
}

void Attach(ContainerHandle_t &tree, NodeOwner owner)
{
    const Place place = FindPlace(tree, owner->data);
    RBNode_t *const node = owner.release();
    node->child[kLeft] = None(tree);
    node->child[kRight] = None(tree);
    node->parent = place.parent;
    node->colour = RB_RED;
    SetChild(tree, place.parent, place.side, node);
    RestoreAfterInsert(tree, node);
    State(tree).walk.Forget();
}

RBNode_t *FindEqual(const ContainerHandle_t &tree, const void *data)
{
    return WithComparison(tree,
                          [&tree, data](auto compare) -> RBNode_t *
                          {
                              for (RBNode_t *node = Root(tree); node != None(tree);)
                              {
                                  const std::int32_t order = compare(data, node->data);
                                  if (order == 0)
                                      return node;
                                  node = order < 0 ? node->child[kLeft] : node->child[kRight];
                              }
                              return nullptr;
                          });
}

/// Takes the data of `node` out of the tree, and with it a node: `node` itself, or the one next in order when `node`
/// has two children and keeps its place with that one's data.
NodeOwner Detach(ContainerHandle_t &tree, RBNode_t *node)
{
    RBNode_t *const none = None(tree);
    RBNode_t *unlinked = node;
    if (node->child[kLeft] != none && node->child[kRight] != none)
        for (unlinked = node->child[kRight]; unlinked->child[kLeft] != none;)
            unlinked = unlinked->child[kLeft];
    node->data = unlinked->data;
    RBNode_t *const rest = unlinked->child[unlinked->child[kLeft] == none ? kRight : kLeft];
    Replace(tree, unlinked, rest);
    if (unlinked->colour == RB_BLACK)
        RestoreAfterDelete(tree, rest);
    State(tree).walk.Forget();
    return NodeOwner(unlinked);
}

} // namespace

Status RBTreeInit(ContainerHandle_t *container)
{
    if (!container || (container->dataType == DATA_CUSTOM && !container->compare))
        return StatusCode::Missing;
    container->state.reset(new (std::nothrow) RBState);
    if (!container->state)
        return StatusCode::NoMemory;
    container->head = None(*container);
    container->operations = kOperations;
    return StatusCode::Success;
}

Status RBTreeInsert(ContainerHandle_t &tree, void *data)
{
    if (!data)
        return StatusCode::Missing;
    NodeOwner node(new (std::nothrow) RBNode_t{.data = data});
    if (!node)
        return StatusCode::NoMemory;
    Attach(tree, std::move(node));
    return StatusCode::Success;
}

Status RBTreeDelete(ContainerHandle_t &tree, const void *data)
{
    if (!data)
        return StatusCode::Missing;
    RBNode_t *const node = FindEqual(tree, data);
    if (!node)
        return StatusCode::Failed;
    Detach(tree, node);
    return StatusCode::Success;
}

Status RBTreeRetrieveFromIndex(ContainerHandle_t &tree, void *&data, std::uint32_t index)
{
    return State(tree).walk.Retrieve(Root(tree), None(tree), index, data);
}

Status RBTreeRetrieveFromEnd(ContainerHandle_t &tree, void *&data)
{
    const RBNode_t *node = Root(tree);
    while (node->child[kRight] != None(tree))
        node = node->child[kRight];
    data = node->data;
    return StatusCode::Success;
}

Status RBTreeUpdateNode(ContainerHandle_t &tree, const void *oldData, void *newData)
{
    if (!oldData || !newData)
        return StatusCode::Missing;
    RBNode_t *const found = FindEqual(tree, oldData);
    if (!found)
        return StatusCode::Failed;
    NodeOwner node = Detach(tree, found);
    node->data = newData;
    Attach(tree, std::move(node));
    return StatusCode::Success;
}
