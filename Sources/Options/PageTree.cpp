#include "PageTree.h"

#include <algorithm>
#include <utility>

namespace
{

/// No setup has as many pages above one another.
constexpr std::size_t kDeepest = 32;

/// Calls `visit` with the path of each page above `path`, from the top.
template <typename Visit>
void ForEachAbove(std::string_view path, Visit visit)
{
    std::size_t slash = path.find('/');
    for (std::size_t depth = 0; depth < kDeepest && slash != std::string_view::npos; ++depth)
    {
        visit(path.substr(0, slash));
        slash = path.find('/', slash + 1);
    }
}

} // namespace

std::size_t PageTree::DepthOf(std::string_view path)
{
    std::size_t depth = 0;
    ForEachAbove(path, [&](std::string_view /*above*/) { ++depth; });
    return depth;
}

std::string_view PageTree::TitleOf(std::string_view path)
{
    std::size_t start = 0;
    ForEachAbove(path, [&](std::string_view above) { start = above.size() + 1; });
    return path.substr(start);
}

PageTree::PageTree(const OptionTable &table)
{
    for (const BiosOption &option : table.Options())
        Add(option);
}

void PageTree::Add(const BiosOption &option)
{
    ForEachAbove(option.page, [&](std::string_view above) { Count(above, option); });
    Count(option.page, option);
}

void PageTree::Count(std::string_view path, const BiosOption &option)
{
    PageCount &count = m_pages.try_emplace(path, Page{{}, m_pages.size()}).first->second.count;
    ++count.options;
    count.changed += option.isChanged ? 1 : 0;
}

/// The ranks of the pages from the top down to `path`.
std::vector<std::size_t> PageTree::Order(std::string_view path) const
{
    std::vector<std::size_t> order;
    ForEachAbove(path, [&](std::string_view above) { order.push_back(m_pages.at(above).rank); });
    order.push_back(m_pages.at(path).rank);
    return order;
}

std::vector<std::string_view> PageTree::Paths() const
{
    std::vector<std::pair<std::vector<std::size_t>, std::string_view>> ordered;
    ordered.reserve(m_pages.size());
    for (const auto &[path, page] : m_pages)
        ordered.emplace_back(Order(path), path);
    std::sort(ordered.begin(), ordered.end());
    std::vector<std::string_view> paths;
    paths.reserve(ordered.size());
    for (const auto &[order, path] : ordered)
        paths.push_back(path);
    return paths;
}
