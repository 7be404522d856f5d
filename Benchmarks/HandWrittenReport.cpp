#include "HandWrittenReport.h"

#include "HandWrittenFormats.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/tree.h>

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

/// The text of the option whose value is `current`.
std::string FindOption(xmlNodePtr knob, const xmlChar *current)
{
    const xmlNodePtr list = knob->children;
    if (!list)
        return reinterpret_cast<const char *>(current);
    const unsigned long wanted = std::strtoul(reinterpret_cast<const char *>(current), nullptr, 16);
    std::string found;
    for (xmlNodePtr option = list->children; option; option = option->next)
    {
        xmlChar *const text = xmlGetProp(option, AsXml("text"));
        xmlChar *const value = xmlGetProp(option, AsXml("value"));
        if (found.empty() && value && std::strtoul(reinterpret_cast<const char *>(value), nullptr, 16) == wanted)
            found = reinterpret_cast<const char *>(text);
        xmlFree(text);
        xmlFree(value);
    }
    return found;
}

std::string GroupName(const char *page)
{
    const char *const slash = std::strchr(page, '/');
    return slash && slash != page ? std::string(page, slash) : "Bios Options";
}

template <typename Format>
void AddKnob(xmlNodePtr knob, Format &format)
{
    std::array<xmlChar *, kAttributes.size()> values = {};
    for (std::size_t index = 0; index < kAttributes.size(); ++index)
        values[index] = xmlGetProp(knob, AsXml(kAttributes[index]));
    const auto text = [&values](std::size_t index) { return reinterpret_cast<const char *>(values[index]); };
    if (values[Name] && std::strcmp(text(Name), "TpmDevice") != 0)
    {
        const std::string value = FindOption(knob, values[Current]);
        format.Add({text(Name), value.c_str(), text(Prompt), text(Description), GroupName(text(Page))});
    }
    for (xmlChar *const value : values)
        xmlFree(value);
}

template <typename Format>
std::string MakeReport(const std::string &dumpPath)
{
    Format format;
    const xmlDocPtr dump = ParseStripped(dumpPath);
    for (xmlNodePtr knob = xmlDocGetRootElement(dump)->children->children; knob; knob = knob->next)
    {
        if (knob->type == XML_ELEMENT_NODE)
            AddKnob(knob, format);
    }
    xmlFreeDoc(dump);
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
