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

ModuleLogHTMLWriter::ModuleLogHTMLWriter() : m_debugHandle("ModuleLogHTMLWriter")
{
    const WriterOperation traced(m_debugHandle, "ModuleLogHTMLWriter::ModuleLogHTMLWriter");
}

ModuleLogHTMLWriter::~ModuleLogHTMLWriter()
{
    const WriterOperation traced(m_debugHandle, "ModuleLogHTMLWriter::~ModuleLogHTMLWriter");
}

Status ModuleLogHTMLWriter::Initialize(std::string moduleName, std::string /*description*/)
{
    const auto start = [&]
    {
        std::string heading = "<a name=\"" + ReplaceAll(moduleName, " ", "_");
        m_pBuff = std::move(heading.append("\"></a><h2>").append(moduleName).append("</h2>"));
        m_subModCount = 0;
        m_tabCount = 0;
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::Initialize")
        .Argument(!moduleName.empty(), "empty argument\n")
        .Run(start);
}

Status ModuleLogHTMLWriter::AddSubMod(std::string subModName)
{
    const auto add = [&]
    {
        Append({m_subModCount == 0 ? "" : "</table>", "<h3>", subModName, "</h3>"});
        ++m_subModCount;
        m_tabCount = 0;
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::AddSubMod")
        .Argument(!subModName.empty(), "subModName is empty\n")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run([&] { AppendOrNothing(m_pBuff, add); });
}

Status ModuleLogHTMLWriter::AddTab(std::string tabName, std::string header)
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::AddTab")
        .Argument(!tabName.empty() && !header.empty(), "NULL Pointer(s)\n")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run([&] { AppendOrNothing(m_pBuff, [&] { StartTable(tabName, header); }); });
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

Status ModuleLogHTMLWriter::AddGroup(std::string groupName)
{
    const auto add = [&]
    {
        const std::string span = ToDecimalString(kFullWidth / m_columnWidth);
        Append({"<tr class=\"title\"><td colspan=\"", span, "\">", groupName, "</td></tr>"});
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::AddGroup")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run([&] { AppendOrNothing(m_pBuff, add); });
}

Status ModuleLogHTMLWriter::AddRow(std::string rowContent)
{
    const auto add = [&]
    {
        const bool oneColumn = m_columnWidth == kFullWidth;
        Append({"<tr>"});
        AppendCells(oneColumn ? std::vector<std::string_view>{rowContent} : SplitRow(rowContent), m_columnWidth,
                    kDataCellStartEnd);
        Append({"</tr>"});
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::AddRow")
        .Argument(!rowContent.empty(), "rowContent is empty\n")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run([&] { AppendOrNothing(m_pBuff, add); });
}

Status ModuleLogHTMLWriter::CopyDataToBuffer(std::string &buffer)
{
    const auto copy = [&]
    {
        buffer.reserve(m_pBuff.size() + kTableEnd.size());
        buffer.assign(m_pBuff).append(kTableEnd);
    };
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::CopyDataToBuffer")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run(copy);
}

Status ModuleLogHTMLWriter::UnInitialize()
{
    return WriterOperation(m_debugHandle, "ModuleLogHTMLWriter::UnInitialize")
        .Needs(!m_pBuff.empty(), kNotInitialized)
        .Run([this] { m_pBuff = std::string(); });
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
