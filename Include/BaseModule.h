#pragma once

#include "Cap.h"
#include "OutputKind.h"
#include "StatusCode.h"

#include <map>
#include <string>
#include <vector>

/// The parameters a host hands to a module. Read by this module: "toolxmlpath", the directory of the host's tool
/// files with its final path separator.
using ParameterMap = std::map<std::string, std::string>;

/// A module as the host sees it. Texts are 8-bit; reports are UTF-8. Nothing here throws.
/// A module object is used from one thread at a time.
class BaseModule
{
public:
    /// Takes the host's parameters and appends one record to `caps` for every capability of the module; the host owns
    /// the records (delete). Returns Success; Failed when "toolxmlpath" is missing or empty or the capability list
    /// cannot be read; NoMemory when memory runs out. Records appended before a failure stay in `caps`.
    virtual Status InitModule(std::vector<Cap *> &caps, ParameterMap params) = 0;

    /// Ends the use of the module. Always Success; the capability records stay the host's.
    virtual Status UnInitModule() = 0;

    /// The module's name, always "BIOS Options".
    virtual std::string GetModuleName() = 0;

    /// Makes the report of the option `name` ("all" stands for the first capability) in the format `*kind`, replaces
    /// the content of `*buffer` with it and writes it to the report file. Returns NotFound when one of the three
    /// pointers is null, or for "all" when there is no capability; NoMemory. Otherwise Success, also when the report
    /// could not be made: then the report says so or is missing, and Error.xml holds the reason.
    virtual Status GetData(const char *name, const OutputKind *kind, std::string *buffer) = 0;

    virtual ~BaseModule() = default;

private:
    /// Keeps the object's layout; no operation sets or reads it.
    std::string m_reserved;
};
