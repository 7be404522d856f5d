// The stand-in's knob files: refused as bad input with a line, or taken; then the values come back.

#include "Fuzzing.h"
#include "KnobFile.h"
#include "ToolError.h"

namespace
{

constexpr std::uint32_t kKnobCount = 300;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    KnobValues values;
    try
    {
        values = ReadAssignments(Fuzzing::Text(bytes, size), kKnobCount);
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
    Fuzzing::Require(ReadAssignments(text, kKnobCount) == values, "values come back");
    return 0;
}
