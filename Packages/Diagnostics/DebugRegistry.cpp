#include "DebugRegistry.h"

#include "Container.h"
#include "DebugConf.h"
#include "FindElement.h"
#include "Platform.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace
{

constexpr char kVersionRecord[] = "02\0"
                                  "00\0"
                                  "0\0\0\0\0"
                                  "1001";
static_assert(sizeof(kVersionRecord) == kDebugVersionSize);

/// One allocation for the record and its component name.
struct FreeHandle
{
    void operator()(DebugHandle_t *handle) const
    {
        Platform::CloseMutex(handle->mutex);
        handle->~DebugHandle_t();
        ::operator delete(handle);
    }
};
using HandleOwner = std::unique_ptr<DebugHandle_t, FreeHandle>;

/// All that the library keeps between its calls.
struct Registry
{
    void Reset()
    {
        void *handle = nullptr;
        while (Pop(handles, handle) == StatusCode::Success)
            HandleOwner(static_cast<DebugHandle_t *>(handle)).reset();
        UnInitContainer(handles);
        handles = nullptr;
        // After the handles, which refer to its log files.
        configuration.Release();
    }

    ContainerHandle_t *handles = nullptr;
    DebugConfiguration configuration;
    bool versionWritten = false;
};

/// Never destroyed: a host may destroy its module object when the static objects of the module are gone already, and
/// the last release empties the registry anyway.
union NoDestructor
{
    constexpr NoDestructor() : registry() {}
    ~NoDestructor() {}

    Registry registry;
};

constinit NoDestructor everlasting;
Registry &registry = everlasting.registry;

std::int32_t CompareNames(const void *first, const void *second)
{
    const int order = std::strcmp(static_cast<const DebugHandle_t *>(first)->componentName,
                                  static_cast<const DebugHandle_t *>(second)->componentName);
    return (order > 0) - (order < 0);
}

Status MakeHandleList()
{
    ContainerParams_t params;
    params.name = "DebugHandleList";
    params.kind = CONTAINER_LIST;
    params.dataType = DATA_CUSTOM;
    params.compare = CompareNames;
    return InitContainer(&params, registry.handles);
}

DebugHandle_t *FindOpen(const char *componentName)
{
    return FindElement<DebugHandle_t>(registry.handles, [componentName](const DebugHandle_t &handle)
                                      { return std::strcmp(handle.componentName, componentName) == 0; });
}

/// A new record with default settings and no mutex; null without memory.
HandleOwner MakeHandle(const char *componentName)
{
    const std::size_t nameSize = std::strlen(componentName) + 1;
    void *const memory = ::operator new(sizeof(DebugHandle_t) + nameSize, std::nothrow);
    if (!memory)
        return nullptr;
    char *const name = static_cast<char *>(memory) + sizeof(DebugHandle_t);
    std::memcpy(name, componentName, nameSize);
    HandleOwner handle(new (memory) DebugHandle_t);
    handle->state = 1;
    handle->refCount = 1;
    handle->componentName = name;
    return handle;
}

Status OpenNew(const char *componentName, DebugHandle_t *&handle)
{
    // Without a usable file the handle keeps its defaults.
    registry.configuration.Read();
    HandleOwner made = MakeHandle(componentName);
    if (!made)
        return StatusCode::NoMemory;
    made->mutex = Platform::MakeMutex(componentName);
    if (!made->mutex)
        return StatusCode::Failed;
    Status status = registry.configuration.Apply(*made);
    if (status == StatusCode::Success)
        status = Insert(registry.handles, made.get());
    if (status == StatusCode::Success)
        handle = made.release();
    return status;
}

Status Open(const char *componentName, DebugHandle_t *&handle)
{
    const Status status = registry.handles ? StatusCode::Success : MakeHandleList();
    if (status != StatusCode::Success)
        return status;
    DebugHandle_t *const open = FindOpen(componentName);
    if (!open)
        return OpenNew(componentName, handle);
    if (open->refCount < std::numeric_limits<decltype(open->refCount)>::max())
        ++open->refCount;
    handle = open;
    return StatusCode::Success;
}

} // namespace

DebugHandle_t *FindRegistered(const DebugHandle_t &handle)
{
    return registry.handles ? FindOpen(handle.componentName) : nullptr;
}

DebugHandle_t *RegisteredHandle(std::uint32_t index)
{
    void *handle = nullptr;
    RetrieveFromIndex(registry.handles, handle, index);
    return static_cast<DebugHandle_t *>(handle);
}

Status InitDebugHandle(const char *componentName, DebugHandle_t **handle)
{
    if (handle)
        *handle = nullptr;
    if (!componentName || !handle)
        return StatusCode::Missing;
    registry.versionWritten = true;
    const Status status = Open(componentName, *handle);
    // An open that failed leaves nothing behind, or a wrong log file of all packages could never be set right.
    if (!RegisteredHandle(0))
        registry.Reset();
    return status;
}

Status UnInitDebugHandle(DebugHandle_t *handle)
{
    if (!handle)
        return StatusCode::Missing;
    DebugHandle_t *const open = FindRegistered(*handle);
    if (!open)
        return StatusCode::Failed;
    if (open->refCount > 1)
    {
        --open->refCount;
        return StatusCode::Success;
    }
    if (DeleteByData(registry.handles, open) != StatusCode::Success)
        return StatusCode::Failed;
    HandleOwner(open).reset();
    if (!RegisteredHandle(0))
        registry.Reset();
    return StatusCode::Success;
}

Status GetDebugLibVersion(char *buffer)
{
    if (!buffer)
        return StatusCode::Missing;
    if (registry.versionWritten)
        std::memcpy(buffer, kVersionRecord, kDebugVersionSize);
    else
        std::memset(buffer, 0, kDebugVersionSize);
    return StatusCode::Success;
}
