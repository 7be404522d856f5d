#include "ErrorFileWatch.h"

#include "Platform.h"
#include "ReplacedFile.h"

#include <algorithm>
#include <cstdint>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <string_view>
#include <utility>

namespace
{

struct FreeDocument
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using DocumentOwner = std::unique_ptr<xmlDoc, FreeDocument>;

struct FreeText
{
    void operator()(xmlChar *text) const { xmlFree(text); }
};

/// Where a text of an error stands: in the element Message at `position`, in the attribute `attribute`.
struct Field
{
    std::size_t position;
    const char *attribute;
    std::string RecordedError::*text;
};

constexpr Field kFields[] = {{0, "Name", &RecordedError::message},
                             {0, "Description", &RecordedError::title},
                             {1, "Description", &RecordedError::time},
                             {2, "Filename", &RecordedError::sourceFile},
                             {2, "LineNumber", &RecordedError::line}};

constexpr std::uint32_t kLongestWait = 10'000; // milliseconds

std::vector<xmlNode *> ChildrenNamed(xmlNode *parent, std::string_view name)
{
    std::vector<xmlNode *> children;
    for (xmlNode *child = xmlFirstElementChild(parent); child; child = xmlNextElementSibling(child))
    {
        if (reinterpret_cast<const char *>(child->name) == name)
            children.push_back(child);
    }
    return children;
}

std::string Attribute(xmlNode *element, const char *name)
{
    const std::unique_ptr<xmlChar, FreeText> value(xmlGetProp(element, reinterpret_cast<const xmlChar *>(name)));
    return value ? reinterpret_cast<const char *>(value.get()) : std::string();
}

RecordedError ReadError(xmlNode *element)
{
    const std::vector<xmlNode *> messages = ChildrenNamed(element, "Message");
    RecordedError error;
    for (const Field &field : kFields)
    {
        if (field.position < messages.size())
            error.*field.text = Attribute(messages[field.position], field.attribute);
    }
    return error;
}

} // namespace

std::vector<RecordedError> ReadRecordedErrors(const std::string &path)
{
    std::vector<RecordedError> errors;
    std::string text;
    {
        // Not while another process puts a new file in its place: some systems let nobody read it then.
        const Platform::FileLock lock(Platform::LinkTarget(path), kLongestWait);
        if (!Platform::ReadTextFile(path, text))
            return errors;
    }
    const DocumentOwner document(xmlReadMemory(text.data(), static_cast<int>(text.size()), path.c_str(), nullptr,
                                               XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET));
    xmlNode *const root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (!root)
        return errors;
    for (xmlNode *const element : ChildrenNamed(root, "Error"))
        errors.push_back(ReadError(element));
    return errors;
}

ErrorFileWatch::ErrorFileWatch(std::string path) : m_path(std::move(path)), m_known(ReadRecordedErrors(m_path).size())
{
}

std::vector<RecordedError> ErrorFileWatch::NewErrors() const
{
    std::vector<RecordedError> errors = ReadRecordedErrors(m_path);
    const auto known = static_cast<std::ptrdiff_t>(std::min(m_known, errors.size()));
    errors.erase(errors.begin(), errors.begin() + known);
    return errors;
}
