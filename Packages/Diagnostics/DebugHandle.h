#pragma once

#include "StatusCode.h"

#include <cstdint>
#include <cstdio>

/// Levels of a trace line; a line may carry several.
enum TraceLevel : std::uint32_t
{
    TRACE_ENTRY = 1,
    TRACE_INFO = 2,
    TRACE_PARAM = 4,
    TRACE_WARN = 8,
    TRACE_ERROR = 16,
    TRACE_EXIT = 32,
    /// A failure that also leaves the function.
    TRACE_FAILURE = TRACE_ERROR | TRACE_EXIT,
    TRACE_ALL = 63
};

/// Where trace lines go.
enum TraceOutput : std::uint32_t
{
    OUTPUT_CONSOLE = 1,
    OUTPUT_FILE = 2,
    OUTPUT_CUSTOM = 4,
    OUTPUT_ALL = 7
};

/// The fields in front of a trace line's message.
enum TraceFormat : std::uint32_t
{
    FORMAT_FUNCTION = 1,
    FORMAT_LINE = 2,
    FORMAT_TIME = 4,
    FORMAT_TAGS = 8,
    FORMAT_ALL = 15
};

using ConsolePrint_t = int (*)(const char *format, ...);
using FilePrint_t = int (*)(std::FILE *stream, const char *format, ...);
/// Gets a line's levels (those in the mask), its message without the fields in front, and the size of the message
/// buffer.
using TraceCallback_t = Status (*)(std::uint32_t level, const char *message, std::uint32_t bufferSize);

/// The trace settings of one component. The library owns the record; a component keeps a pointer to it from
/// InitDebugHandle to UnInitDebugHandle. Streams belong to whoever opened them.
struct DebugHandle_t
{
    /// 1 once the record is initialised.
    std::uint32_t state = 0;
    ConsolePrint_t consolePrint = std::printf;
    ConsolePrint_t customPrint = nullptr;
    FilePrint_t filePrint = std::fprintf;
    TraceCallback_t callback = nullptr;
    /// Levels passed to the callback.
    std::uint64_t callbackMask = TRACE_ALL;
    /// The log file shared by all components.
    std::FILE *globalFile = nullptr;
    /// The log file of this component.
    std::FILE *packageFile = nullptr;
    /// Enabled sinks, of TraceOutput.
    std::uint64_t outputType = OUTPUT_CONSOLE;
    /// Enabled levels, of TraceLevel.
    std::uint64_t traceType = 0;
    /// Opens not yet released; at most 65535.
    std::uint16_t refCount = 0;
    /// Flush the file after every line.
    bool syncPackageFile = false;
    bool syncGlobalFile = false;
    /// Setters refuse changes.
    bool locked = false;
    /// Lines go to packageFile at all.
    bool logToPackageFile = true;
    /// Recorded only.
    bool threaded = false;
    /// Fields in front of the message, of TraceFormat.
    std::uint32_t traceFormat = FORMAT_ALL;
    /// Created with the component's name; nobody waits on it.
    void *mutex = nullptr;
    /// The name the handle was opened with; stored behind the record, in the same allocation.
    const char *componentName = nullptr;
};

/// Opens the trace handle of the component `componentName` (any text, also an empty one; compared byte for byte) and
/// stores it into `*handle`. Components of one name share one handle. `*handle` is set to null first and stays null
/// on failure. Returns Success; Missing when an argument is null; NoMemory; Failed when the handle's mutex cannot be
/// had. Handles are opened and released from one thread at a time.
Status InitDebugHandle(const char *componentName, DebugHandle_t **handle);

/// Releases one open of `handle`; the last one frees it. Returns Success; Missing for null; Failed when no open
/// handle has its component name.
Status UnInitDebugHandle(DebugHandle_t *handle);
