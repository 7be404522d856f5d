#include "ViewPage.h"

#include "Markup.h"
#include "OptionText.h"
#include "OptionValue.h"
#include "OtherValues.h"
#include "ViewData.h"
#include "ViewTemplate.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace
{

/// A browser lays out a part that is out of view when it comes into view; so a long setup page has several.
constexpr std::size_t kRowsOfAPart = 50;
/// So many machines are named at once, more on demand.
constexpr std::size_t kMachinesAtOnce = 3;

std::string Counted(std::size_t count, const char *one, const char *many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string_view TitleOf(std::string_view path)
{
    return path.empty() ? std::string_view("No page") : path;
}

/// By path.
using SectionPlaces = std::map<std::string_view, std::size_t, std::less<>>;

/// Puts the parts of a page together.
class PageMaker
{
public:
    explicit PageMaker(const ViewContent &content)
        : m_content(content), m_isComparison(content.columns.size() > 1),
          m_isSideBySide(content.columns.size() <= kMostColumnsSideBySide)
    {
    }

    /// Appends what the template calls `name`.
    void AppendPart(std::string_view name)
    {
        struct Part
        {
            std::string_view name;
            void (PageMaker::*append)();
        };
        constexpr Part kParts[] = {{"title", &PageMaker::AppendTitle},       {"summary", &PageMaker::AppendSummary},
                                   {"machines", &PageMaker::AppendMachines}, {"mode", &PageMaker::AppendMode},
                                   {"tree", &PageMaker::AppendTree},         {"sections", &PageMaker::AppendSections},
                                   {"data", &PageMaker::AppendData}};
        for (const Part &part : kParts)
        {
            if (part.name == name)
                (this->*part.append)();
        }
    }

    void Append(std::string_view markup) { m_page += markup; }
    std::string Page() && { return std::move(m_page); }

private:
    void AppendText(std::string_view text) { AppendElementText(m_page, text); }

    void AppendElement(std::string_view open, std::string_view text, std::string_view close)
    {
        m_page += open;
        AppendText(text);
        m_page += close;
    }

    void AppendTitle()
    {
        AppendText("BIOS options");
        if (!m_content.columns.front().title.empty())
            AppendText(" of " + m_content.columns.front().title);
        if (m_isComparison)
            AppendText(m_content.columns.size() == 2
                           ? " and " + m_content.columns.back().title
                           : ", compared with " + std::to_string(m_content.columns.size() - 1) + " others");
    }

    void AppendMode() { m_page += m_isComparison ? "compare" : "single"; }

    std::size_t CountChanged() const
    {
        return static_cast<std::size_t>(std::count_if(m_content.comparison.rows.begin(),
                                                      m_content.comparison.rows.end(),
                                                      [](const ViewRow &row) { return row.option->isChanged; }));
    }

    std::size_t CountDifferingPages() const
    {
        return static_cast<std::size_t>(std::count_if(m_content.sections.begin(), m_content.sections.end(),
                                                      [](const ViewSection &section) {
                                                          return std::any_of(section.rows.begin(), section.rows.end(),
                                                                             [](const ViewRow *row)
                                                                             { return row->differs; });
                                                      }));
    }

    /// The counts in one sentence.
    void AppendSummary()
    {
        const Comparison &comparison = m_content.comparison;
        std::string text;
        if (m_isComparison)
        {
            text = std::to_string(comparison.differing) + " of " + std::to_string(comparison.rows.size()) +
                   (comparison.differing == 1 ? " differs" : " differ");
            if (comparison.differing > 0)
                text += " on " + Counted(CountDifferingPages(), "page", "pages");
            if (comparison.added > 0)
                text += " · " + std::to_string(comparison.added) + " added";
            if (comparison.removed > 0)
                text += " · " + std::to_string(comparison.removed) + " removed";
        }
        else
            text = Counted(comparison.rows.size(), "option", "options") + " · " + std::to_string(CountChanged()) +
                   " changed from default · " + Counted(m_content.sections.size(), "page", "pages");
        AppendElement("<p id=\"view:summary\">", text, "</p>");
        if (m_content.isRedacted)
            Append("<p>Values that tell of a person, a place or a secret are not shown.</p>");
        if (!m_content.time.empty())
        {
            Append("<p>Made at <time datetime=\"");
            AppendAttributeText(m_page, m_content.time);
            AppendElement("\">", m_content.time, "</time></p>");
        }
    }

    /// How many options differ on each machine.
    void AppendMachines()
    {
        if (!m_isComparison)
            return;
        Append("<details class=\"machines\"");
        Append(m_isSideBySide ? " open>" : ">");
        AppendElement("<summary>What differs from ", m_content.columns.front().title, "</summary><ul>");
        for (std::size_t column = 1; column < m_content.columns.size(); ++column)
        {
            Append("<li><a href=\"#q=&amp;on=");
            AppendAnchor(m_page, m_content.columns[column].title);
            AppendElement("\">", m_content.columns[column].title, "</a> <span class=\"count\">");
            const std::size_t differences = m_content.comparison.differences[column];
            Append(differences == 0 ? "nothing" : std::to_string(differences));
            Append("</span></li>");
        }
        Append("</ul></details>");
    }

    /// The tree of the pages as nested lists of links.
    void AppendTree()
    {
        SectionPlaces placeOfPath;
        for (std::size_t place = 0; place < m_content.sections.size(); ++place)
            placeOfPath.emplace(m_content.sections[place].path, place);
        std::size_t depth = 0;
        for (const std::string_view path : m_content.pages.Paths())
        {
            const std::size_t newDepth = PageTree::DepthOf(path) + 1;
            // A page stands behind the one above it, so this is one level more at most.
            if (newDepth > depth)
                Append("<ul>");
            for (std::size_t level = newDepth; level < depth; ++level)
                Append("</li></ul>");
            if (newDepth <= depth)
                Append("</li>");
            depth = newDepth;
            AppendBranch(path, placeOfPath);
        }
        for (; depth > 0; --depth)
            Append("</li></ul>");
    }

    void AppendBranch(std::string_view path, const SectionPlaces &placeOfPath)
    {
        // Without a script the link leads to the first of its options.
        const auto own = placeOfPath.find(path);
        const auto section = own != placeOfPath.end() ? own : placeOfPath.lower_bound(std::string(path) + "/");
        const std::size_t place = section == placeOfPath.end() ? 0 : section->second;
        Append("<li><a href=\"#view:page-" + std::to_string(place) + "\" data-page=\"");
        AppendAttributeText(m_page, path);
        const std::string_view title = PageTree::TitleOf(path);
        AppendElement("\">", title.empty() ? TitleOf(path) : title, " <span class=\"count\">");
        Append(std::to_string(m_content.pages.CountOf(path).options));
        Append("</span></a>");
    }

    void AppendSections()
    {
        for (std::size_t place = 0; place < m_content.sections.size(); ++place)
        {
            const ViewSection &section = m_content.sections[place];
            const std::string id = "view:page-" + std::to_string(place);
            Append("\n<section aria-labelledby=\"" + id + "\"><h2 id=\"" + id + "\">");
            AppendElement("", TitleOf(section.path), " <span class=\"count\">");
            Append(std::to_string(section.rows.size()) + "</span></h2>");
            for (std::size_t first = 0; first < section.rows.size(); first += kRowsOfAPart)
                AppendTable(section, first, std::min(section.rows.size(), first + kRowsOfAPart));
            Append("</section>");
        }
    }

    void AppendTable(const ViewSection &section, std::size_t first, std::size_t end)
    {
        const std::size_t columns = !m_isComparison ? 2 : m_isSideBySide ? m_content.columns.size() + 1 : 3;
        Append("<div class=\"part\"><table><thead><tr class=\"page\"><th colspan=\"" + std::to_string(columns) + "\">");
        AppendElement("", TitleOf(section.path), "</th></tr><tr><th scope=\"col\">Option</th>");
        if (!m_isComparison)
            Append("<th scope=\"col\">Value</th>");
        else if (m_isSideBySide)
        {
            for (const ViewColumn &column : m_content.columns)
                AppendElement("<th scope=\"col\">", column.title, "</th>");
        }
        else
            AppendElement("<th scope=\"col\">", m_content.columns.front().title,
                          "</th><th scope=\"col\">Different on</th>");
        Append("</tr></thead><tbody>");
        for (std::size_t place = first; place < end; ++place)
            AppendRow(*section.rows[place]);
        Append("</tbody></table></div>");
    }

    void AppendRow(const ViewRow &row)
    {
        const BiosOption &option = *row.option;
        const bool hasAnchor = !option.name.empty() && IsFirstOfItsName(row);
        Append("\n<tr");
        if (hasAnchor)
        {
            Append(" id=\"");
            AppendAnchor(m_page, option.name);
            Append("\"");
        }
        Append("><th scope=\"row\">");
        if (hasAnchor)
        {
            Append("<a href=\"#");
            AppendAnchor(m_page, option.name);
            AppendElement("\">", option.name, "</a>");
        }
        else
            AppendElement("<b>", option.name, "</b>");
        if (!option.prompt.empty())
            AppendElement(" <span>", option.prompt, "</span>");
        if (!option.help.empty())
            AppendElement("<p>", option.help, "</p>");
        const std::string condition = ConditionText(option, *TableOf(row));
        if (!condition.empty())
            AppendElement("<p class=\"condition\">", condition, "</p>");
        Append("</th>");
        AppendValues(row);
        Append("</tr>");
    }

    /// The table that the row's option is from.
    const OptionTable *TableOf(const ViewRow &row) const
    {
        const auto column = std::find(row.inColumns.begin(), row.inColumns.end(), row.option) - row.inColumns.begin();
        return m_content.columns[static_cast<std::size_t>(column)].table;
    }

    bool IsFirstOfItsName(const ViewRow &row)
    {
        return m_namesWithAnchor.try_emplace(row.option->name, &row).first->second == &row;
    }

    void AppendDetails(const BiosOption &option)
    {
        Append("<details><summary>Details</summary><dl>");
        if (option.hasDefault)
            AppendElement("<dt>Default</dt><dd>", DetailedValue(option, option.defaultValue), "</dd>");
        AppendElement("<dt>Kind</dt><dd>", std::string(KindName(option.kind)) + SizeText(option) + LimitsText(option),
                      "</dd>");
        if (option.pendingValue)
            AppendElement("<dt>From the next restart on</dt><dd>", DetailedValue(option, *option.pendingValue),
                          "</dd>");
        if (!option.choices.empty())
            Append("<dt>Choices</dt>");
        for (const OptionChoice &choice : option.choices)
        {
            AppendElement("<dd>", choice.text, " ");
            AppendElement("<i>", choice.value, "</i></dd>");
        }
        Append("</dl></details>");
    }

    /// A value as a chip, and what is to be said of it.
    void AppendValue(const BiosOption &option)
    {
        const char *const look = option.isRedacted  ? " class=\"faint\""
                                 : IsOdd(option)    ? " class=\"odd\""
                                 : option.isChanged ? " class=\"changed\""
                                                    : "";
        Append("<b");
        Append(look);
        const std::string text = CurrentText(option);
        AppendElement(">", text.empty() ? "(empty)" : text, "</b>");
        if (option.isRedacted)
        {
            Append(option.isChanged ? " <small>changed</small>" : "");
            return;
        }
        if (!option.unreadable.empty())
            AppendElement(" <small>", option.unreadable, "</small>");
        if (IsNoChoice(option))
            Append(" <small>no choice</small>");
        if (option.isChanged && option.hasDefault)
        {
            const std::string byDefault = ValueText(option, option.defaultValue);
            AppendElement(" <small>default ", byDefault.empty() ? "(empty)" : byDefault, "</small>");
        }
        if (option.pendingValue)
            AppendElement(" <small>after a restart ", ValueText(option, *option.pendingValue), "</small>");
    }

    void AppendValueOrNone(const BiosOption *option)
    {
        if (option)
            AppendValue(*option);
        else
            Append("<i>not there</i>");
    }

    void AppendValues(const ViewRow &row)
    {
        if (!m_isComparison)
        {
            Append("<td>");
            AppendValue(*row.option);
            AppendDetails(*row.option);
            Append("</td>");
            return;
        }
        for (std::size_t column = 0; column < (m_isSideBySide ? row.inColumns.size() : 1); ++column)
        {
            Append(row.differsIn[column] ? "<td class=\"differs\">" : "<td>");
            AppendElement("<span class=\"column\">", m_content.columns[column].title, "</span>");
            AppendValueOrNone(row.inColumns[column]);
            if (column == 0)
                AppendDetails(*row.option);
            Append("</td>");
        }
        if (!m_isSideBySide)
            AppendOthers(row);
    }

    void AppendOthers(const ViewRow &row)
    {
        Append(row.differs ? "<td class=\"differs\">" : "<td>");
        for (const OtherValue &other : OtherValuesOf(row))
        {
            Append("<div>");
            AppendValueOrNone(other.option);
            AppendMachineNames(other.columns);
            Append("</div>");
        }
        Append("</td>");
    }

    void AppendMachineNames(const std::vector<std::size_t> &columns)
    {
        const bool areMany = columns.size() > kMachinesAtOnce;
        Append(areMany ? "<details><summary>" + std::to_string(columns.size()) + " machines</summary>"
                       : "<p class=\"where\">");
        std::string names;
        for (const std::size_t column : columns)
            names.append(names.empty() ? "" : ", ").append(m_content.columns[column].title);
        AppendText(names);
        Append(areMany ? "</details>" : "</p>");
    }

    void AppendData() { AppendScriptJson(m_page, MakeViewData(m_content)); }

    const ViewContent &m_content;
    bool m_isComparison;
    bool m_isSideBySide;
    std::string m_page;
    std::unordered_map<std::string_view, const ViewRow *> m_namesWithAnchor;
};

} // namespace

ViewContent ArrangeByPages(std::vector<ViewColumn> columns, Comparison comparison)
{
    ViewContent content;
    content.columns = std::move(columns);
    content.comparison = std::move(comparison);
    std::unordered_map<std::string_view, std::vector<const ViewRow *>> rowsOfPage;
    for (const ViewRow &row : content.comparison.rows)
    {
        content.pages.Add(*row.option);
        rowsOfPage[row.option->page].push_back(&row);
    }
    for (const std::string_view path : content.pages.Paths())
    {
        const auto rows = rowsOfPage.find(path);
        if (rows != rowsOfPage.end())
            content.sections.push_back({path, std::move(rows->second)});
    }
    return content;
}

std::string MakeViewPage(const ViewContent &content)
{
    PageMaker maker(content);
    std::string_view rest = kViewTemplate;
    while (!rest.empty())
    {
        const std::size_t open = rest.find("{{");
        maker.Append(rest.substr(0, open));
        if (open == std::string_view::npos)
            break;
        const std::size_t close = rest.find("}}", open);
        maker.AppendPart(rest.substr(open + 2, close - open - 2));
        rest.remove_prefix(close + 2);
    }
    return std::move(maker).Page();
}
