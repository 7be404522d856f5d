#include "WriterScript.h"

#include "ModuleSupport.h"

namespace
{

using TestSupport::TraceLog;

/// What a call must trace: its way in and its way out. A JSON writer adds a group without the latter.
std::vector<std::string> TraceOf(const WriterCall &call, const std::string &writerClass)
{
    const std::string function = " Fn:" + writerClass + "::" + call.operation + " ";
    const std::string out = call.line.empty() ? " <-- " + function + "\n" : " **ERROR**  <-- " + function + call.line;
    const bool isJSON = writerClass.find("JSON") != std::string::npos;
    if (isJSON && call.operation == std::string("AddGroup"))
        return {" --> " + function + "\n"};
    return {" --> " + function + "\n", out};
}

} // namespace

std::string RunWriter(OutputKind kind, const std::vector<WriterCall> &calls)
{
    const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
    const char *const writerClass = kWriterClasses[static_cast<std::size_t>(kind)];
    const TraceLog log(writerClass);
    std::string buffer = "before";
    for (std::size_t index = 0; index < calls.size(); ++index)
    {
        TraceLog::Take();
        EXPECT_EQ(calls[index].make(*writer, buffer), calls[index].status) << writerClass << ", call " << index;
        EXPECT_EQ(TraceLog::Take(), TraceOf(calls[index], writerClass)) << "call " << index;
    }
    writer->CopyDataToBuffer(buffer);
    writer->UnInitialize();
    return buffer;
}
