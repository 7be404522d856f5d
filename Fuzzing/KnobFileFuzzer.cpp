// Knob files, for the options of the simulated firmware: refused as bad input with a line, or taken; then the values
// come back.

#include "Fuzzing.h"
#include "KnobFile.h"
#include "SimulatedSource.h"

#include <map>

namespace
{

constexpr std::uint32_t kKnobCount = 300;

/// Name and value of every assignment.
using Values = std::map<std::string, std::string>;

Values Read(std::string_view text)
{
    static SimulatedSource source(GeneratedFirmware(kKnobCount));
    Values values;
    for (const Assignment &assignment : ReadAssignments(text, [](const SettingVisitor &visit) { source.List(visit); }))
        values.emplace(assignment.setting.name, assignment.value);
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Values values;
    try
    {
        values = Read(Fuzzing::Text(bytes, size));
    }
    catch (const ToolError &error)
    {
        Fuzzing::Require(error.Code() == ExitCode::BadInput, "a refused file is bad input");
        Fuzzing::Require(std::string_view(error.what()).starts_with("line "), "a refusal names the line");
        return 0;
    }
    std::string text = "[BiosKnobs]\n";
    for (const auto &[name, value] : values)
        text.append(name).append("==").append(value).append("\n");
    Fuzzing::Require(Read(text) == values, "values come back");
    return 0;
}
