#pragma once

#include "StatusCode.h"

#include <cstddef>
#include <cstdint>
#include <limits>

/// Which child of a tree's node; the other one is `1 - side`.
using TreeSide_t = std::size_t;
constexpr TreeSide_t kLeft = 0;
constexpr TreeSide_t kRight = 1;

/// More levels than a balanced tree in memory can have.
constexpr std::size_t kMaxTreeLevels = 99;

/// Visits a tree's elements in order, with a stack of its own, and remembers where it stands: asking for the indexes
/// 0, 1, 2, ... costs one step each. Forget it whenever the tree changes. One per tree, used under the tree's mutex.
template <typename Node>
class TreeWalk
{
public:
    /// Leaves the walk where it is at the end of a tree, behind every index.
    void Forget()
    {
        m_depth = 0;
        m_index = std::numeric_limits<std::uint32_t>::max();
    }

    /// Stores the element at `index` of the tree below `root` into `data`. Missing children are `none`: null, or a
    /// sentinel whose own children are itself. Returns Success; NotFound for an index at or beyond the element count;
    /// Failed for a tree of more than kMaxTreeLevels.
    Status Retrieve(Node *root, const Node *none, std::uint32_t index, void *&data)
    {
        if (index < m_index && !Start(root, none))
            return StatusCode::Failed;
        while (m_index < index && m_depth > 0)
            if (!Step(none))
                return StatusCode::Failed;
        if (m_depth == 0)
            return StatusCode::NotFound;
        data = m_stack[m_depth - 1]->data;
        return StatusCode::Success;
    }

private:
    bool Start(Node *root, const Node *none)
    {
        m_depth = 0;
        m_index = 0;
        return Descend(root, none);
    }

    bool Step(const Node *none)
    {
        ++m_index;
        return Descend(m_stack[--m_depth]->child[kRight], none);
    }

    /// Stacks `node` and everything to its left.
    bool Descend(Node *node, const Node *none)
    {
        // Every other node has no right child, which is hard to predict; a sentinel makes do without that branch.
        if (none)
        {
            m_stack[m_depth] = node;
            m_depth += node != none ? 1 : 0;
            node = node->child[kLeft];
        }
        for (; node != none && m_depth < kMaxTreeLevels; node = node->child[kLeft])
            m_stack[m_depth++] = node;
        const bool fits = node == none && m_depth <= kMaxTreeLevels;
        if (!fits)
            Forget();
        return fits;
    }

    /// The node at m_index on top, below it those that come after it and whose left side it stands in. With room for a
    /// sentinel on top of all.
    Node *m_stack[kMaxTreeLevels + 1];
    std::size_t m_depth = 0;
    std::uint32_t m_index = std::numeric_limits<std::uint32_t>::max();
};
