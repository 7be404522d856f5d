// The writers: the document of any texts parses, has all rows, and gives their texts back.

#include "Fuzzing.h"
#include "ReportFormat.h"
#include "xmlInterfaceText.h"

#include <libxml/tree.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

constexpr const char *kHeader = "Name,Value,Prompt,Description";

/// The document that a writer of this kind makes of one group and its rows.
std::string Document(OutputKind kind, const std::string &group, const Texts &rows)
{
    const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
    std::string document = "before";
    Fuzzing::Require(writer->Initialize("BIOS Options", "") == StatusCode::Success, "a document starts");
    Fuzzing::Require(writer->AddTab("Bios Options", kHeader) == StatusCode::Success, "a tab is taken");
    const Status status = writer->AddGroup(group);
    Fuzzing::Require(status == StatusCode::Success || group.empty(), "a group is taken");
    if (status != StatusCode::Success)
        writer->AddGroup("group");
    for (const std::string &row : rows)
        Fuzzing::Require(writer->AddRow(row) == StatusCode::Success, "a row is taken");
    Fuzzing::Require(writer->CopyDataToBuffer(document) == StatusCode::Success, "a document is handed out");
    writer->UnInitialize();
    return document;
}

/// As the JSON library judges; libxml2's xmlCheckUTF8 takes characters beyond the last one.
bool IsUtf8(const std::string &text)
{
    try
    {
        return !nlohmann::json(text).dump().empty();
    }
    catch (const nlohmann::json::exception &)
    {
        return false;
    }
}

/// The texts of all elements `name`, in the order of the document.
void Collect(xmlNodePtr node, std::string_view name, Texts &texts)
{
    for (; node; node = node->next)
    {
        if (node->type == XML_ELEMENT_NODE && name == reinterpret_cast<const char *>(node->name))
        {
            const std::unique_ptr<xmlChar, decltype(xmlFree)> content(xmlNodeGetContent(node), xmlFree);
            texts.emplace_back(reinterpret_cast<const char *>(content.get()));
        }
        Collect(node->children, name, texts);
    }
}

void CheckUiXml(const std::string &group, const Texts &rows)
{
    const Fuzzing::Document document = Fuzzing::Parse(Document(OutputKind::UiXml, group, rows));
    Fuzzing::Require(document != nullptr, "the document of the user interface parses");
    Texts found;
    Collect(document->children, "Row", found);
    Fuzzing::Require(found.size() == rows.size(), "the document of the user interface has all rows");
    for (std::size_t row = 0; row < rows.size(); ++row)
        Fuzzing::Require(found[row] == MakeXmlText(ModuleDataWriter::SanitizeText(rows[row])),
                         "rows come back from the document of the user interface");
}

void CheckLogXml(const std::string &group, const Texts &rows)
{
    const Fuzzing::Document document = Fuzzing::Parse(Document(OutputKind::LogXml, group, rows));
    Fuzzing::Require(document != nullptr, "the log in XML parses");
    Texts found;
    Collect(document->children, "Item", found);
    Fuzzing::Require(found.size() == rows.size(), "the log in XML has all rows");
}

void CheckLogHtml(const std::string &group, const Texts &rows)
{
    const std::string text = Document(OutputKind::LogHtml, group, rows);
    Fuzzing::Require(text.ends_with("</table><br></br>"), "the log in HTML is whole");
    for (const std::string &row : rows)
    {
        for (const std::string_view cell : ModuleDataWriter::SplitRow(row))
            Fuzzing::Require(text.find(cell) != std::string::npos, "cells come back from the log in HTML");
    }
}

/// A row of the JSON document: its cells, without the outer quotation marks.
nlohmann::json Cells(const std::string &row)
{
    nlohmann::json cells = nlohmann::json::array();
    for (const std::string &cell : ModuleDataWriter::SplitString(
             ModuleDataWriter::WithoutLast(ModuleDataWriter::WithoutFirst(row)), ModuleDataWriter::kCellSeparator))
        cells.push_back(cell);
    return cells;
}

void CheckJson(const std::string &group, const Texts &rows)
{
    const std::string ui = Document(OutputKind::UiJson, group, rows);
    const std::string log = Document(OutputKind::LogJson, group, rows);
    bool isUtf8 = IsUtf8(group);
    for (const std::string &row : rows)
        isUtf8 = isUtf8 && IsUtf8(row);
    if (ui == "before" || log == "before")
        return Fuzzing::Require(!isUtf8, "only text that is not UTF-8 is kept from JSON");
    const nlohmann::json uiGroup = nlohmann::json::parse(ui).at("tabs").at(0).at("groups").at(0);
    const nlohmann::json logGroup = nlohmann::json::parse(log).at("groups").at(0);
    Fuzzing::Require(uiGroup.at("GroupName") == group && logGroup.at("GroupName") == group, "group names come back");
    Fuzzing::Require(uiGroup.at("items").size() == rows.size() && logGroup.at("items").size() == rows.size(),
                     "the documents in JSON have all rows");
    for (std::size_t row = 0; row < rows.size(); ++row)
        Fuzzing::Require(uiGroup.at("items").at(row) == Cells(rows[row]), "rows come back from JSON");
}

/// The lines of the text.
Texts Lines(std::string_view text)
{
    Texts lines = ModuleDataWriter::SplitString(text, "\n");
    std::erase_if(lines, [](const std::string &line) { return line.empty(); });
    return lines;
}

} // namespace

/// The first line names the group, the others are rows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Texts rows = Lines(Fuzzing::Text(bytes, size));
    if (rows.size() < 2)
        return 0;
    const std::string group = rows.front();
    rows.erase(rows.begin());
    for (std::string &row : rows)
        row = '"' + row + '"';
    CheckUiXml(group, rows);
    CheckLogXml(group, rows);
    CheckLogHtml(group, rows);
    CheckJson(group, rows);
    return 0;
}
