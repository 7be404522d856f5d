#include "DebugSetters.h"

#include "DebugRegistry.h"

#include <span>

namespace
{

constexpr FlagField kFlagFieldsOfOneHandle[] = {{FLAG_SYNC_PACKAGE_FILE, &DebugHandle_t::syncPackageFile},
                                                {FLAG_LOG_TO_PACKAGE_FILE, &DebugHandle_t::logToPackageFile},
                                                {FLAG_THREADED, &DebugHandle_t::threaded},
                                                {FLAG_LOCKED, &DebugHandle_t::locked}};

/// Makes `change` to a registered handle.
template <typename Change>
Status ChangeAny(DebugHandle_t *handle, Change change)
{
    if (!handle)
        return StatusCode::Missing;
    if (!FindRegistered(*handle))
        return StatusCode::NotFound;
    change(*handle);
    return StatusCode::Success;
}

/// Makes `change` to a registered handle that is not locked.
template <typename Change>
Status ChangeUnlocked(DebugHandle_t *handle, Change change)
{
    if (handle && handle->locked)
        return StatusCode::NotFound;
    return ChangeAny(handle, change);
}

template <typename Change>
Status ChangeAll(Change change)
{
    for (std::uint32_t index = 0; DebugHandle_t *const handle = RegisteredHandle(index); ++index)
        change(*handle);
    return StatusCode::Success;
}

template <typename Change>
Status ChangeAllUnlocked(Change change)
{
    return ChangeAll(
        [change](DebugHandle_t &handle)
        {
            if (!handle.locked)
                change(handle);
        });
}

template <typename Field>
auto Assign(Field DebugHandle_t::*field, Field value)
{
    return [field, value](DebugHandle_t &handle) { handle.*field = value; };
}

template <typename Mask>
auto AddOrTake(Mask DebugHandle_t::*field, Mask mask, bool on)
{
    return [field, mask, on](DebugHandle_t &handle)
    { handle.*field = on ? handle.*field | mask : handle.*field & ~mask; };
}

template <typename Mask>
Status ChangeMask(DebugHandle_t *handle, Mask DebugHandle_t::*field, Mask known, Mask mask, bool on)
{
    if (handle && (mask & known) == 0)
        return StatusCode::NotFound;
    return ChangeUnlocked(handle, AddOrTake(field, mask, on));
}

template <typename Mask>
Status ChangeMaskAll(Mask DebugHandle_t::*field, Mask known, Mask mask, bool on)
{
    if ((mask & known) == 0)
        return StatusCode::NotFound;
    return ChangeAllUnlocked(AddOrTake(field, mask, on));
}

template <typename Target>
Status ChangePointer(DebugHandle_t *handle, Target *DebugHandle_t::*field, Target *pointer)
{
    return pointer ? ChangeUnlocked(handle, Assign(field, pointer)) : StatusCode::Missing;
}

auto SetFirstFlag(std::span<const FlagField> order, std::uint32_t flags, bool on)
{
    return [order, flags, on](DebugHandle_t &handle)
    {
        for (const FlagField &field : order)
        {
            if (flags & field.flag)
            {
                handle.*field.field = on;
                return;
            }
        }
    };
}

} // namespace

Status SetTraceType(DebugHandle_t *handle, std::uint64_t mask, bool on)
{
    return ChangeMask<std::uint64_t>(handle, &DebugHandle_t::traceType, TRACE_ALL, mask, on);
}

Status SetOutputType(DebugHandle_t *handle, std::uint64_t mask, bool on)
{
    return ChangeMask<std::uint64_t>(handle, &DebugHandle_t::outputType, OUTPUT_ALL, mask, on);
}

Status SetTraceFormat(DebugHandle_t *handle, std::uint32_t mask, bool on)
{
    return ChangeMask<std::uint32_t>(handle, &DebugHandle_t::traceFormat, FORMAT_ALL, mask, on);
}

Status SetTraceTypeAll(std::uint64_t mask, bool on)
{
    return ChangeMaskAll<std::uint64_t>(&DebugHandle_t::traceType, TRACE_ALL, mask, on);
}

Status SetOutputTypeAll(std::uint64_t mask, bool on)
{
    return ChangeMaskAll<std::uint64_t>(&DebugHandle_t::outputType, OUTPUT_ALL, mask, on);
}

Status SetTraceFormatAll(std::uint32_t mask, bool on)
{
    return ChangeMaskAll<std::uint32_t>(&DebugHandle_t::traceFormat, FORMAT_ALL, mask, on);
}

Status SetDebugFlag(DebugHandle_t *handle, std::uint32_t flags, bool on)
{
    if (handle && (flags & kAcceptedFlagBits) == 0)
        return StatusCode::NotFound;
    return ChangeAny(handle, SetFirstFlag(kFlagFieldsOfOneHandle, flags, on));
}

Status SetDebugFlagAll(std::uint32_t flags, bool on)
{
    if ((flags & FLAG_ALL) == 0)
        return StatusCode::NotFound;
    return ChangeAll(SetFirstFlag(kFlagFields, flags, on));
}

Status SetGlobalFileSyncAll(bool on)
{
    return ChangeAll(Assign(&DebugHandle_t::syncGlobalFile, on));
}

Status SetPackageFile(DebugHandle_t *handle, std::FILE *stream)
{
    return ChangePointer(handle, &DebugHandle_t::packageFile, stream);
}

Status SetGlobalFileAll(std::FILE *stream)
{
    return stream ? ChangeAllUnlocked(Assign(&DebugHandle_t::globalFile, stream)) : StatusCode::Missing;
}

Status SetTraceCallback(DebugHandle_t *handle, TraceCallback_t callback)
{
    return ChangeUnlocked(handle, Assign(&DebugHandle_t::callback, callback));
}

Status SetTraceCallbackMask(DebugHandle_t *handle, std::uint64_t mask)
{
    return ChangeUnlocked(handle, Assign(&DebugHandle_t::callbackMask, mask));
}

Status SetConsolePrint(DebugHandle_t *handle, ConsolePrint_t print)
{
    return ChangePointer(handle, &DebugHandle_t::consolePrint, print);
}

Status SetFilePrint(DebugHandle_t *handle, FilePrint_t print)
{
    return ChangePointer(handle, &DebugHandle_t::filePrint, print);
}

Status SetCustomPrint(DebugHandle_t *handle, ConsolePrint_t print)
{
    return ChangePointer(handle, &DebugHandle_t::customPrint, print);
}
