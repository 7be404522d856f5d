#pragma once

#include "Comparison.h"
#include "PageTree.h"

#include <string>
#include <string_view>
#include <vector>

/// A setup page with the options that are on it, not those of pages below.
struct ViewSection
{
    std::string_view path;
    /// In their order in the comparison.
    std::vector<const ViewRow *> rows;
};

/// Everything that a page shows. Refers to the tables' texts.
struct ViewContent
{
    std::vector<ViewColumn> columns;
    Comparison comparison;
    /// The pages that options are on, and those above them.
    PageTree pages;
    /// Those that options are on, in the order of the tree; after one another they give all rows.
    std::vector<ViewSection> sections;
    /// The time at which it was made; empty: it is not told.
    std::string time;
    bool isRedacted = false;
};

/// Sorts the rows of a comparison by their setup pages.
ViewContent ArrangeByPages(std::vector<ViewColumn> columns, Comparison comparison);

/// Beyond so many columns a page shows, for each option, which machines have another value, in the place of a column
/// each.
inline constexpr std::size_t kMostColumnsSideBySide = 4;

/// The content as an HTML document of its own, UTF-8: styles, script and data are in it, and its policy forbids every
/// request. Linear in the number of values. May throw std::bad_alloc.
std::string MakeViewPage(const ViewContent &content);
