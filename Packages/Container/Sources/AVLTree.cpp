#include "AVLTree.h"

#include "TreeWalk.h"

#include <algorithm>
#include <new>
#include <utility>

namespace
{

constexpr ContainerOperations_t kOperations = {
    .insert = AVLTreeInsert,
    .retrieveFromIndex = AVLTreeRetrieveFromIndex,
    .retrieveFromEnd = AVLTreeRetrieveFromEnd,
    .deleteByData = AVLTreeDelete,
    .updateNode = AVLTreeUpdateNode,
};

struct AVLState : ContainerState_t
{
    TreeWalk<AVLNode_t> walk;
};

/// A node on its way into or out of a tree.
using NodeOwner = std::unique_ptr<AVLNode_t>;

AVLState &State(const ContainerHandle_t &tree)
{
    return static_cast<AVLState &>(*tree.state);
}

AVLNode_t *Root(const ContainerHandle_t &tree)
{
    return static_cast<AVLNode_t *>(tree.head);
}

std::int32_t Height(const AVLNode_t *node)
{
    return node ? node->height : 0;
}

void UpdateHeight(AVLNode_t &node)
{
    node.height = 1 + std::max(Height(node.child[kLeft]), Height(node.child[kRight]));
}

/// Lowers `node` to the given side and lifts its child from the other one into its place.
void Rotate(AVLNode_t *&node, TreeSide_t side)
{
    AVLNode_t *const lowered = node;
    AVLNode_t *const lifted = lowered->child[1 - side];
    lowered->child[1 - side] = std::exchange(lifted->child[side], lowered);
    node = lifted;
    UpdateHeight(*lowered);
    UpdateHeight(*lifted);
}

/// Restores the balance of `node`, whose given side is two levels higher than the other.
void RotateFrom(AVLNode_t *&node, TreeSide_t side)
{
    AVLNode_t *&higher = node->child[side];
    if (Height(higher->child[1 - side]) > Height(higher->child[side]))
        Rotate(higher, side);
    Rotate(node, 1 - side);
}

/// Restores height and balance of `node` after a change below it. Returns whether the height is another one now.
bool Restore(AVLNode_t *&node)
{
    const std::int32_t before = node->height;
    const std::int32_t balance = Height(node->child[kLeft]) - Height(node->child[kRight]);
    if (balance > 1)
        RotateFrom(node, kLeft);
    else if (balance < -1)
        RotateFrom(node, kRight);
    else
        UpdateHeight(*node);
    return node->height != before;
}

/// The way from the root to a place in a tree, kept to restore the balance on the way back.
class Path
{
public:
    explicit Path(AVLNode_t *&root) : m_place(&root) {}

    /// Where the way ends: the pointer that holds the node there, or null.
    AVLNode_t *&Place() const { return *m_place; }

    void Descend(TreeSide_t side)
    {
        m_passed[m_depth++] = m_place;
        m_place = &(*m_place)->child[side];
    }

    void RestoreUpwards()
    {
        while (m_depth > 0 && Restore(*m_passed[m_depth - 1]))
            --m_depth;
    }

private:
    // Of the pointers that hold the nodes, since a rotation puts another node there.
    AVLNode_t **m_passed[kMaxTreeLevels];
    std::size_t m_depth = 0;
    AVLNode_t **m_place;
};

void Attach(ContainerHandle_t &tree, NodeOwner node)
{
    AVLNode_t *root = Root(tree);
    Path path(root);
    while (path.Place())
        path.Descend(tree.compare(node->data, path.Place()->data) < 0 ? kLeft : kRight);
    path.Place() = node.release();
    path.RestoreUpwards();
    tree.head = root;
    State(tree).walk.Forget();
}

/// Follows `path` to the first element equal to `data`. Returns whether there is one.
bool FindEqual(Path &path, const ContainerHandle_t &tree, const void *data)
{
    while (path.Place())
    {
        const std::int32_t order = tree.compare(data, path.Place()->data);
        if (order == 0)
            return true;
        path.Descend(order < 0 ? kLeft : kRight);
    }
    return false;
}

/// Follows `path` from a node with two children to the node next in order, whose data the first one takes over.
void MoveToSuccessor(Path &path)
{
    AVLNode_t *const node = path.Place();
    path.Descend(kRight);
    while (path.Place()->child[kLeft])
        path.Descend(kLeft);
    node->data = path.Place()->data;
}

/// Takes the first element equal to `data` out of the tree; null when there is none. The node given back is fit to be
/// attached again.
NodeOwner Detach(ContainerHandle_t &tree, const void *data)
{
    AVLNode_t *root = Root(tree);
    Path path(root);
    if (!FindEqual(path, tree, data))
        return nullptr;
    if (path.Place()->child[kLeft] && path.Place()->child[kRight])
        MoveToSuccessor(path);
    NodeOwner node(path.Place());
    path.Place() = node->child[node->child[kLeft] ? kLeft : kRight];
    path.RestoreUpwards();
    tree.head = root;
    State(tree).walk.Forget();
    *node = AVLNode_t();
    return node;
}

} // namespace

Status AVLTreeInit(ContainerHandle_t *container)
{
    if (!container || (container->dataType == DATA_CUSTOM && !container->compare))
        return StatusCode::Missing;
    container->state.reset(new (std::nothrow) AVLState);
    if (!container->state)
        return StatusCode::NoMemory;
    container->head = nullptr;
    container->operations = kOperations;
    return StatusCode::Success;
}

Status AVLTreeInsert(ContainerHandle_t &tree, void *data)
{
    if (!data)
        return StatusCode::Missing;
    NodeOwner node(new (std::nothrow) AVLNode_t{.data = data});
    if (!node)
        return tree.head ? StatusCode::Failed : StatusCode::NoMemory;
    Attach(tree, std::move(node));
    return StatusCode::Success;
}

Status AVLTreeDelete(ContainerHandle_t &tree, const void *data)
{
    if (!data || !tree.head)
        return StatusCode::Missing;
    return Detach(tree, data) ? StatusCode::Success : StatusCode::NotFound;
}

Status AVLTreeRetrieveFromIndex(ContainerHandle_t &tree, void *&data, std::uint32_t index)
{
    if (!tree.head)
        return StatusCode::Missing;
    return State(tree).walk.Retrieve(Root(tree), nullptr, index, data);
}

Status AVLTreeRetrieveFromEnd(ContainerHandle_t &tree, void *&data)
{
    const AVLNode_t *node = Root(tree);
    if (!node)
        return StatusCode::Failed;
    while (node->child[kRight])
        node = node->child[kRight];
    data = node->data;
    return StatusCode::Success;
}

Status AVLTreeUpdateNode(ContainerHandle_t &tree, const void *oldData, void *newData)
{
    if (!oldData || !newData || !tree.head)
        return StatusCode::Missing;
    NodeOwner node = Detach(tree, oldData);
    if (!node)
        return StatusCode::NotFound;
    node->data = newData;
    Attach(tree, std::move(node));
    return StatusCode::Success;
}
