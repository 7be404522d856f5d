#include "HandWrittenReport.h"

#include "HandWrittenFormats.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <utility>
#include <vector>

namespace
{

constexpr std::array kAttributes = {"type", "setupType", "name",  "varstoreIndex", "prompt",  "description", "UqiVal",
                                    "size", "offset",    "depex", "SetupPgPtr",    "default", "CurrentVal"};
enum : std::size_t
{
    Name = 2,
    Prompt = 4,
    Description = 5,
    Page = 10,
    Current = 12
};

std::string ReadStripped(const std::string &path)
{
    std::string text;
    std::FILE *const file = std::fopen(path.c_str(), "rb");
    if (!file)
        return text;
    std::fseek(file, 0, SEEK_END);
    text.resize(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    char *out = text.data();
    const char *const end = out + text.size();
    for (const char *in = out; in != end;)
    {
        const char *const piece = in;
        while (in != end && *in != '\n' && *in != '\t' && *in != '\r')
            ++in;
        std::memmove(out, piece, static_cast<std::size_t>(in - piece));
        out += in - piece;
        if (in != end && *in == '\r' && (in + 1 == end || in[1] != '\n'))
            *out++ = '\r';
        in += in != end ? 1 : 0;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    if (text.size() > 9000000)
        text.append(4096, ' '); // libxml2 loses the last element of a long text otherwise
    return text;
}

xmlDocPtr ParseStripped(const std::string &path)
{
    const std::string text = ReadStripped(path);
    return xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_RECOVER);
}

/// What a dump says of a knob.
struct Record
{
    std::array<std::string, kAttributes.size()> attributes;
    std::vector<std::pair<std::string, std::string>> options;
};

/// Takes an attribute of `node` over; false when it has none of that name.
bool TakeAttribute(xmlNodePtr node, const char *name, std::string &taken)
{
    xmlChar *const value = xmlGetProp(node, AsXml(name));
    if (value)
        taken = reinterpret_cast<const char *>(value);
    xmlFree(value);
    return value != nullptr;
}

void ReadOptions(xmlNodePtr knob, Record &record)
{
    const xmlNodePtr list = knob->children;
    for (xmlNodePtr option = list ? list->children : nullptr; option; option = option->next)
    {
        auto &[text, value] = record.options.emplace_back();
        TakeAttribute(option, "text", text);
        TakeAttribute(option, "value", value);
    }
}

std::vector<Record> ReadRecords(xmlNodePtr knobs)
{
    std::vector<Record> records;
    for (xmlNodePtr knob = knobs->children; knob; knob = knob->next)
    {
        if (knob->type != XML_ELEMENT_NODE)
            continue;
        Record &record = records.emplace_back();
        for (std::size_t index = 0; index < kAttributes.size(); ++index)
            TakeAttribute(knob, kAttributes[index], record.attributes[index]);
        ReadOptions(knob, record);
    }
    return records;
}

/// The text of the option whose value is the current one; the value itself where there are no options.
const char *ValueText(const Record &record)
{
    const char *const current = record.attributes[Current].c_str();
    if (record.options.empty())
        return current;
    const unsigned long wanted = std::strtoul(current, nullptr, 16);
    for (const auto &[text, value] : record.options)
    {
        if (std::strtoul(value.c_str(), nullptr, 16) == wanted)
            return text.c_str();
    }
    return "";
}

std::string GroupName(const char *page)
{
    const char *const slash = std::strchr(page, '/');
    return slash && slash != page ? std::string(page, slash) : "Bios Options";
}

template <typename Format>
std::string MakeReport(const std::string &dumpPath)
{
    const xmlDocPtr dump = ParseStripped(dumpPath);
    const std::vector<Record> records = ReadRecords(xmlDocGetRootElement(dump)->children);
    xmlFreeDoc(dump);
    Format format;
    for (const Record &record : records)
    {
        const auto text = [&record](std::size_t index) { return record.attributes[index].c_str(); };
        format.Add({text(Name), ValueText(record), text(Prompt), text(Description), GroupName(text(Page))});
    }
    return format.Finish();
}

void WriteReport(const std::string &path, const std::string &report)
{
    std::FILE *const file = std::fopen(path.c_str(), "wb");
    if (!file)
        return;
    std::size_t begin = 0;
    for (std::size_t end = report.find('\n'); end != std::string::npos; end = report.find('\n', begin))
    {
        std::fwrite(report.data() + begin, 1, end - begin, file);
        std::fputs("\r\n", file);
        begin = end + 1;
    }
    std::fwrite(report.data() + begin, 1, report.size() - begin, file);
    std::fclose(file);
}

} // namespace

std::string HandWrittenReport(OutputKind kind, const std::string &dumpPath, const std::string &reportPath)
{
    std::string report;
    switch (kind)
    {
    case OutputKind::LogXml:
        report = MakeReport<LogXml>(dumpPath);
        break;
    case OutputKind::LogHtml:
        report = MakeReport<LogHtml>(dumpPath);
        break;
    case OutputKind::LogHtmlXml:
        report = MakeReport<LogHtmlXml>(dumpPath);
        break;
    case OutputKind::LogJson:
        report = MakeReport<LogJson>(dumpPath);
        break;
    case OutputKind::UiJson:
        report = MakeReport<UiJson>(dumpPath);
        break;
    default:
        report = MakeReport<UiXml>(dumpPath);
    }
    WriteReport(reportPath, report);
    return report;
}
