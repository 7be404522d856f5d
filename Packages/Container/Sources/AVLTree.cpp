#include "AVLTree.h"

#include "Comparisons.h"
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

void UpdateHeight(AVLNode_t *node)
{
    node->height = 1 + std::max(Height(node->child[kLeft]), Height(node->child[kRight]));
}

/// Lowers `node` to the given side and returns its child from the other one, lifted into its place.
AVLNode_t *Rotate(AVLNode_t *node, TreeSide_t side)
{
    AVLNode_t *const lifted = node->child[1 - side];
    // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): a higher side is not empty.
    node->child[1 - side] = std::exchange(lifted->child[side], node);
    UpdateHeight(node);
    UpdateHeight(lifted);
    return lifted;
}

/// Restores the balance of `node`, whose given side is two levels higher than the other. Returns the node in its place.
AVLNode_t *RotateFrom(AVLNode_t *node, TreeSide_t side)
{
    AVLNode_t *&higher = node->child[side];
    if (Height(higher->child[1 - side]) > Height(higher->child[side]))
        higher = Rotate(higher, side);
    return Rotate(node, 1 - side);
}

/// Restores height and balance of `node` after a change below it. Returns the node in its place.
AVLNode_t *Restore(AVLNode_t *node)
{
    const std::int32_t balance = Height(node->child[kLeft]) - Height(node->child[kRight]);
    if (balance > 1)
        return RotateFrom(node, kLeft);
    if (balance < -1)
        return RotateFrom(node, kRight);
    UpdateHeight(node);
    return node;
}

/// A way down a tree, kept to restore the balance on the way back.
class Path
{
public:
    explicit Path(ContainerHandle_t &tree) : m_tree(tree), m_node(Root(tree)) {}

    /// Where the way ends: a node, or null for the place of a missing child.
    AVLNode_t *Node() const { return m_node; }

    void Descend(TreeSide_t side)
    {
        m_passed[m_depth++] = m_node;
        m_node = m_node->child[side];
    }

    /// Puts `node` (or nothing) where the way ends, which is on the given side of the last node passed, and restores
    /// the balance of the nodes passed.
    void Put(AVLNode_t *node, TreeSide_t side)
    {
        SetChild(side, node);
        while (m_depth > 0)
        {
            AVLNode_t *const passed = m_passed[--m_depth];
            const std::int32_t height = passed->height;
            AVLNode_t *const restored = Restore(passed);
            if (restored != passed)
                SetChild(SideOf(passed), restored);
            if (restored->height == height)
                break;
        }
        State(m_tree).walk.Forget();
    }

    /// The side on which `node` hangs below the last node passed.
    TreeSide_t SideOf(const AVLNode_t *node) const
    {
        return m_depth > 0 && m_passed[m_depth - 1]->child[kRight] == node ? kRight : kLeft;
    }

private:
    void SetChild(TreeSide_t side, AVLNode_t *node)
    {
        if (m_depth > 0)
            m_passed[m_depth - 1]->child[side] = node;
        else
            m_tree.head = node;
    }

    ContainerHandle_t &m_tree;
    AVLNode_t *m_node;
    AVLNode_t *m_passed[kMaxTreeLevels];
    std::size_t m_depth = 0;
};

/// Follows `path` to the place for `data`, behind the elements equal to it. Returns on which side that is.
TreeSide_t FindPlace(Path &path, const ContainerHandle_t &tree, const void *data)
{
    return WithComparison(tree,
                          [&path, data](auto compare)
                          {
                              std::int32_t order = 0;
                              while (path.Node())
                              {
                                  order = compare(data, path.Node()->data);
                                  if (order < 0)
                                      path.Descend(kLeft);
                                  else
                                      path.Descend(kRight);
                              }
                              return order < 0 ? kLeft : kRight;
                          });
}

/// Follows `path` to the first element equal to `data`. Returns whether there is one.
bool FindEqual(Path &path, const ContainerHandle_t &tree, const void *data)
{
    return WithComparison(tree,
                          [&path, data](auto compare)
                          {
                              while (path.Node())
                              {
                                  const std::int32_t order = compare(data, path.Node()->data);
                                  if (order == 0)
                                      return true;
                                  if (order < 0)
                                      path.Descend(kLeft);
                                  else
                                      path.Descend(kRight);
                              }
                              return false;
                          });
}

void Attach(ContainerHandle_t &tree, NodeOwner node)
{
    Path path(tree);
    const TreeSide_t side = FindPlace(path, tree, node->data);
    path.Put(node.release(), side);
}

/// Follows `path` from a node with two children to the node next in order, whose data the first one takes over.
void MoveToSuccessor(Path &path)
{
    AVLNode_t *const node = path.Node();
    path.Descend(kRight);
    while (path.Node()->child[kLeft])
        path.Descend(kLeft);
    node->data = path.Node()->data;
}

/// Takes the first element equal to `data` out of the tree; null when there is none. The node given back is fit to be
/// attached again.
NodeOwner Detach(ContainerHandle_t &tree, const void *data)
{
    Path path(tree);
    if (!FindEqual(path, tree, data))
        return nullptr;
    if (path.Node()->child[kLeft] && path.Node()->child[kRight])
        MoveToSuccessor(path);
    NodeOwner node(path.Node());
    path.Put(node->child[node->child[kLeft] ? kLeft : kRight], path.SideOf(node.get()));
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
