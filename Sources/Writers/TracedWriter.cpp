#include "TracedWriter.h"

#include "TracedBarrier.h"

#include <cstdio>
#include <utility>

TracedWriter::OperationName::OperationName(const TraceSource &source, const char *prefix, const char *operation)
{
    m_text[0] = '\0';
    if (TraceWanted(source.Handle(), TRACE_ALL))
        std::snprintf(m_text, sizeof m_text, "%s::%s%s", source.SourceFile(), prefix, operation);
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
