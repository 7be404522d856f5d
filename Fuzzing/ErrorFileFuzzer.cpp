// Error.xml: an entry is added behind all that a sound file holds; the bytes of a damaged one are kept beside it.

#include "ErrorFile.h"
#include "Fuzzing.h"

#include <libxml/tree.h>
#include <vector>

namespace
{

/// What stands in the root, piece by piece.
std::vector<std::string> Children(xmlDocPtr document)
{
    std::vector<std::string> children;
    for (xmlNodePtr child = xmlDocGetRootElement(document)->children; child; child = child->next)
    {
        const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), xmlBufferFree);
        xmlNodeDump(buffer.get(), document, child, 0, 0);
        children.emplace_back(reinterpret_cast<const char *>(xmlBufferContent(buffer.get())));
    }
    return children;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string file = Fuzzing::Directory() + "Error.xml";
    const std::string kept = file + ".damaged";
    const std::string_view before = Fuzzing::Text(bytes, size);
    std::filesystem::remove(kept);
    Fuzzing::WriteFile(file, before);
    const Fuzzing::Document sound = Fuzzing::Parse(before);
    const Status status = WriteErrorEntry(file.c_str(), "message", "title", "file", "1", "date");
    Fuzzing::Require(status == StatusCode::Success, "the entry is written");
    const std::string text = Fuzzing::ReadFile(file);
    const Fuzzing::Document after = Fuzzing::Parse(text);
    Fuzzing::Require(after != nullptr, "the file is well-formed");
    std::vector<std::string> entries = Children(after.get());
    Fuzzing::Require(!entries.empty() && entries.back().starts_with("<Error><Message Name=\"message\""),
                     "the new entry is the last one");
    entries.pop_back();
    Fuzzing::Require(entries == (sound ? Children(sound.get()) : std::vector<std::string>()), "entries are kept");
    Fuzzing::Require(sound || Fuzzing::ReadFile(kept) == before, "damaged bytes are kept");
    return 0;
}
