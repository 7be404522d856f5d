#pragma once

#include "StatusCode.h"
#include "xmlInterface.h"

#include <deque>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// One BIOS option as the external tool dumps it. All texts are UTF-8, copied unchanged from the dump. A copy of a
/// record has texts of its own, on the heap.
struct KnobDetails
{
    using Text = std::pmr::string;

    /// A record without content, whose texts will take their memory from `memory`, which must outlive it.
    explicit KnobDetails(std::pmr::memory_resource *memory = std::pmr::get_default_resource());

    Text type;
    Text setupType;
    Text name;
    Text varstoreIndex;
    Text prompt;
    Text description;
    Text UqiVal;
    /// Bytes, as a number in text form.
    Text size;
    Text offset;
    /// The condition under which the option can be changed.
    Text depex;
    /// The setup page, its parts joined by "/".
    Text SetupPgPtr;
    Text defaultValue;
    /// A hexadecimal number where the option has a list of values.
    Text CurrentVal;
    /// Text to value (a hexadecimal number), in byte-wise order of the texts.
    std::pmr::map<Text, Text> options;
};

/// Name to knob.
using KnobIndex = std::unordered_map<std::string_view, const KnobDetails *>;

/// Knobs in the order of the dump. The records of one reading lie together in memory that is given back as a whole,
/// so that half a million of them do not scatter over the heap.
class KnobList
{
public:
    /// Adds a record without content behind the others.
    KnobDetails &Append();
    /// Adds a copy of a record.
    void Append(const KnobDetails &knob);
    void RemoveLast();
    void Clear();
    void Swap(KnobList &other) noexcept;
    /// The first knob of each name; refers to the list's records.
    KnobIndex FirstOfName() const;

    KnobList() = default;
    KnobList(KnobList &&) = default;
    KnobList &operator=(KnobList &&) = delete; // would free the memory before the records in it; Swap does not

    bool IsEmpty() const { return m_knobs.empty(); }
    std::size_t Size() const { return m_knobs.size(); }
    auto begin() const { return m_knobs.begin(); }
    auto end() const { return m_knobs.end(); }

private:
    // In this order: the records are gone before their memory.
    std::unique_ptr<std::pmr::monotonic_buffer_resource> m_memory;
    std::deque<KnobDetails> m_knobs;
};

/// Reads the environment variable `variableName` (Platform::ReadEnvironmentVariable) into `path`; for "ProgramFiles"
/// the external tool's directory below it, with a final backslash. Returns Success; Failed when the variable is not set
/// or empty; NoMemory. `path` keeps its content on failure.
Status GetEnvironmentalVaribaleBiosLib(std::string variableName, std::string &path);

/// Finds the external tool, makes the folder "out" in its directory and runs its status command. The arguments have no
/// effect. Returns Success when the BIOS interface can be used; NotFound when the tool ended with exit code 1;
/// ToolFailed for another exit code; Failed when the tool's directory is not known, the folder cannot be made or the
/// tool cannot be started; NoMemory.
Status biosConfigurationLibInit(std::string componentName, std::string &extra);

/// Runs one command line (program first, in quotation marks; ANSI code page on Windows) and waits for it without limit
/// (Platform::RunCommand). Returns Success for exit code 0, NotFound for 1, ToolFailed for another, Failed when the
/// program could not be started, NoMemory.
Status Exec(std::string command);

/// Has the tool dump its knobs and reads them. With an empty `listFile` all knobs replace the content of `knobs`; else
/// `listFile` is the path of a text file with the extension ini that names knobs, and those found are appended in its
/// order. Returns Success when the dump holds a knob; NotFound, Failed or ToolFailed from the tool; Failed for a list
/// file with another extension or without names and for a dump that is missing, unusable or without knobs; NoMemory.
/// `knobs` keeps its content on failure, except that a dump without knobs empties it when `listFile` is empty.
Status readKnob(KnobList &knobs, const std::string &listFile);

/// Fills a fresh record from a node of the dump. Returns Success; Failed when the node is no usable knob; NoMemory.
Status getknobDetails(xmlNodePtr knobNode, KnobDetails &record);

/// Appends to `names` the text before the first "=" of every line of the file that has a "=" and no ";". A file that
/// cannot be opened has no lines. Returns Success, or NoMemory.
Status readKnobNames(std::vector<std::string> &names, std::string path);

/// Has the tool program the knobs that the knob file assigns; they take effect with the machine's restart. `knobFile`,
/// absolute or relative to the current directory, goes to the tool as it is and is left where it is. Returns Success
/// when the tool accepted it; Failed, with no tool started, when the path has another extension than ini (any letter
/// case) or cannot be passed to the tool; Failed when the tool cannot be started; NotFound when it ended with exit
/// code 1; ToolFailed for another exit code; NoMemory.
Status writeKnob(std::string knobFile);

/// Whether a path can stand in a command line of the tool: it holds no double-quote character and no NUL.
bool isPassableToTool(std::string_view path);

/// Gives the folder "out" of the tool's directory, with its final backslash. Returns Success; Missing, with `folder`
/// unchanged, when the library has not been initialised; NoMemory.
Status getOutFolder(std::string &folder);
