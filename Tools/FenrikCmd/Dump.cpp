#include "Dump.h"

#include "KnobImage.h"
#include "Number.h"

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

/// In the order of KnobKind.
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

    void Attribute(const char *name, const std::string &value) { Attribute(name, value.c_str()); }

    void Comment(const std::string &text)
    {
        Note(xmlTextWriterWriteComment(m_writer.get(), XmlText((" " + text + " ").c_str())));
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

void WriteChoices(XmlDocument &document, const Knob &knob, const std::string &currentValue)
{
    document.Start("options");
    const bool isListed = std::any_of(knob.choices.begin(), knob.choices.end(),
                                      [&](const Choice &choice) { return HexText(choice.value) == currentValue; });
    if (!isListed)
        document.Comment("the current value is none of these");
    for (const Choice &choice : knob.choices)
    {
        document.Start("option");
        document.Attribute("text", choice.text);
        document.Attribute("value", HexText(choice.value));
        document.End();
    }
    document.End();
}

void WriteKnob(XmlDocument &document, const Knob &knob, const Firmware &firmware)
{
    const std::string &currentValue = CurrentValue(firmware, knob);
    const auto pending = firmware.pending.find(knob.name);
    const KindNames &kind = kKindNames[static_cast<std::size_t>(knob.kind)];
    document.Start("knob");
    document.Attribute("type", kind.type);
    document.Attribute("setupType", kind.setupType);
    document.Attribute("name", knob.name);
    document.Attribute("varstoreIndex", HexText(knob.varstore, 2));
    document.Attribute("prompt", knob.prompt);
    document.Attribute("description", knob.help);
    document.Attribute("UqiVal", knob.uniqueId);
    document.Attribute("size", std::to_string(knob.size));
    document.Attribute("offset", HexText(knob.offset, 4));
    document.Attribute("depex", knob.depex);
    document.Attribute("SetupPgPtr", knob.page);
    document.Attribute("default", knob.defaultValue);
    document.Attribute("CurrentVal", currentValue);
    if (pending != firmware.pending.end())
        document.Attribute("PendingVal", pending->second);
    if (!knob.choices.empty())
        WriteChoices(document, knob, currentValue);
    document.End();
}

void WritePlatform(XmlDocument &document)
{
    document.Start("platform");
    document.Attribute("board", "Larkmoor 2S reference board");
    document.Attribute("firmware", "LKM2.0417.B09");
    document.Attribute("date", "03/11/2020");
    document.End();
}

} // namespace

bool WriteDump(const Firmware &firmware, const char *rootName, const DumpSink &sink)
{
    XmlDocument document(sink);
    document.Start(rootName);
    WritePlatform(document);
    document.Start("biosknobs");
    document.Attribute("pending", std::to_string(firmware.pending.size()));
    std::string page;
    for (std::uint32_t index = 0; index < firmware.knobCount && document.IsSound(); ++index)
    {
        const Knob knob = MakeKnob(index);
        if (knob.page != page)
            document.Comment("Setup page: " + knob.page);
        page = knob.page;
        WriteKnob(document, knob, firmware);
    }
    return document.Finish();
}
