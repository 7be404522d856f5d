#pragma once

#include "StatusCode.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

/// The status that stands for the exception being handled: NoMemory for want of memory (a text longer than any memory
/// included), Failed for every other. To be called from within a catch block.
inline Status StatusOfException() noexcept
{
    try
    {
        throw;
    }
    catch (const std::bad_alloc &)
    {
        return StatusCode::NoMemory;
    }
    catch (const std::length_error &)
    {
        return StatusCode::NoMemory;
    }
    catch (...)
    {
        return StatusCode::Failed;
    }
}

/// Runs `operation`, which returns a Status, and lets nothing out of it: an exception ends as StatusOfException says.
/// Every operation that another component or the host calls has one around whatever may throw.
template <typename Operation>
Status WithoutExceptions(Operation &&operation) noexcept
{
    try
    {
        return std::forward<Operation>(operation)();
    }
    catch (...)
    {
        return StatusOfException();
    }
}
