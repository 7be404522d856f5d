#include "PageTree.h"

#include <algorithm>
#include <utility>

PageTree::PageTree(const OptionTable &table)
{
    for (const BiosOption &option : table.Options())
        Add(option);
}

void PageTree::Add(const BiosOption &option)
{
    for (std::size_t slash = option.page.find('/'); slash != std::string_view::npos;
         slash = option.page.find('/', slash + 1))
        Count(option.page.substr(0, slash), option);
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
    for (std::size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/', slash + 1))
        order.push_back(m_pages.at(path.substr(0, slash)).rank);
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
