#pragma once

#include "StatusCode.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/// Named containers of caller-owned data pointers: four kinds behind one handle, each container with its own mutex.
///
/// A container stores the pointers as they are and never copies or frees what they point to; it owns its nodes and its
/// handle. Single operations on one container are serialised across threads, sequences of them are not. Indexes count
/// from 0 and are read as signed 32-bit values, so 2^31 and above are negative ones.

struct ContainerHandle_t;

enum ContainerKind : std::uint32_t
{
    /// Keeps the order in which elements were added.
    CONTAINER_LIST = 0,
    /// Kept in order by the position function.
    CONTAINER_SORTED_LIST = 1,
    CONTAINER_RB_TREE = 2,
    CONTAINER_AVL_TREE = 3
};

/// What the stored pointers point to, and with it the comparison. Of two floats one that is not greater and not equal
/// orders before, so a NaN does so against everything; texts compare byte by byte.
enum ContainerDataType : std::uint32_t
{
    DATA_INT32 = 0,
    /// A signed 8-bit character.
    DATA_CHAR = 1,
    DATA_FLOAT = 2,
    /// A zero-terminated text.
    DATA_STRING = 3,
    /// Anything; the caller brings the comparison.
    DATA_CUSTOM = 4
};

/// Gives a positive number when `first` orders after `second`, 0 when they are equal, a negative one when `first`
/// orders before. Searches pass the searched data first and the stored data second. Does not throw and does not change
/// the container.
using CompareFunction_t = std::int32_t (*)(const void *first, const void *second);

/// Gives the index at which a sorted list is to insert `data`. Runs while the container's mutex is held. Does not throw
/// and does not change the container.
using PositionFunction_t = std::uint32_t (*)(ContainerHandle_t *container, const void *data);

/// What InitContainer is to make.
struct ContainerParams_t
{
    /// The name of the container and of its mutex; cut to 127 characters, null stands for an empty name.
    const char *name = nullptr;
    /// Of ContainerKind.
    std::uint32_t kind = CONTAINER_LIST;
    /// Of ContainerDataType.
    std::uint32_t dataType = DATA_INT32;
    /// 0: sorted lists use the library's position function, otherwise `position`.
    std::uint32_t hasPositionFunction = 0;
    /// The caller's for DATA_CUSTOM; InitContainer stores the built-in one for the other types.
    CompareFunction_t compare = nullptr;
    /// InitContainer stores the library's when `hasPositionFunction` is 0.
    PositionFunction_t position = nullptr;
};

/// The operations of a kind; an empty slot is an operation that the kind does not have. Called by the front end alone,
/// with the container's mutex held.
struct ContainerOperations_t
{
    Status (*insertAtIndex)(ContainerHandle_t &container, void *data, std::uint32_t index) = nullptr;
    Status (*insert)(ContainerHandle_t &container, void *data) = nullptr;
    Status (*retrieveFromIndex)(ContainerHandle_t &container, void *&data, std::uint32_t index) = nullptr;
    Status (*retrieveFromEnd)(ContainerHandle_t &container, void *&data) = nullptr;
    Status (*deleteAtIndex)(ContainerHandle_t &container, std::uint32_t index) = nullptr;
    Status (*deleteByData)(ContainerHandle_t &container, const void *data) = nullptr;
    Status (*push)(ContainerHandle_t &container, void *data) = nullptr;
    Status (*pop)(ContainerHandle_t &container, void *&data) = nullptr;
    Status (*updateNode)(ContainerHandle_t &container, const void *oldData, void *newData) = nullptr;
};

/// What a kind keeps for a container besides its nodes.
struct ContainerState_t
{
    ContainerState_t() = default;
    ContainerState_t(const ContainerState_t &) = delete;
    ContainerState_t &operator=(const ContainerState_t &) = delete;
    virtual ~ContainerState_t() = default;
};

constexpr std::size_t kContainerNameSize = 128;

/// A container. Made by InitContainer, freed by UnInitContainer.
struct ContainerHandle_t
{
    char name[kContainerNameSize] = {};
    /// The first node of a list, the root of a tree; of the kind's node type.
    void *head = nullptr;
    /// The last node of a list; trees do not use it.
    void *tail = nullptr;
    std::uint32_t kind = CONTAINER_LIST;
    std::uint32_t dataType = DATA_INT32;
    std::uint32_t hasPositionFunction = 0;
    CompareFunction_t compare = nullptr;
    PositionFunction_t position = nullptr;
    ContainerOperations_t operations;
    void *mutex = nullptr;
    std::unique_ptr<ContainerState_t> state;
};

/// Makes the container that `params` describes, with a mutex of its name, and stores it into `container`; stores the
/// comparison and position function in use into `params`. Returns Success; Missing for null `params` or without memory
/// for the handle; NotFound for an unknown kind or data type; Failed when the kind refuses (a sorted kind without
/// comparison or position function, no memory) or the mutex cannot be had. `container` is unchanged on failure.
Status InitContainer(ContainerParams_t *params, ContainerHandle_t *&container);

/// Frees the handle and its mutex, but no nodes: empty the container first, with no other thread still using it.
/// Returns Success; Missing for null.
Status UnInitContainer(ContainerHandle_t *container);

/// The operations. Each waits for the container's mutex and gives the result of the kind's own operation, which stands
/// in LinkedLists.h, RBTree.h or AVLTree.h; before that, Missing for a null container and Failed for an operation that
/// the kind does not have or a mutex that cannot be taken. Unless it returns Success, an operation leaves the container
/// and `data` as they were.
Status InsertAtIndex(ContainerHandle_t *container, void *data, std::uint32_t index);
Status Insert(ContainerHandle_t *container, void *data);
Status RetrieveFromIndex(ContainerHandle_t *container, void *&data, std::uint32_t index);
Status RetrieveFromEnd(ContainerHandle_t *container, void *&data);
Status DeleteAtIndex(ContainerHandle_t *container, std::uint32_t index);
Status DeleteByData(ContainerHandle_t *container, const void *data);
Status Push(ContainerHandle_t *container, void *data);
Status Pop(ContainerHandle_t *container, void *&data);
Status UpdateNode(ContainerHandle_t *container, const void *oldData, void *newData);

constexpr std::size_t kContainerVersionSize = 16;

/// Copies the version record, four zero-terminated texts in fields of 3, 3, 5 and 5 bytes, into the
/// kContainerVersionSize bytes at `buffer`; all zero bytes before the first InitContainer. Returns Success; Missing
/// for null.
Status GetContainerLibVersion(char *buffer);
