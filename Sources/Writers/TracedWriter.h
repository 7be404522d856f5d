#pragma once

#include "DebugTrace.h"
#include "ModuleDataWriter.h"

/// The outside of every writer: it has the trace handle, open while the writer lives, writes the entry line of each
/// operation and lets nothing be thrown out of it.
///
/// A writer overrides the inside, one operation each with "Do" before its name. That checks first and leaves early with
/// `trace.Fail`, does its work, which may throw, and ends with `trace.Done`.
class TracedWriter : public ModuleDataWriter
{
public:
    Status Initialize(std::string moduleName, std::string description) final;
    Status AddSubMod(std::string subModName) final;
    Status AddTab(std::string tabName, std::string header) final;
    Status AddGroup(std::string groupName) final;
    Status AddRow(std::string rowContent) final;
    Status CopyDataToBuffer(std::string &buffer) final;
    Status UnInitialize() final;

protected:
    /// `className` is the name of the writer's class, source file and trace component, a literal.
    explicit TracedWriter(const char *className) : m_debugHandle(className, className) { m_debugHandle.Open(); }

    virtual Status DoInitialize(FunctionTrace &trace, std::string moduleName, std::string description) = 0;
    virtual Status DoAddSubMod(FunctionTrace &trace, std::string subModName) = 0;
    virtual Status DoAddTab(FunctionTrace &trace, std::string tabName, std::string header) = 0;
    virtual Status DoAddGroup(FunctionTrace &trace, std::string groupName) = 0;
    virtual Status DoAddRow(FunctionTrace &trace, std::string rowContent) = 0;
    virtual Status DoCopyDataToBuffer(FunctionTrace &trace, std::string &buffer) = 0;
    virtual Status DoUnInitialize(FunctionTrace &trace) = 0;

    /// The name of an operation as traces show it, class and operation; empty where nobody will see it.
    class OperationName
    {
    public:
        OperationName(const TraceSource &source, const char *prefix, const char *operation);
        const char *Text() const { return m_text; }

    private:
        char m_text[64];
    };

    /// The two lines of a constructor or destructor, around what it does while the object lives.
    class LifeTrace
    {
    public:
        LifeTrace(const TraceSource &source, const char *prefix, TraceText entry)
            : m_name(source, prefix, source.SourceFile()), m_trace(source, m_name.Text(), entry)
        {
        }

    private:
        OperationName m_name;
        FunctionTrace m_trace;
    };

    /// To be called first in the constructor and the destructor of the class that `className` names.
    LifeTrace TraceConstruction(TraceText entry = "\n") const { return {m_debugHandle, "", entry}; }
    LifeTrace TraceDestruction(TraceText entry = "\n") const { return {m_debugHandle, "~", entry}; }

private:
    /// Runs `inside` between the lines of the operation.
    template <typename Inside>
    Status Run(const char *operation, const Inside &inside, TraceText entry = "\n") const;

    TraceSource m_debugHandle;
};
