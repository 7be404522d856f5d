#include "XMLReaderLib.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "LowerAscii.h"
#include "Platform.h"
#include "xmlInterface.h"

#include <algorithm>
#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace XMLReaderLib
{

namespace
{

constexpr const char *kCapabilityFile = "CapsList.json";

std::string xmlPath;
TraceSource readerTrace("XMLReaderLib", "XMLReaderLib");

struct CapabilityLists
{
    std::vector<std::string> names;
    std::vector<std::string> descriptions;
};

enum class Shape
{
    Missing,
    Null,
    Object,
    Array,
    Other
};

/// Takes the capabilities of one module out of the events of nlohmann's parser, so that no tree has to be held: to free
/// one takes memory. Of members of an object with one name the last one counts.
class CapabilityReader
{
public:
    explicit CapabilityReader(std::string moduleName) : m_path{"Tarnwell", "CapabilityList", std::move(moduleName)} {}

    // What the parser calls, by its names.
    // NOLINTBEGIN(readability-identifier-naming)
    bool null() { return Value(Shape::Null); }
    bool boolean(bool /*value*/) { return Value(Shape::Other); }
    bool number_integer(std::int64_t /*value*/) { return Value(Shape::Other); }
    bool number_unsigned(std::uint64_t /*value*/) { return Value(Shape::Other); }
    bool number_float(double /*value*/, const std::string & /*text*/) { return Value(Shape::Other); }
    template <typename Bytes>
    bool binary(Bytes & /*value*/)
    {
        return Value(Shape::Other);
    }
    bool string(std::string &value)
    {
        if (std::optional<std::string> *const text = IsIgnored() ? nullptr : MemberText())
            *text = std::move(value);
        else
            Value(Shape::Other);
        return true;
    }
    bool start_object(std::size_t /*size*/) { return Open(Shape::Object); }
    bool start_array(std::size_t /*size*/) { return Open(Shape::Array); }
    bool end_object() { return Close(); }
    bool end_array() { return Close(); }
    bool key(std::string &name)
    {
        if (m_ignored == 0)
            m_key = std::move(name);
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string & /*token*/, const std::exception & /*error*/)
    {
        return false;
    }
    // NOLINTEND(readability-identifier-naming)

    /// Success; NotFound when a value on the path is missing (or null); Failed when one is not of its shape.
    Status Take(CapabilityLists &lists)
    {
        for (std::size_t place = 0; place < kList; ++place)
        {
            if (m_shapes[place] == Shape::Missing || m_shapes[place] == Shape::Null)
                return StatusCode::NotFound;
            if (m_shapes[place] != Shape::Object)
                return StatusCode::Failed;
        }
        if (m_shapes[kList] == Shape::Missing)
            return StatusCode::NotFound;
        if (m_shapes[kList] != Shape::Array && m_shapes[kList] != Shape::Object)
            return StatusCode::Failed;
        for (auto &keyed : m_elements)
        {
            Element &element = keyed.second;
            if (!element.name || !element.description)
                return StatusCode::Failed;
            lists.names.push_back(LowerAscii(std::move(*element.name)));
            lists.descriptions.push_back(std::move(*element.description));
        }
        return StatusCode::Success;
    }

private:
    struct Element
    {
        std::optional<std::string> name;
        std::optional<std::string> description;
    };

    // Places, by the number of values around them: the document and two objects in one another, the list of the
    // module's capabilities, one of these, and its members.
    static constexpr std::size_t kList = 3;
    static constexpr std::size_t kElement = 4;
    static constexpr std::size_t kMember = 5;

    /// Whether the next value is none of those places.
    bool IsIgnored() const { return m_ignored > 0 || (m_open > 0 && m_open <= kList && m_key != m_path[m_open - 1]); }

    /// Where the text of the next value belongs, if it is one of the two members.
    std::optional<std::string> *MemberText()
    {
        if (m_open != kMember)
            return nullptr;
        return m_key == "Name" ? &m_element->name : m_key == "Description" ? &m_element->description : nullptr;
    }

    /// The next value; it takes the place of an earlier one of its name.
    bool Value(Shape shape)
    {
        if (IsIgnored())
            return true;
        if (m_open <= kList)
        {
            std::fill(m_shapes.begin() + static_cast<std::ptrdiff_t>(m_open), m_shapes.end(), Shape::Missing);
            m_shapes[m_open] = shape;
            m_elements.clear();
        }
        else if (m_open == kElement)
        {
            // An object's values count in the order of their keys.
            const bool inObject = m_shapes[kList] == Shape::Object;
            m_element = &m_elements[{inObject ? 0 : m_elements.size(), inObject ? m_key : std::string()}];
            *m_element = {};
        }
        else if (std::optional<std::string> *const text = MemberText())
            text->reset();
        return true;
    }

    bool Open(Shape shape)
    {
        const bool ignored = IsIgnored();
        Value(shape);
        const bool isPlace = shape == Shape::Object ? m_open <= kElement : m_open == kList;
        if (ignored || !isPlace)
            ++m_ignored;
        else
            ++m_open;
        return true;
    }

    bool Close()
    {
        --(m_ignored > 0 ? m_ignored : m_open);
        return true;
    }

    std::array<std::string, kList> m_path;
    std::array<Shape, kList + 1> m_shapes = {};
    /// By the position in an array, or by the key in an object.
    std::map<std::pair<std::size_t, std::string>, Element> m_elements;
    Element *m_element = nullptr;
    std::string m_key;
    /// How many places, and how many ignored values, are open around the next value.
    std::size_t m_open = 0;
    std::size_t m_ignored = 0;
};

/// UnInitialize on every way out.
struct ReaderBracket
{
    ReaderBracket() { Initialize(); }
    ~ReaderBracket() { UnInitialize(); }
    ReaderBracket(const ReaderBracket &) = delete;
    ReaderBracket &operator=(const ReaderBracket &) = delete;
};

Status ParseCapabilities(const std::string &text, const char *moduleName, CapabilityLists &lists)
{
    CapabilityReader reader(moduleName);
    return nlohmann::json::sax_parse(text, &reader) ? reader.Take(lists) : StatusCode::Failed;
}

} // namespace

Status Initialize()
{
    readerTrace.Open();
    const FunctionTrace trace(readerTrace, "XMLReaderLib::Initialize");
    trace.Text(TRACE_ENTRY, "\n");
    CCInitializeXMLParser();
    TRACE(trace, TRACE_EXIT, "returning status %d\n", StatusCode::Success);
    return StatusCode::Success;
}

Status UnInitialize()
{
    const FunctionTrace trace(readerTrace, "XMLReaderLib::UnInitialize");
    trace.Text(TRACE_ENTRY, "\n");
    CCDeInitializeXMLParser();
    TRACE(trace, TRACE_EXIT, "returning status = %d\n", StatusCode::Success);
    readerTrace.Close();
    return StatusCode::Success;
}

Status InitializeXMLPath(std::string directory)
{
    if (directory.empty())
        return StatusCode::Failed;
    xmlPath = std::move(directory);
    return StatusCode::Success;
}

Status GetCapabilityList(const char *moduleName, std::vector<std::string> *names,
                         std::vector<std::string> *descriptions)
{
    const ReaderBracket bracket;
    const FunctionTrace trace(readerTrace, "XMLReaderLib::GetCapabilityList");
    trace.Text(TRACE_ENTRY, "\n");
    if (!moduleName || !names || !descriptions)
    {
        trace.Text(TRACE_FAILURE, "NULL pointer(s)\n");
        return StatusCode::NotFound;
    }
    names->clear();
    descriptions->clear();
    return WithoutExceptions(
        [&]
        {
            std::string text;
            ReadWholeFile(xmlPath + kCapabilityFile, &text);
            CapabilityLists lists;
            const Status status = ParseCapabilities(text, moduleName, lists);
            if (status != StatusCode::Success)
                return status;
            *names = std::move(lists.names);
            *descriptions = std::move(lists.descriptions);
            return status;
        });
}

Status ReadWholeFile(std::string path, std::string *text)
{
    return WithoutExceptions(
        [&]
        {
            if (!text || !Platform::ReadTextFile(path, *text) || text->empty())
                return StatusCode::Failed;
            return StatusCode::Success;
        });
}

} // namespace XMLReaderLib
