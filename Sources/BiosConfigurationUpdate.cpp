#include "BiosConfiguration.h"

#include "DebugTrace.h"
#include "ExceptionBarrier.h"
#include "FailureReport.h"
#include "LowerAscii.h"
#include "Platform.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

constexpr const char *kSourceFile = "BiosConfiguration";
constexpr const char *kUpdateTitle = "Update Bios Settings";
constexpr const char *kTextExtension = "txt";
constexpr const char *kKnobFileExtension = "ini";
constexpr std::string_view kUpdated =
    "BIOS settings updated successfully. Please reboot the system to reflect the changes";
constexpr std::string_view kNotReady = "Failed to Update BIOS Settings. Please Enable FENRIK to support this option";
constexpr std::string_view kNotProgrammed =
    "Failed to Update BIOS Settings, Please make sure all the provided options in "
    "the BKC Template are valid";
constexpr std::size_t kLongestMessage = std::max({kUpdated.size(), kNotReady.size(), kNotProgrammed.size()});

/// Both point into texts that live longer.
struct Assignment
{
    std::string_view name;
    std::string_view value;
};
using AssignmentTable = std::vector<Assignment>;

/// What the host needs not get to see.
struct OwnCaps
{
    OwnCaps() = default;
    ~OwnCaps()
    {
        for (const Cap *cap : records)
            delete cap;
    }
    OwnCaps(const OwnCaps &) = delete;
    OwnCaps &operator=(const OwnCaps &) = delete;

    std::vector<Cap *> records;
};

/// Takes the text up to `end`, and `end` itself, off the front of `rest`.
std::string_view TakeUpTo(char end, std::string_view &rest)
{
    const std::string_view taken = rest.substr(0, rest.find(end));
    rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
    return taken;
}

/// By name, and assignments of one name in the order of the template that they are parts of.
bool StandsBefore(const Assignment &left, const Assignment &right)
{
    const int order = left.name.compare(right.name);
    return order < 0 || (order == 0 && left.name.data() < right.name.data());
}

/// Sorts by name and keeps the first assignment of each.
void SortAndDropRepeated(AssignmentTable &assignments)
{
    std::sort(assignments.begin(), assignments.end(), StandsBefore);
    const auto isRepeated = [](const Assignment &first, const Assignment &next) { return first.name == next.name; };
    assignments.erase(std::unique(assignments.begin(), assignments.end(), isRepeated), assignments.end());
}

/// Makes room for one more. Memory follows the number of different names, not of records.
void MakeRoom(AssignmentTable &assignments)
{
    if (assignments.size() < assignments.capacity())
        return;
    SortAndDropRepeated(assignments);
    if (assignments.size() > assignments.capacity() / 2)
        assignments.reserve(assignments.capacity() * 2);
}

/// The records of a template, the first of each name, sorted by name.
AssignmentTable SplitTemplate(std::string_view text)
{
    AssignmentTable assignments;
    while (!text.empty())
    {
        std::string_view record = TakeUpTo(';', text);
        const std::string_view name = TakeUpTo('=', record);
        MakeRoom(assignments);
        assignments.push_back({name, TakeUpTo('\n', record)});
    }
    SortAndDropRepeated(assignments);
    return assignments;
}

/// Puts the value of an option in the place of its text, for the knobs that are known.
void TranslateOptionTexts(const KnobList &knobs, AssignmentTable &assignments)
{
    if (knobs.IsEmpty())
        return;
    const KnobIndex firstOfName = knobs.FirstOfName();
    for (auto &[name, value] : assignments)
    {
        const auto knob = firstOfName.find(name);
        if (knob == firstOfName.end())
            continue;
        const auto option = knob->second->options.find(KnobDetails::Text(value));
        if (option != knob->second->options.end())
            value = option->second;
    }
}

/// Flushes after each line: a disk that is full is noticed at the line that it no longer takes.
bool WriteLines(Platform::TextFileWriter &file, const AssignmentTable &assignments)
{
    bool written = file.Write("[BiosKnobs]\n");
    for (auto assignment = assignments.begin(); written && assignment != assignments.end(); ++assignment)
        written = file.Write(assignment->name) && file.Write("==") && file.Write(assignment->value) &&
                  file.Write("\n") && file.Flush();
    return written;
}

