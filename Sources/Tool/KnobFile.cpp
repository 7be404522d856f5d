#include "KnobFile.h"

#include "LowerAscii.h"
#include "Platform.h"
#include "ReplacedFile.h"
#include "ToolProgram.h"
#include "TracedBarrier.h"

#include <algorithm>

namespace
{

constexpr const char *kKnobFileExtension = "ini";

void AppendKnobName(std::vector<std::string> &names, std::string_view line)
{
    const std::size_t equals = line.find('=');
    if (equals != std::string_view::npos && line.find(';') == std::string_view::npos)
        names.emplace_back(line.substr(0, equals));
}

Status ProgramKnobs(const std::string &knobFile, FunctionTrace &trace)
{
    if (!HasIniExtension(knobFile))
        return trace.Fail(StatusCode::Failed, "writeKnob - failed , Improper file format provided \n");
    if (!isPassableToTool(knobFile))
        return trace.Fail(StatusCode::Failed, "writeKnob - failed , the path cannot be passed to the tool \n");
    const Status status = Exec(ToolCommand("progknobsfromfile", knobFile));
    if (status != StatusCode::Success)
        return trace.Fail(status, "writeKnob - failed to execute the command \n");
    return trace.Done(status);
}

/// Not flushed line by line: a flush would only show a line to those who read along, and nobody reads the file before it
/// is whole and gets its name; a disk that is full is noticed at the latest then, and the earlier file stays.
bool WriteLines(std::FILE *stream, const AssignmentTable &assignments)
{
    bool written = Platform::WriteText(stream, "[BiosKnobs]\n");
    for (auto assignment = assignments.begin(); written && assignment != assignments.end(); ++assignment)
    {
        for (const std::string_view text : {assignment->name, std::string_view("=="), assignment->value})
            written = written && Platform::WriteText(stream, text);
        written = written && Platform::WriteText(stream, "\n");
    }
    return written;
}

} // namespace

bool HasIniExtension(const std::string &fileName)
{
    const std::size_t dot = fileName.rfind('.');
    return dot == std::string::npos || LowerAscii(fileName.substr(dot + 1)) == kKnobFileExtension;
}

Status readKnobNames(std::vector<std::string> &names, std::string path)
{
    return WithoutExceptions(
        [&]
        {
            std::string text;
            Platform::ReadTextFile(path, text);
            std::string_view rest = text;
            while (!rest.empty())
            {
                const std::string_view line = rest.substr(0, rest.find('\n'));
                AppendKnobName(names, line);
                rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            }
            return StatusCode::Success;
        });
}

Status writeKnob(std::string knobFile)
{
    FunctionTrace trace(knobLibraryTrace, "writeKnob", "writeKnob\n");
    return WithoutExceptions(trace, [&] { return ProgramKnobs(knobFile, trace); });
}

bool WriteKnobFile(const std::string &path, const AssignmentTable &assignments)
{
    Platform::ReplacedFile file(path);
    return file.Open() && WriteLines(file.Stream(), assignments) && file.Commit();
}
