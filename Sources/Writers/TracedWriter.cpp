#include "TracedWriter.h"

#include "TracedBarrier.h"

#include <string_view>
#include <utility>

TracedWriter::OperationName::OperationName(const TraceSource &source, const char *prefix, const char *operation)
{
    m_text[0] = '\0';
    if (!TraceWanted(source.Handle(), TRACE_ALL))
        return;
    // By hand: made once for every row, where snprintf would take as long as the rest of a trace line.
    std::size_t length = 0;
    for (const std::string_view part : {std::string_view(source.SourceFile()), std::string_view("::"),
                                        std::string_view(prefix), std::string_view(operation)})
        length += part.copy(m_text + length, sizeof m_text - 1 - length);
    m_text[length] = '\0';
}

template <typename Inside>
Status TracedWriter::Run(const char *operation, const Inside &inside, TraceText entry) const
{
    const OperationName name(m_debugHandle, "", operation);
    FunctionTrace trace(m_debugHandle, name.Text(), entry);
    return WithoutExceptions(trace, [&] { return inside(trace); });
}

Status TracedWriter::Initialize(std::string moduleName, std::string description)
{
    return Run("Initialize", [&](FunctionTrace &trace)
               { return DoInitialize(trace, std::move(moduleName), std::move(description)); });
}

Status TracedWriter::AddSubMod(std::string subModName)
{
    return Run("AddSubMod", [&](FunctionTrace &trace) { return DoAddSubMod(trace, std::move(subModName)); });
}

Status TracedWriter::AddTab(std::string tabName, std::string header)
{
    return Run("AddTab", [&](FunctionTrace &trace) { return DoAddTab(trace, std::move(tabName), std::move(header)); });
}

Status TracedWriter::AddGroup(std::string groupName)
{
    return Run("AddGroup", [&](FunctionTrace &trace) { return DoAddGroup(trace, std::move(groupName)); });
}

Status TracedWriter::AddRow(std::string rowContent)
{
    return Run("AddRow", [&](FunctionTrace &trace) { return DoAddRow(trace, std::move(rowContent)); });
}

Status TracedWriter::CopyDataToBuffer(std::string &buffer)
{
    return Run("CopyDataToBuffer", [&](FunctionTrace &trace) { return DoCopyDataToBuffer(trace, buffer); });
}

Status TracedWriter::UnInitialize()
{
    return Run("UnInitialize", [&](FunctionTrace &trace) { return DoUnInitialize(trace); });
}
