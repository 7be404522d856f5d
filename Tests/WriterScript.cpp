#include "WriterScript.h"

#include "DebugTrace.h"

namespace
{

std::string tracedFailure;

Status KeepMessage(std::uint32_t /*level*/, const char *message, std::uint32_t /*size*/)
{
    tracedFailure = message;
    return StatusCode::Success;
}

} // namespace

std::string RunWriter(OutputKind kind, const std::vector<WriterCall> &calls)
{
    const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
    DebugHandle_t *handle = nullptr;
    InitDebugHandle(kWriterComponents[static_cast<std::size_t>(kind)], &handle);
    handle->callback = KeepMessage;
    handle->callbackMask = TRACE_ERROR;

    std::string buffer = "before";
    for (std::size_t index = 0; index < calls.size(); ++index)
    {
        tracedFailure.clear();
        EXPECT_EQ(calls[index].make(*writer, buffer), calls[index].status) << "call " << index;
        EXPECT_EQ(tracedFailure, calls[index].line) << "call " << index;
    }
    writer->CopyDataToBuffer(buffer);
    writer->UnInitialize();
    UnInitDebugHandle(handle);
    return buffer;
}
