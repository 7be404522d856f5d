#pragma once

#include "OptionTable.h"

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

/// The options of a setup page and of all pages below it.
struct PageCount
{
    std::size_t options = 0;
    std::size_t changed = 0;
};

/// The setup pages of options, and what stands above them: by path, its parts joined by "/". Refers to the options'
/// texts. May throw std::bad_alloc.
class PageTree
{
public:
    PageTree() = default;
    explicit PageTree(const OptionTable &table);

    /// Counts one more option on its page and on all above it.
    void Add(const BiosOption &option);

    /// Each page behind the one above it, in the order of their first options otherwise.
    std::vector<std::string_view> Paths() const;

    /// The counts of a page that is among the paths.
    const PageCount &CountOf(std::string_view path) const { return m_pages.at(path).count; }

    /// How many pages stand above a page: one for each "/" in its path, up to a limit, so that no path makes the tree
    /// larger than the options themselves.
    static std::size_t DepthOf(std::string_view path);

    /// The part of the path that names the page below the one above it.
    static std::string_view TitleOf(std::string_view path);

private:
    struct Page
    {
        PageCount count;
        /// How many pages were there before it.
        std::size_t rank = 0;
    };

    void Count(std::string_view path, const BiosOption &option);
    std::vector<std::size_t> Order(std::string_view path) const;

    std::map<std::string_view, Page> m_pages;
};
