#include "Dump.h"

#include "Number.h"
#include "Utf8.h"

#include <algorithm>
#include <libxml/xmlwriter.h>
#include <memory>

namespace
{

struct KindNames
{
    const char *type;
    const char *setupType;
};

/// In the order of SettingKind.
constexpr KindNames kKindNames[] = {
    {"scalar", "oneof"}, {"scalar", "checkbox"}, {"scalar", "numeric"}, {"string", "text"}};

const xmlChar *XmlText(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

int PassToSink(void *sink, const char *piece, int length)
{
    try
    {
        return (*static_cast<const DumpSink *>(sink))({piece, static_cast<std::size_t>(length)}) ? length : -1;
    }
    catch (const std::exception &)
    {
        return -1;
    }
}

/// An XML document going out to a sink. Failures are kept until Finish.
class XmlDocument
{
public:
    explicit XmlDocument(const DumpSink &sink)
    {
        xmlOutputBufferPtr const buffer =
            xmlOutputBufferCreateIO(PassToSink, nullptr, const_cast<DumpSink *>(&sink), nullptr);
        m_writer.reset(buffer ? xmlNewTextWriter(buffer) : nullptr);
        if (!m_writer)
            throw std::bad_alloc();
        Note(xmlTextWriterSetIndent(m_writer.get(), 1));
        Note(xmlTextWriterSetIndentString(m_writer.get(), XmlText("\t")));
        Note(xmlTextWriterStartDocument(m_writer.get(), nullptr, "UTF-8", nullptr));
    }

    void Start(const char *element) { Note(xmlTextWriterStartElement(m_writer.get(), XmlText(element))); }

    void End() { Note(xmlTextWriterEndElement(m_writer.get())); }

    void Attribute(const char *name, const char *value)
    {
        Note(xmlTextWriterWriteAttribute(m_writer.get(), XmlText(name), XmlText(value)));
    }

    void Attribute(const char *name, const std::string &value)
    {
        Attribute(name, IsPlainText(value) ? value.c_str() : FittingText(value).c_str());
    }

    void Comment(const std::string &text)
    {
        std::string fitting = FittingText(" " + text + " ");
        // A comment must not hold "--".
        for (std::size_t at = 0; (at = fitting.find("--", at)) != std::string::npos; ++at)
            fitting.insert(++at, 1, ' ');
        Note(xmlTextWriterWriteComment(m_writer.get(), XmlText(fitting.c_str())));
    }

    bool IsSound() const { return m_sound; }

    /// Closes what is open; false when anything has failed since the start.
    bool Finish()
    {
        Note(xmlTextWriterEndDocument(m_writer.get()));
        Note(xmlTextWriterFlush(m_writer.get()));
        return m_sound;
    }

private:
    struct FreeWriter
    {
        void operator()(xmlTextWriterPtr writer) const { xmlFreeTextWriter(writer); }
    };

    void Note(int result) { m_sound = m_sound && result >= 0; }

    std::unique_ptr<xmlTextWriter, FreeWriter> m_writer;
    bool m_sound = true;
};

/// An identity that stays when options before this one come or go: the 64-bit FNV-1a hash of the name.
std::string UniqueId(const std::string &name)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char character : name)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3;
    return HexText(hash, 16);
}

void WriteChoices(XmlDocument &document, const Setting &setting)
{
    document.Start("options");
    const bool isListed =
        std::any_of(setting.choices.begin(), setting.choices.end(),
                    [&](const SettingChoice &choice) { return HexText(choice.number) == setting.currentValue; });
    if (!isListed)
        document.Comment("the current value is none of these");
    for (const SettingChoice &choice : setting.choices)
    {
        document.Start("option");
        document.Attribute("text", choice.text);
        document.Attribute("value", HexText(choice.number));
        document.End();
    }
    document.End();
}

template <typename Number>
void WriteLimit(XmlDocument &document, const char *name, const std::optional<Number> &limit)
{
    if (limit)
        document.Attribute(name, std::to_string(*limit));
}

/// What not every source says of a setting.
void WriteFurther(XmlDocument &document, const Setting &setting)
{
    if (setting.pendingValue)
        document.Attribute("PendingVal", *setting.pendingValue);
    if (!setting.sourceKind.empty())
        document.Attribute("kind", setting.sourceKind);
    if (setting.isSigned)
        document.Attribute("signed", "TRUE");
    WriteLimit(document, "min", setting.limits.minimum);
    WriteLimit(document, "max", setting.limits.maximum);
    WriteLimit(document, "step", setting.limits.step);
    WriteLimit(document, "minLength", setting.limits.minLength);
    WriteLimit(document, "maxLength", setting.limits.maxLength);
    if (setting.isReadOnly)
        document.Attribute("readOnly", "TRUE");
    if (setting.state != SettingState::Open)
        document.Attribute("state", setting.state == SettingState::Locked ? "locked" : "hidden");
    if (!setting.unreadable.empty())
        document.Attribute("unreadable", setting.unreadable);
}

void WriteKnob(XmlDocument &document, const Setting &setting)
{
    const KindNames &kind = kKindNames[static_cast<std::size_t>(setting.kind)];
    document.Start("knob");
    document.Attribute("type", kind.type);
    document.Attribute("setupType", kind.setupType);
    document.Attribute("name", setting.name);
    document.Attribute("varstoreIndex", HexText(setting.varstore, 2));
    document.Attribute("prompt", setting.prompt);
    document.Attribute("description", setting.help);
    document.Attribute("UqiVal", UniqueId(setting.name));
    document.Attribute("size", std::to_string(setting.size));
    document.Attribute("offset", HexText(setting.offset, 4));
    document.Attribute("depex", setting.condition);
    document.Attribute("SetupPgPtr", setting.page);
    if (setting.defaultValue)
        document.Attribute("default", *setting.defaultValue);
    document.Attribute("CurrentVal", setting.currentValue);
    WriteFurther(document, setting);
    if (!setting.choices.empty())
        WriteChoices(document, setting);
    document.End();
}

void WritePlatform(XmlDocument &document, SettingsSource &source)
{
    document.Start("platform");
    for (const auto &[name, value] : source.Machine())
        document.Attribute(name.c_str(), value);
    document.End();
}

void WriteKnobsHead(XmlDocument &document, SettingsSource &source)
{
    document.Start("biosknobs");
    const std::optional<std::size_t> pending = source.PendingCount();
    if (pending)
        document.Attribute("pending", std::to_string(*pending));
    if (source.ValuesNeedRights())
        document.Attribute("valuesNeedRights", "TRUE");
}

} // namespace

bool WriteDump(SettingsSource &source, const char *rootName, const DumpSink &sink, std::size_t &count)
{
    XmlDocument document(sink);
    document.Start(rootName);
    WritePlatform(document, source);
    WriteKnobsHead(document, source);
    count = 0;
    std::string page;
    source.List(
        [&](const Setting &setting)
        {
            if (setting.page != page)
                document.Comment("Setup page: " + setting.page);
            page = setting.page;
            WriteKnob(document, setting);
            ++count;
            return document.IsSound();
        });
    return document.Finish();
}
