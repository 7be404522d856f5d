#include "DebugHandle.h"

#include "Platform.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace
{

/// One allocation for the record and its component name.
struct FreeHandle
{
    void operator()(DebugHandle_t *handle) const
    {
        Platform::CloseMutex(handle->mutex);
        handle->~DebugHandle_t();
        std::free(handle);
    }
};
using HandleOwner = std::unique_ptr<DebugHandle_t, FreeHandle>;

std::vector<HandleOwner> openHandles;

auto FindOpen(const char *componentName)
{
    return std::find_if(openHandles.begin(), openHandles.end(),
                        [componentName](const HandleOwner &handle)
                        { return std::strcmp(handle->componentName, componentName) == 0; });
}

/// A new record with default settings and no mutex; null without memory.
HandleOwner MakeHandle(const char *componentName)
{
    const std::size_t nameSize = std::strlen(componentName) + 1;
    void *const memory = std::malloc(sizeof(DebugHandle_t) + nameSize);
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

Status Open(const char *componentName, DebugHandle_t *&handle)
{
    const auto open = FindOpen(componentName);
    if (open != openHandles.end())
    {
        ++(*open)->refCount;
        handle = open->get();
        return StatusCode::Success;
    }
    HandleOwner made = MakeHandle(componentName);
    if (!made)
        return StatusCode::NoMemory;
    made->mutex = Platform::MakeMutex(componentName);
    if (!made->mutex)
        return StatusCode::Failed;
    openHandles.push_back(std::move(made));
    handle = openHandles.back().get();
    return StatusCode::Success;
}

} // namespace

Status InitDebugHandle(const char *componentName, DebugHandle_t **handle)
{
    if (handle)
        *handle = nullptr;
    if (!componentName || !handle)
        return StatusCode::Missing;
    try
    {
        return Open(componentName, *handle);
    }
    catch (const std::bad_alloc &)
    {
        return StatusCode::NoMemory;
    }
}

Status UnInitDebugHandle(DebugHandle_t *handle)
{
    if (!handle)
        return StatusCode::Missing;
    const auto open = FindOpen(handle->componentName);
    if (open == openHandles.end())
        return StatusCode::Failed;
    if (--(*open)->refCount == 0)
        openHandles.erase(open);
    return StatusCode::Success;
}
