#pragma once

#include "DebugHandle.h"

/// Changes of settings while the program runs. Change them while no other thread traces.
///
/// The setters of one handle return Success; Missing for a null handle, stream or function (unless said otherwise);
/// NotFound for a handle whose name is not open and, but for SetDebugFlag, for a locked one. The setters of all handles
/// change every handle that is open, none when none is open, and return Success. A mask without any known bit gives
/// NotFound. Nothing changes unless Success is returned.

/// Adds the levels `mask` (of TraceLevel) to those that are written, or takes them away.
Status SetTraceType(DebugHandle_t *handle, std::uint64_t mask, bool on);
/// Adds the sinks `mask` (of TraceOutput) or takes them away.
Status SetOutputType(DebugHandle_t *handle, std::uint64_t mask, bool on);
/// Adds the fields `mask` (of TraceFormat) to those in front of the message, or takes them away.
Status SetTraceFormat(DebugHandle_t *handle, std::uint32_t mask, bool on);

/// The same for all handles that are not locked.
Status SetTraceTypeAll(std::uint64_t mask, bool on);
Status SetOutputTypeAll(std::uint64_t mask, bool on);
Status SetTraceFormatAll(std::uint32_t mask, bool on);

/// Bits that SetDebugFlag takes without complaint; those beyond FLAG_ALL stand for no flag.
constexpr std::uint32_t kAcceptedFlagBits = 63;

/// Sets the first flag that is in `flags`, in the order FLAG_SYNC_PACKAGE_FILE, FLAG_LOG_TO_PACKAGE_FILE,
/// FLAG_THREADED, FLAG_LOCKED, to `on`; also for a locked handle. NotFound when `flags` has none of kAcceptedFlagBits.
Status SetDebugFlag(DebugHandle_t *handle, std::uint32_t flags, bool on);

/// Sets the first flag that is in `flags`, in the order of the bits from the lowest, of all handles to `on`, locked or
/// not. NotFound when `flags` has none of FLAG_ALL.
Status SetDebugFlagAll(std::uint32_t flags, bool on);

/// Whether the global file is flushed after every line; for all handles, locked or not.
Status SetGlobalFileSyncAll(bool on);

/// The log file of the component; the stream stays the caller's and must outlive its use.
Status SetPackageFile(DebugHandle_t *handle, std::FILE *stream);
/// The log file shared by all components, for all handles that are not locked; Missing for null. The stream stays the
/// caller's and must outlive its use.
Status SetGlobalFileAll(std::FILE *stream);

/// The function that gets messages; null for none.
Status SetTraceCallback(DebugHandle_t *handle, TraceCallback_t callback);
/// The levels that the callback gets, of TraceLevel.
Status SetTraceCallbackMask(DebugHandle_t *handle, std::uint64_t mask);

/// The functions that print to the sinks.
Status SetConsolePrint(DebugHandle_t *handle, ConsolePrint_t print);
Status SetFilePrint(DebugHandle_t *handle, FilePrint_t print);
Status SetCustomPrint(DebugHandle_t *handle, ConsolePrint_t print);
