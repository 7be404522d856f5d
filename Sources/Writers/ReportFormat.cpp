#include "ReportFormat.h"

#include "ExceptionBarrier.h"
#include "ModuleLogHTMLWriter.h"
#include "ModuleLogHTMLXMLWriter.h"
#include "ModuleLogJSONWriter.h"
#include "ModuleLogXMLWriter.h"
#include "ModuleUIJSONWriter.h"
#include "ModuleUIXMLWriter.h"

#include <algorithm>
#include <iterator>

namespace
{

template <typename Writer>
ModuleDataWriter *MakeWriter()
{
    ModuleDataWriter *writer = nullptr;
    WithoutExceptions(
        [&writer]
        {
            writer = new Writer;
            return StatusCode::Success;
        });
    return writer;
}

struct ReportFormat
{
    OutputKind kind;
    const char *fileEnding;
    ModuleDataWriter *(*makeWriter)();
};

/// In the order of the kinds; a new format gets its line here.
constexpr ReportFormat kReportFormats[] = {
    {OutputKind::UiXml, "_UI_XML", MakeWriter<ModuleUIXMLWriter>},
    {OutputKind::UiXmlAlternate, "_UI_XML", MakeWriter<ModuleUIXMLWriter>},
    {OutputKind::LogXml, "_LOG_XML", MakeWriter<ModuleLogXMLWriter>},
    {OutputKind::LogXmlAlternate, "_LOG_XML", MakeWriter<ModuleLogXMLWriter>},
    {OutputKind::LogHtml, "_LOG_HTML", MakeWriter<ModuleLogHTMLWriter>},
    {OutputKind::LogHtmlAlternate, "_LOG_HTML", MakeWriter<ModuleLogHTMLWriter>},
    {OutputKind::LogHtmlXml, "", MakeWriter<ModuleLogHTMLXMLWriter>},
    {OutputKind::LogHtmlXmlAlternate, "", MakeWriter<ModuleLogHTMLXMLWriter>},
    {OutputKind::LogJson, "_LOG_JSON", MakeWriter<ModuleLogJSONWriter>},
    {OutputKind::UiJson, "_UI_JSON", MakeWriter<ModuleUIJSONWriter>},
};

static_assert(std::size(kReportFormats) == kOutputKindCount);
static_assert(std::is_sorted(std::begin(kReportFormats), std::end(kReportFormats),
                             [](const ReportFormat &left, const ReportFormat &right)
                             { return left.kind < right.kind; }));

/// Null for a kind without a format.
const ReportFormat *FindFormat(OutputKind kind)
{
    const auto index = static_cast<std::size_t>(kind);
    return index < kOutputKindCount ? &kReportFormats[index] : nullptr;
}

} // namespace

const char *ReportFileEnding(OutputKind kind)
{
    const ReportFormat *const format = FindFormat(kind);
    return format ? format->fileEnding : "";
}

ModuleDataWriter *CreateModuleDataWriter(OutputKind kind)
{
    const ReportFormat *const format = FindFormat(kind);
    return format ? format->makeWriter() : nullptr;
}

void DestroyModuleDataWriter(ModuleDataWriter *writer)
{
    delete writer;
}
