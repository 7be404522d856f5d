#pragma once

#include "StatusCode.h"

#include <string>

/// The second interface of a module object. A host has no need to call it: GetData does what is necessary itself.
/// To come from one interface to the other use dynamic_cast; deleting either deletes the whole object.
class BaseAbstraction
{
public:
    /// Finds the external tool and asks it whether the BIOS interface is enabled. Returns Success when the tool is
    /// ready; NotFound when it ended with exit code 1; NoMemory; Failed when it is not installed or cannot be started;
    /// ToolFailed when it ended with another exit code.
    virtual Status Initialize() = 0;

    /// Forgets what was read of the BIOS options. Always Success.
    virtual Status UnInitialize() = 0;

    /// Looks nothing up: NotFound for an empty name, else Success.
    virtual Status GetItemByName(std::string name) = 0;

    /// Moves the item position on by one. Always Success.
    virtual Status GetNextItem() = 0;

    virtual ~BaseAbstraction() = default;

    /// Not offered by this module: Failed.
    virtual Status Reserved1() { return StatusCode::Failed; }
    virtual Status Reserved2() { return StatusCode::Failed; }
};
