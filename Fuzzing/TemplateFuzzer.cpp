// Text templates: the first assignment of each name, by name, and a knob file that holds just them.

#include "Fuzzing.h"
#include "Platform.h"
#include "Template.h"
#include "TextTemplate.h"

#include <map>

namespace
{

/// The same in the plainest way.
std::map<std::string, std::string> Split(std::string_view text)
{
    std::map<std::string, std::string> assignments;
    while (!text.empty())
    {
        const std::size_t end = text.find(';');
        const std::string record(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        const std::size_t equals = record.find('=');
        const std::string rest = equals == std::string::npos ? "" : record.substr(equals + 1);
        assignments.emplace(record.substr(0, equals), rest.substr(0, rest.find('\n')));
    }
    return assignments;
}

std::string WithCarriageReturns(const std::string &text)
{
    std::string result;
    for (const char character : text)
        result.append(character == '\n' ? 1 : 0, '\r') += character;
    return result;
}

/// What a person's template is read as is what the module reads in the template made of it.
void RequireSameAssignments(const TemplateContent &content)
{
    std::vector<WrittenAssignment> assignments;
    std::map<std::string, std::string> expected;
    for (const TemplateAssignment &assignment : content.assignments)
    {
        assignments.push_back({assignment.name, assignment.value});
        expected.emplace(assignment.name, assignment.value);
    }
    const std::string text = WriteTemplate(assignments, TemplateKind::Text);
    Fuzzing::Require(Split(text) == expected, "the module reads what was written for it");
    Fuzzing::Require(ReadTemplate(text, TemplateKind::Text).findings.empty(),
                     "nothing is wrong with a written template");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view text = Fuzzing::Text(bytes, size);
    RequireSameAssignments(ReadTemplate(text, TemplateKind::Text));
    RequireSameAssignments(ReadTemplate(text, TemplateKind::KnobFile));
    const AssignmentTable assignments = SplitTemplate(text);
    std::map<std::string, std::string> found;
    std::string expected = "[BiosKnobs]\n";
    for (const auto &[name, value] : assignments)
    {
        Fuzzing::Require(found.empty() || found.rbegin()->first < name, "names are in order, each once");
        found.emplace(name, value);
        expected.append(name).append("==").append(value).append("\n");
    }
    Fuzzing::Require(found == Split(text), "the first assignment of each name counts");
    const std::string file = Fuzzing::Directory() + "knobs.ini";
    Fuzzing::Require(WriteKnobFile(file, assignments), "the knob file is written");
    Fuzzing::Require(Fuzzing::ReadFile(file) == WithCarriageReturns(expected), "the knob file holds the assignments");
    return 0;
}
