#include "DumpWords.h"

#include "Platform.h"

#include <climits>
#include <cstring>
#include <libxml/parser.h>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace
{

/// The external tool's own entry; no option.
constexpr std::string_view kHiddenKnob = "TpmDevice";

struct Reading
{
    DumpWords words;
    std::unordered_set<std::string> pages;
    const std::string &option;
    bool isInOption = false;
};

const char *ValueOf(const xmlChar **attributes, const char *name)
{
    for (; attributes && *attributes; attributes += 2)
    {
        if (std::strcmp(reinterpret_cast<const char *>(attributes[0]), name) == 0)
            return reinterpret_cast<const char *>(attributes[1]);
    }
    return nullptr;
}

void TakeKnob(Reading &reading, const xmlChar **attributes)
{
    const char *const name = ValueOf(attributes, "name");
    const char *const page = ValueOf(attributes, "SetupPgPtr");
    if (!name || name == kHiddenKnob)
        return;
    reading.isInOption = name == reading.option && reading.words.choices.empty();
    reading.words.names.emplace_back(name);
    if (page && reading.pages.insert(page).second)
        reading.words.pages.emplace_back(page);
}

void StartElement(void *context, const xmlChar *name, const xmlChar **attributes)
{
    auto &reading = *static_cast<Reading *>(context);
    const std::string_view element = reinterpret_cast<const char *>(name);
    const char *const text = ValueOf(attributes, "text");
    if (element == "knob")
        TakeKnob(reading, attributes);
    else if (element == "option" && reading.isInOption && text)
        reading.words.choices.emplace_back(text);
}

void Ignore(void * /*context*/, const char * /*message*/, ...) {}

} // namespace

DumpWords ReadDumpWords(const std::string &path, const std::string &option)
{
    Reading reading = {{}, {}, option};
    std::string text;
    if (!Platform::ReadTextFile(path, text) || text.size() > INT_MAX)
        return {};
    xmlSAXHandler handler = {};
    handler.startElement = StartElement;
    handler.warning = Ignore;
    handler.error = Ignore;
    handler.fatalError = Ignore;
    // A dump that is damaged has words, too.
    static_cast<void>(xmlSAXUserParseMemory(&handler, &reading, text.data(), static_cast<int>(text.size())));
    return std::move(reading.words);
}