/// Writes beside the final place and renames: the tool must never find half a knob file.
void WriteKnobFile(const std::string &path, const AssignmentTable &assignments)
{
    const std::string beside = path + ".new";
    Platform::TextFileWriter file;
    if (!file.Open(beside))
        return;
    const bool written = WriteLines(file, assignments);
    const bool closed = file.Close();
    if (!(written && closed && Platform::RenameOver(beside, path)))
        Platform::RemoveFile(beside);
}

/// The text after the first "." of a path, in lower case; empty where there is none.
std::string ExtensionOf(const std::string &path)
{
    const std::size_t dot = path.find('.');
    return dot == std::string::npos ? std::string() : LowerAscii(path.substr(dot + 1));
}

/// The name of a path's file, without the extension.
std::string StemOf(const std::string &path)
{
    const std::size_t begin = path.find_last_of("/\\:") + 1;
    return path.substr(begin, path.find('.') - begin);
}

} // namespace

Status UpdateBiosSettings(std::string templatePath, std::string &message, ParameterMap params)
{
    return WithoutExceptions(
        [&]
        {
            const std::string extension = ExtensionOf(templatePath);
            if (extension != kTextExtension && extension != kKnobFileExtension)
                return StatusCode::Failed;
            BiosConfigModule module;
            return module.UpdateSettings(templatePath, message, std::move(params));
        });
}

Status BiosConfigModule::UpdateSettings(const std::string &templatePath, std::string &message, ParameterMap params)
{
    const FunctionTrace trace(m_debugHandle, kSourceFile, "UpdateBiosSettings");
    if (!isPassableToTool(templatePath))
    {
        trace.Error("the path of the template cannot be passed to the tool\n");
        return StatusCode::Failed;
    }

    // Once the options are programmed, the outcome must be told.
    message.reserve(kLongestMessage);
    OwnCaps caps;
    Status status = InitModule(caps.records, std::move(params));
    if (status != StatusCode::Success)
    {
        RecordFailure(trace, TRACE_ERROR, "Failed to Initialize module\n", "Failed to Initialize module", kUpdateTitle);
        return status;
    }
    status = Initialize();
    if (status != StatusCode::Success)
    {
        RecordFailure(trace, TRACE_ERROR, "Failed to Initialize BiosOptions package\n",
                      "Failed to Initialize BiosOptions package", kUpdateTitle);
        message = kNotReady;
        return status;
    }
    status = WithoutExceptions([&] { return ProgramTemplate(templatePath); });
    if (status != StatusCode::Success)
        RecordFailure(trace, TRACE_ERROR, "Failed to Write to knobs\n", "Failed to Write to knobs", kUpdateTitle);
    message = status == StatusCode::Success ? kUpdated : kNotProgrammed;
    return status;
}

Status BiosConfigModule::ProgramTemplate(const std::string &templatePath)
{
    if (ExtensionOf(templatePath) == kKnobFileExtension)
        return writeKnob(templatePath);
    std::string knobFile;
    const Status status = getOutFolder(knobFile);
    if (status != StatusCode::Success)
        return status;
    knobFile += StemOf(templatePath) + '.' + kKnobFileExtension;
    // What an earlier template of that name has left must not be programmed in this one's place.
    if (!Platform::RemoveFile(knobFile))
        return StatusCode::Failed;
    ParseBkcTemplate(templatePath, knobFile);
    return writeKnob(knobFile);
}

Status BiosConfigModule::ParseBkcTemplate(std::string templatePath, const std::string &knobFile)
{
    return WithoutExceptions(
        [&]
        {
            std::string text;
            Platform::ReadTextFile(templatePath, text);
            AssignmentTable assignments = SplitTemplate(text);
            TranslateOptionTexts(m_knobs, assignments);
            WriteKnobFile(knobFile, assignments);
            return StatusCode::Success;
        });
}
