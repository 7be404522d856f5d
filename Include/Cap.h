#pragma once

#include "HostCompiler.h"

#include <string>
#include <vector>

/// One capability of a module: an option that the host can ask a report of.
struct Cap
{
    /// The capability's names; this module puts exactly one there, in lower case.
    std::vector<std::string> names;
    /// What the capability is, for people.
    std::string description;
};
