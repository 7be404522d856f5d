#include "Dump.h"

#include "Number.h"
#include "Utf8.h"

#include <algorithm>
#include <string_view>
#include <vector>

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

/// What a character of an attribute's value is written as; null for one that stands for itself.
const char *Escaped(char character)
{
    switch (character)
    {
    case '"':
        return "&quot;";
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\t':
        return "&#9;";
    case '\n':
        return "&#10;";
    case '\r':
        return "&#13;";
    default:
        return nullptr;
    }
}

/// An XML document going out to a sink, each element on a line of its own. A refusal of the sink is kept until Finish.
class XmlDocument
{
public:
    explicit XmlDocument(const DumpSink &sink) : m_sink(sink)
    {
        m_text.reserve(2 * kPieceSize);
        m_text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    }

    void Start(const char *element)
    {
        CloseTag();
        Indent();
        m_text.append(1, '<').append(element);
        m_elements.push_back(element);
        m_isTagOpen = true;
    }

    void End()
    {
        const char *const element = m_elements.back();
        m_elements.pop_back();
        if (!m_isTagOpen)
            Indent();
        m_isTagOpen ? m_text.append("/>\n") : m_text.append("</").append(element).append(">\n");
        m_isTagOpen = false;
        if (m_text.size() >= kPieceSize)
            HandOver();
    }

    void Attribute(const char *name, const std::string &value)
    {
        m_text.append(1, ' ').append(name).append("=\"");
        if (IsPlainText(value))
            AppendEscaped(value);
        else
            AppendEscaped(FittingText(value));
        m_text += '"';
    }

    void Comment(const std::string &text)
    {
        std::string fitting = FittingText(" " + text + " ");
        // A comment must not hold "--".
        for (std::size_t at = 0; (at = fitting.find("--", at)) != std::string::npos; ++at)
            fitting.insert(++at, 1, ' ');
        CloseTag();
        Indent();
        m_text.append("<!--").append(fitting).append("-->\n");
    }

    bool IsSound() const { return m_sound; }

    /// Closes what is open; false when the sink has refused anything since the start.
    bool Finish()
    {
        while (!m_elements.empty())
            End();
        HandOver();
        return m_sound;
    }

private:
    static constexpr std::size_t kPieceSize = std::size_t{64} << 10;

    void CloseTag()
    {
        if (m_isTagOpen)
            m_text += ">\n";
        m_isTagOpen = false;
    }

    void Indent() { m_text.append(m_elements.size(), '\t'); }

    void AppendEscaped(std::string_view value)
    {
        std::size_t start = 0;
        for (std::size_t place = 0; place < value.size(); ++place)
        {
            const char *const escaped = Escaped(value[place]);
            if (!escaped)
                continue;
            m_text.append(value, start, place - start).append(escaped);
            start = place + 1;
        }
        m_text.append(value, start);
    }

    void HandOver()
    {
        m_sound = m_sound && m_sink(m_text);
        m_text.clear();
    }

    const DumpSink &m_sink;
    /// What has not been handed over yet.
    std::string m_text;
    /// Those that are open, outermost first.
    std::vector<const char *> m_elements;
    /// Whether the last one's tag still takes attributes.
    bool m_isTagOpen = false;
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
