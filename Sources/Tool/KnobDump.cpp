#include "KnobDump.h"

#include "KnobFile.h"
#include "Platform.h"
#include "ToolProgram.h"
#include "TracedBarrier.h"
#include "xmlInterface.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

namespace
{

constexpr const char *kDumpFile = "FenrikOutput.xml";
constexpr const char *kPendingCount = "pending";
constexpr const char *kPendingValue = "PendingVal";
constexpr const char *kNeedRights = "valuesNeedRights";
/// The dump of a real machine has it with every knob.
constexpr const char *kSourceKind = "kind";
constexpr const char *kTrue = "TRUE";

struct FurtherAttribute
{
    const char *name;
    std::string KnobFurther::*field;
};

constexpr FurtherAttribute kFurtherAttributes[] = {
    {kSourceKind, &KnobFurther::kind},
    {"min", &KnobFurther::least},
    {"max", &KnobFurther::most},
    {"step", &KnobFurther::step},
    {"minLength", &KnobFurther::minLength},
    {"maxLength", &KnobFurther::maxLength},
    {"state", &KnobFurther::state},
    {"unreadable", &KnobFurther::unreadable},
};

/// The tool's own entry for its security device; not a BIOS option.
constexpr const char *kHiddenKnob = "TpmDevice";
constexpr const char *kNotAvailable = "NA";

struct KnobAttribute
{
    const char *name;
    KnobDetails::Text KnobDetails::*field;
};

constexpr KnobAttribute kKnobAttributeNames[] = {
    {"type", &KnobDetails::type},
    {"setupType", &KnobDetails::setupType},
    {"name", &KnobDetails::name},
    {"varstoreIndex", &KnobDetails::varstoreIndex},
    {"prompt", &KnobDetails::prompt},
    {"description", &KnobDetails::description},
    {"UqiVal", &KnobDetails::UqiVal},
    {"size", &KnobDetails::size},
    {"offset", &KnobDetails::offset},
    {"depex", &KnobDetails::depex},
    {"SetupPgPtr", &KnobDetails::SetupPgPtr},
    {"default", &KnobDetails::defaultValue},
    {"CurrentVal", &KnobDetails::CurrentVal},
};

bool HasName(xmlNodePtr node, const char *wanted)
{
    const char *const name = CCXmlGetNodeElementName(node);
    return name && std::strcmp(name, wanted) == 0;
}

const char *FindOrEnd(const char *begin, const char *end, char wanted)
{
    const void *const found = std::memchr(begin, wanted, static_cast<std::size_t>(end - begin));
    return found ? static_cast<const char *>(found) : end;
}

/// Removes every line feed and tab, in place. Moves whole pieces: most lines hold no tab behind their indentation.
void RemoveLineFeedsAndTabs(std::string &text)
{
    char *out = text.data();
    const char *in = out;
    const char *const end = in + text.size();
    const char *lineEnd = in;
    while (in != end)
    {
        if (*in == '\n' || *in == '\t')
        {
            ++in;
            continue;
        }
        if (lineEnd <= in)
            lineEnd = FindOrEnd(in, end, '\n');
        const char *const pieceEnd = FindOrEnd(in, lineEnd, '\t');
        const auto length = static_cast<std::size_t>(pieceEnd - in);
        std::memmove(out, in, length);
        out += length;
        in = pieceEnd;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}

/// The text of a dump; empty when there is none.
std::string ReadDump(const std::string &file)
{
    std::string text;
    Platform::ReadTextFile(file, text);
    return text;
}

CCXmlDocumentOwner ParseText(std::string text, CCXmlRecovery &recovery)
{
    CCXmlPadBuffer(text);
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        return nullptr;
    CCXmlDocumentOwner document(CCXmlParseXMLBuffer(text.data(), static_cast<std::int32_t>(text.size()), &recovery));
    if (recovery.lackedMemory)
        throw std::bad_alloc();
    return document;
}

/// The line where the dump is damaged. As a rule it is so with its line feeds, too, and then they are counted.
std::int32_t DamagedLine(const std::string &file, const CCXmlRecovery &withoutLineFeeds)
{
    CCXmlRecovery asItIs;
    ParseText(ReadDump(file), asItIs);
    return asItIs.damaged ? asItIs.line : withoutLineFeeds.line;
}

/// Parses the dump without its line feeds and tabs, which carry no meaning, also inside attribute values. Its text is
/// gone again when the tree is walked.
CCXmlDocumentOwner ParseDump(const std::string &file, std::int32_t &damagedLine)
{
    std::string text = ReadDump(file);
    RemoveLineFeedsAndTabs(text);
    CCXmlRecovery recovery;
    CCXmlDocumentOwner document = ParseText(std::move(text), recovery);
    if (document && recovery.damaged)
        damagedLine = DamagedLine(file, recovery);
    return document;
}

/// Reads the attributes; false when the node is not to be taken for a knob.
bool ReadAttributes(xmlNodePtr knobNode, KnobDetails &record)
{
    for (const KnobAttribute &attribute : kKnobAttributeNames)
    {
        const CCXmlValueOwner value = CCXmlReadAttribute(knobNode, attribute.name);
        const bool isName = attribute.field == &KnobDetails::name;
        if (isName && (!value || std::strcmp(value.get(), kHiddenKnob) == 0))
            return false;
        if (value)
            record.*attribute.field = value.get();
    }
    return true;
}

/// Takes an attribute that is there and not empty; otherwise `held` keeps what an earlier option gave.
void HoldAttribute(xmlNodePtr option, const char *attributeName, std::string &held)
{
    const CCXmlValueOwner value = CCXmlReadAttribute(option, attributeName);
    if (value && *value)
        held = value.get();
}

void ReadOptions(xmlNodePtr knobNode, std::pmr::map<KnobDetails::Text, KnobDetails::Text> &options)
{
    const xmlNodePtr list = CCXmlGetNextNodeChild(knobNode, nullptr);
    std::string text;
    std::string value;
    for (xmlNodePtr option = CCXmlGetNextNodeChild(list, nullptr); option; option = CCXmlGetNextNodeChild(list, option))
    {
        HoldAttribute(option, "text", text);
        HoldAttribute(option, "value", value);
        if (!text.empty() && !value.empty())
            options.emplace(text, value);
    }
}

xmlNodePtr FindKnobs(xmlNodePtr root)
{
    xmlNodePtr child = CCXmlGetNextNodeChild(root, nullptr);
    while (child && !HasName(child, "biosknobs"))
        child = CCXmlGetNextNodeChild(root, child);
    return child;
}

/// Takes a node of the dump for a knob; null when it is none.
const KnobDetails *CollectKnob(xmlNodePtr node, KnobList &knobs)
{
    if (HasName(node, "comment"))
        return nullptr;
    KnobDetails &record = knobs.Append();
    const Status status = getknobDetails(node, record);
    if (status == StatusCode::NoMemory)
        throw std::bad_alloc();
    if (status == StatusCode::Success)
        return &record;
    knobs.RemoveLast();
    return nullptr;
}

bool IsMarked(xmlNodePtr node, const char *attribute)
{
    const CCXmlValueOwner value = CCXmlReadAttribute(node, attribute);
    return value && std::strcmp(value.get(), kTrue) == 0;
}

KnobFurther ReadFurther(xmlNodePtr node)
{
    KnobFurther further;
    for (const FurtherAttribute &attribute : kFurtherAttributes)
    {
        const CCXmlValueOwner value = CCXmlReadAttribute(node, attribute.name);
        if (value)
            further.*attribute.field = value.get();
    }
    further.isReadOnly = IsMarked(node, "readOnly");
    further.isSigned = IsMarked(node, "signed");
    further.hasDefault = CCXmlReadAttribute(node, "default") != nullptr;
    return further;
}

/// What a dump tells of a knob beyond its record, for those that ask for it.
void CollectFurther(xmlNodePtr node, const KnobDetails &knob, FurtherDetails &further)
{
    const CCXmlValueOwner pending = CCXmlReadAttribute(node, kPendingValue);
    if (pending)
        further.pendingValues[&knob] = pending.get();
    if (CCXmlReadAttribute(node, kSourceKind))
        further.ofKnobs[&knob] = ReadFurther(node);
}

/// Turns the dump's knobs into records. Each knob's part of the tree is freed as soon as it has been read, while it is
/// still in the cache.
KnobList CollectKnobs(xmlNodePtr knobsNode, FurtherDetails *further = nullptr)
{
    KnobList knobs;
    xmlNodePtr node = CCXmlGetNextNodeChild(knobsNode, nullptr);
    while (node)
    {
        const KnobDetails *const knob = CollectKnob(node, knobs);
        if (knob && further)
            CollectFurther(node, *knob, *further);
        const xmlNodePtr next = CCXmlGetNextNodeChild(knobsNode, node);
        CCXmlFreeNode(node);
        node = next;
    }
    return knobs;
}

/// Appends the first knob of each name, in the order of the names.
void AppendNamedKnobs(const KnobList &all, const std::vector<std::string> &names, KnobList &knobs)
{
    const KnobIndex firstOfName = all.FirstOfName();
    for (const std::string &name : names)
    {
        const auto found = firstOfName.find(name);
        if (found != firstOfName.end())
            knobs.Append(*found->second);
    }
}

Status ReadListFile(const std::string &listFile, std::vector<std::string> &names, FunctionTrace &trace)
{
    if (!HasIniExtension(listFile))
        return trace.Fail(StatusCode::Failed, "ReadKnob - failed , Improper file format provided \n");
    const Status status = readKnobNames(names, listFile);
    if (status != StatusCode::Success)
        return status;
    if (names.empty())
        return trace.Fail(StatusCode::Failed, "ReadKnob - failed , Improper file- No Knobs found in file \n");
    return StatusCode::Success;
}

/// Finds the dump's root element and judges it.
Status CheckRoot(xmlDocPtr document, xmlNodePtr &root, FunctionTrace &trace)
{
    root = CCXmlGetRootElement(document);
    if (!root)
        return trace.Fail(StatusCode::Failed, "readKnob - CCXmlGetRootElement return value is NULL\n");
    const char *const name = CCXmlGetNodeElementName(root);
    if (!name)
        return trace.Fail(StatusCode::Failed, "readKnob - CCXmlGetNodeElementName return value is NULL\n");
    if (std::strcmp(name, "SYSTEM") != 0)
        return trace.Fail(StatusCode::Failed, "readKnob - Improper file provided\n");
    return StatusCode::Success;
}

DumpOutcome ReadDumpFile(const std::string &file, KnobList &knobs, FurtherDetails &further, std::int32_t &damagedLine)
{
    if (!Platform::OpenStream(file, "rb"))
        return DumpOutcome::Unreadable;
    const CCXmlQuiet quiet;
    const CCXmlDocumentOwner document = ParseDump(file, damagedLine);
    const xmlNodePtr root = CCXmlGetRootElement(document.get());
    if (!root || !HasName(root, "SYSTEM"))
        return DumpOutcome::NoDump;
    const xmlNodePtr knobsNode = FindKnobs(root);
    further.tellsPending = CCXmlReadAttribute(knobsNode, kPendingCount) != nullptr;
    further.valuesNeedRights = IsMarked(knobsNode, kNeedRights);
    KnobList all = CollectKnobs(knobsNode, &further);
    knobs.Swap(all);
    return knobs.IsEmpty() ? DumpOutcome::NoKnobs : DumpOutcome::Read;
}

Status ReadDumpedKnobs(KnobList &knobs, const std::string &listFile, const std::vector<std::string> &names,
                       std::int32_t &damagedLine, FunctionTrace &trace)
{
    const CCXmlBracket bracket;
    const CCXmlQuiet quiet;
    const CCXmlDocumentOwner document = ParseDump(toolDirectory + kDumpFile, damagedLine);
    if (!document)
        return trace.Fail(StatusCode::Failed, "readKnob - Doc Pointer is NULL\n");
    xmlNodePtr root = nullptr;
    Status status = CheckRoot(document.get(), root, trace);
    if (status != StatusCode::Success)
        return status;
    KnobList all = CollectKnobs(FindKnobs(root));
    if (all.IsEmpty())
    {
        trace.Error("no knobs found\n");
        status = StatusCode::Failed;
    }
    if (listFile.empty())
        knobs.Swap(all);
    else
        AppendNamedKnobs(all, names, knobs);
    return status;
}

Status ReadKnobs(KnobList &knobs, const std::string &listFile, std::int32_t &damagedLine, FunctionTrace &trace)
{
    Status status = Exec(ToolCommand("savexml", toolDirectory + kDumpFile));
    if (status != StatusCode::Success)
        return trace.Fail(status, "readKnob - failed to execute the command \n");
    std::vector<std::string> names;
    if (!listFile.empty())
        status = ReadListFile(listFile, names, trace);
    if (status != StatusCode::Success)
        return status;
    return ReadDumpedKnobs(knobs, listFile, names, damagedLine, trace);
}

} // namespace

Status readKnob(KnobList &knobs, const std::string &listFile, std::int32_t *damagedLine)
{
    FunctionTrace trace(knobLibraryTrace, "readKnob", "readKnob\n");
    std::int32_t line = 0;
    const Status status = WithoutExceptions(trace, [&] { return ReadKnobs(knobs, listFile, line, trace); });
    if (damagedLine)
        *damagedLine = line;
    return trace.Done(status);
}

DumpOutcome readDump(const std::string &file, KnobList &knobs, FurtherDetails &further, std::int32_t &damagedLine)
{
    damagedLine = 0;
    DumpOutcome outcome = DumpOutcome::NoMemory;
    WithoutExceptions(
        [&]
        {
            outcome = ReadDumpFile(file, knobs, further, damagedLine);
            return StatusCode::Success;
        });
    return outcome;
}

std::string toolDumpFile(const std::string &directory)
{
    return directory + kDumpFile;
}

Status getknobDetails(xmlNodePtr knobNode, KnobDetails &record)
{
    FunctionTrace trace(knobLibraryTrace, "getknobDetails", "getknobDetails\n");
    return WithoutExceptions(trace,
                             [&]
                             {
                                 record.prompt = kNotAvailable;
                                 record.description = kNotAvailable;
                                 if (!ReadAttributes(knobNode, record))
                                     return trace.LeaveUntraced(StatusCode::Failed);
                                 if (!record.CurrentVal.empty())
                                     ReadOptions(knobNode, record.options);
                                 return trace.Done(StatusCode::Success);
                             });
}
