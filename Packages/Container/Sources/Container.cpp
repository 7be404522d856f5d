#include "Container.h"

#include "AVLTree.h"
#include "Comparisons.h"
#include "LinkedLists.h"
#include "Platform.h"
#include "RBTree.h"

#include <atomic>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace
{

constexpr char kVersionRecord[] = "02\0"
                                  "00\0"
                                  "0\0\0\0\0"
                                  "1001";
static_assert(sizeof(kVersionRecord) == kContainerVersionSize);

std::atomic<bool> versionWritten = false;

std::int32_t CompareTexts(const void *first, const void *second)
{
    const int order = std::strcmp(static_cast<const char *>(first), static_cast<const char *>(second));
    return (order > 0) - (order < 0);
}

/// By ContainerDataType, those with a comparison of their own.
constexpr CompareFunction_t kBuiltInComparisons[] = {CompareValues<std::int32_t>, CompareValues<std::int8_t>,
                                                     CompareValues<float>, CompareTexts};

/// By ContainerKind.
constexpr Status (*kKindInits[])(ContainerHandle_t *) = {LinkedListInit, SortedLinkedListInit, RBTreeInit, AVLTreeInit};

void ResolveFunctions(ContainerParams_t &params)
{
    if (params.dataType < std::size(kBuiltInComparisons))
        params.compare = kBuiltInComparisons[params.dataType];
    if (!params.hasPositionFunction)
        params.position = DefaultListPosition;
}

/// A handle without operations and mutex; null without memory.
std::unique_ptr<ContainerHandle_t> MakeHandle(const ContainerParams_t &params)
{
    std::unique_ptr<ContainerHandle_t> handle(new (std::nothrow) ContainerHandle_t);
    if (!handle)
        return nullptr;
    if (params.name)
        std::strncpy(handle->name, params.name, kContainerNameSize - 1);
    handle->kind = params.kind;
    handle->dataType = params.dataType;
    handle->hasPositionFunction = params.hasPositionFunction;
    handle->compare = params.compare;
    handle->position = params.position;
    return handle;
}

Platform::MutexHandle MakeContainerMutex(const char *name)
{
    try
    {
        return Platform::MakeMutex(name);
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
}

/// Lets go of a container that the thread holds. The front end stands around operations of a few instructions, so it
/// keeps no mutex of its own in a register: that alone would cost a plain list some percent.
class HeldContainer
{
public:
    explicit HeldContainer(const ContainerHandle_t &container) : m_container(container) {}
    ~HeldContainer() { Platform::ReleaseMutexHold(m_container.mutex); }
    HeldContainer(const HeldContainer &) = delete;
    HeldContainer &operator=(const HeldContainer &) = delete;

private:
    const ContainerHandle_t &m_container;
};

template <typename Slot, typename... Arguments>
Status Run(ContainerHandle_t *container, Slot ContainerOperations_t::*slot, Arguments &&...arguments)
{
    if (!container)
        return StatusCode::Missing;
    if (!(container->operations.*slot) || !Platform::WaitMutex(container->mutex))
        return StatusCode::Failed;
    const HeldContainer held(*container);
    return (container->operations.*slot)(*container, std::forward<Arguments>(arguments)...);
}

} // namespace

Status InitContainer(ContainerParams_t *params, ContainerHandle_t *&container)
{
    versionWritten = true;
    if (!params)
        return StatusCode::Missing;
    if (params->kind >= std::size(kKindInits) || params->dataType > DATA_CUSTOM)
        return StatusCode::NotFound;
    ResolveFunctions(*params);
    std::unique_ptr<ContainerHandle_t> made = MakeHandle(*params);
    if (!made)
        return StatusCode::Missing;
    if (kKindInits[params->kind](made.get()) != StatusCode::Success)
        return StatusCode::Failed;
    made->mutex = MakeContainerMutex(made->name);
    if (!made->mutex)
        return StatusCode::Failed;
    container = made.release();
    return StatusCode::Success;
}

Status UnInitContainer(ContainerHandle_t *container)
{
    if (!container)
        return StatusCode::Missing;
    Platform::CloseMutex(container->mutex);
    delete container;
    return StatusCode::Success;
}

Status InsertAtIndex(ContainerHandle_t *container, void *data, std::uint32_t index)
{
    return Run(container, &ContainerOperations_t::insertAtIndex, data, index);
}

Status Insert(ContainerHandle_t *container, void *data)
{
    return Run(container, &ContainerOperations_t::insert, data);
}

Status RetrieveFromIndex(ContainerHandle_t *container, void *&data, std::uint32_t index)
{
    return Run(container, &ContainerOperations_t::retrieveFromIndex, data, index);
}

Status RetrieveFromEnd(ContainerHandle_t *container, void *&data)
{
    return Run(container, &ContainerOperations_t::retrieveFromEnd, data);
}

Status DeleteAtIndex(ContainerHandle_t *container, std::uint32_t index)
{
    return Run(container, &ContainerOperations_t::deleteAtIndex, index);
}

Status DeleteByData(ContainerHandle_t *container, const void *data)
{
    return Run(container, &ContainerOperations_t::deleteByData, data);
}

Status Push(ContainerHandle_t *container, void *data)
{
    return Run(container, &ContainerOperations_t::push, data);
}

Status Pop(ContainerHandle_t *container, void *&data)
{
    return Run(container, &ContainerOperations_t::pop, data);
}

Status UpdateNode(ContainerHandle_t *container, const void *oldData, void *newData)
{
    return Run(container, &ContainerOperations_t::updateNode, oldData, newData);
}

Status GetContainerLibVersion(char *buffer)
{
    if (!buffer)
        return StatusCode::Missing;
    if (versionWritten)
        std::memcpy(buffer, kVersionRecord, kContainerVersionSize);
    else
        std::memset(buffer, 0, kContainerVersionSize);
    return StatusCode::Success;
}
