#pragma once

#include "StatusCode.h"

#include <cstddef>
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

/// The flags of a handle, as debug.conf and the setters name them.
enum DebugFlag : std::uint32_t
{
    FLAG_SYNC_PACKAGE_FILE = 1,
    FLAG_LOCKED = 2,
    FLAG_THREADED = 4,
    FLAG_LOG_TO_PACKAGE_FILE = 8,
    FLAG_ALL = 15
};

using ConsolePrint_t = int (*)(const char *format, ...);
using FilePrint_t = int (*)(std::FILE *stream, const char *format, ...);
/// The C library's printf and fprintf, as every handle has them at first. Their addresses are asked for here alone: a C
/// library may have one of its own in every source file.
extern const ConsolePrint_t kStandardConsolePrint;
extern const FilePrint_t kStandardFilePrint;

/// Gets a line's levels (those in the mask), its message without the fields in front, and the size of the message
/// buffer.
using TraceCallback_t = Status (*)(std::uint32_t level, const char *message, std::uint32_t bufferSize);

/// The trace settings of one component. The library owns the record; a component keeps a pointer to it from
/// InitDebugHandle to UnInitDebugHandle. Streams belong to whoever opened them, those of debug.conf to the library.
struct DebugHandle_t
{
    /// 1 once the record is initialised.
    std::uint32_t state = 0;
    ConsolePrint_t consolePrint = kStandardConsolePrint;
    ConsolePrint_t customPrint = nullptr;
    FilePrint_t filePrint = kStandardFilePrint;
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
    /// Opens not yet released; those beyond 65535 are not counted.
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

/// Where a handle keeps a flag.
struct FlagField
{
    DebugFlag flag;
    bool DebugHandle_t::*field;
};

constexpr FlagField kFlagFields[] = {{FLAG_SYNC_PACKAGE_FILE, &DebugHandle_t::syncPackageFile},
                                     {FLAG_LOCKED, &DebugHandle_t::locked},
                                     {FLAG_THREADED, &DebugHandle_t::threaded},
                                     {FLAG_LOG_TO_PACKAGE_FILE, &DebugHandle_t::logToPackageFile}};

/// Opens the trace handle of the component `componentName` (any text, also an empty one; compared byte for byte) and
/// stores it into `*handle`. Components of one name share one handle, whose settings an open leaves as they are; a new
/// one gets what debug.conf in the working directory says of it. That file is read at the first open, and again only
/// at the first one after the last handle was released. `*handle` is set to null first and stays null on failure.
/// Returns Success; Missing when an argument is null; NoMemory; Failed when the handle's mutex or a log file that
/// debug.conf gives it cannot be had; what InitContainer and Insert return. Handles are opened and released from one
/// thread at a time.
Status InitDebugHandle(const char *componentName, DebugHandle_t **handle);

/// Releases one open of `handle`; the last one frees it, and with the last handle of all the log files are closed and
/// debug.conf is forgotten. Returns Success; Missing for null; Failed when no open handle has its component name.
Status UnInitDebugHandle(DebugHandle_t *handle);

constexpr std::size_t kDebugVersionSize = 16;

/// Copies the version record, four zero-terminated texts in fields of 3, 3, 5 and 5 bytes, into the kDebugVersionSize
/// bytes at `buffer`; all zero bytes before the first InitDebugHandle. Returns Success; Missing for null.
Status GetDebugLibVersion(char *buffer);
