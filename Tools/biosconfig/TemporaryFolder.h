#pragma once

#include "Platform.h"
#include "Program.h"

#include <deque>
#include <string>

/// A new folder that nobody else looks into, with a few files; all of it goes with the object, unless it is kept, and
/// with an end from outside. There is no "." in its path.
class TemporaryFolder
{
public:
    /// Throws Failure when there is no place for one.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    /// With its final separator.
    const std::string &Prefix() const { return m_prefix; }

    /// The path of a file in it that is made now, or by somebody else, and is to go with the folder.
    std::string PathOf(const std::string &name);

    /// Leaves the folder and what is in it to the user.
    void Keep() { m_isKept = true; }

    /// Makes such a file. Throws Failure when that fails.
    std::string Write(const std::string &name, std::string_view bytes);

private:
    std::string m_path;
    std::string m_prefix;
    bool m_isKept = false;
    std::deque<Platform::RemovedWhenInterrupted> m_removed;
};
