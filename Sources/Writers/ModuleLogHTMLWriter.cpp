#include "ModuleLogHTMLWriter.h"

#include <utility>

namespace
{

constexpr std::size_t kMostColumns = 10;
constexpr std::uint32_t kFullWidth = 100;
constexpr std::string_view kTableEnd = "</table><br></br>";
constexpr std::string_view kTitleCellStartEnd = "%\" style=\"font-weight: bold; height: 30px;\">";
constexpr std::string_view kDataCellStartEnd = "%\">";
constexpr const char *kNotInitialized = "m_pBuff is empty\n";

/// Runs `append`, which appends to `text`; when it throws, nothing has been appended.
template <typename Append>
void AppendOrNothing(std::string &text, const Append &append)
{
    const std::size_t size = text.size();
    try
    {
        append();
    }
    catch (...)
    {
        text.resize(size);
        throw;
    }
}

} // namespace

ModuleLogHTMLWriter::ModuleLogHTMLWriter() : TracedWriter("ModuleLogHTMLWriter")
{
    const LifeTrace traced = TraceConstruction();
}

ModuleLogHTMLWriter::~ModuleLogHTMLWriter()
{
    const LifeTrace traced = TraceDestruction();
}

Status ModuleLogHTMLWriter::DoInitialize(FunctionTrace &trace, std::string moduleName, std::string /*description*/)
{
    if (moduleName.empty())
        return trace.Fail(StatusCode::NotFound, "empty argument\n");
    std::string heading = "<a name=\"" + ReplaceAll(moduleName, " ", "_");
    m_pBuff = std::move(heading.append("\"></a><h2>").append(moduleName).append("</h2>"));
    m_subModCount = 0;
    m_tabCount = 0;
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoAddSubMod(FunctionTrace &trace, std::string subModName)
{
    if (subModName.empty())
        return trace.Fail(StatusCode::NotFound, "subModName is empty\n");
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    AppendOrNothing(m_pBuff, [&] { Append({m_subModCount == 0 ? "" : "</table>", "<h3>", subModName, "</h3>"}); });
    ++m_subModCount;
    m_tabCount = 0;
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoAddTab(FunctionTrace &trace, std::string tabName, std::string header)
{
    if (tabName.empty() || header.empty())
        return trace.Fail(StatusCode::NotFound, "NULL Pointer(s)\n");
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    AppendOrNothing(m_pBuff, [&] { StartTable(tabName, header); });
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoAddGroup(FunctionTrace &trace, std::string groupName)
{
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    const std::string span = ToDecimalString(kFullWidth / m_columnWidth);
    AppendOrNothing(m_pBuff,
                    [&] {
                        Append({"<tr class=\"title\"><td colspan=\"", span, "\">", groupName, "</td></tr>"});
                    });
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoAddRow(FunctionTrace &trace, std::string rowContent)
{
    if (rowContent.empty())
        return trace.Fail(StatusCode::NotFound, "rowContent is empty\n");
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    AppendOrNothing(m_pBuff, [&] { AppendRow(rowContent); });
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer)
{
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    buffer.reserve(m_pBuff.size() + kTableEnd.size());
    buffer.assign(m_pBuff).append(kTableEnd);
    return trace.Done(StatusCode::Success);
}

Status ModuleLogHTMLWriter::DoUnInitialize(FunctionTrace &trace)
{
    if (m_pBuff.empty())
        return trace.Fail(StatusCode::Missing, kNotInitialized);
    m_pBuff = std::string();
    return trace.Done(StatusCode::Success);
}

void ModuleLogHTMLWriter::StartTable(std::string_view tabName, std::string_view header)
{
    std::vector<std::string_view> titles = SplitViews(header, ",");
    std::string onlyTitle;
    if (titles.size() == 1)
        titles.front() = onlyTitle.append(tabName).append(" - ").append(header);
    else if (titles.size() > kMostColumns)
        titles = {header};

    const std::uint32_t width = kFullWidth / static_cast<std::uint32_t>(titles.size());
    Append({m_tabCount == 0 ? "" : kTableEnd, "<table border=\"1\"><tr class=\"title\">"});
    AppendCells(titles, width, kTitleCellStartEnd);
    Append({"</tr>"});
    m_columnWidth = width;
    ++m_tabCount;
}

void ModuleLogHTMLWriter::AppendRow(std::string_view row)
{
    const bool oneColumn = m_columnWidth == kFullWidth;
    Append({"<tr>"});
    AppendCells(oneColumn ? std::vector<std::string_view>{row} : SplitRow(row), m_columnWidth, kDataCellStartEnd);
    Append({"</tr>"});
}

void ModuleLogHTMLWriter::Append(std::initializer_list<std::string_view> pieces)
{
    for (const std::string_view piece : pieces)
        m_pBuff.append(piece);
}

void ModuleLogHTMLWriter::AppendCells(const std::vector<std::string_view> &cells, std::uint32_t width,
                                      std::string_view cellStartEnd)
{
    const std::string widthText = ToDecimalString(width);
    for (const std::string_view cell : cells)
        Append({"<td width=\"", widthText, cellStartEnd, cell, "</td>"});
}
