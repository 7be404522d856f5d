#pragma once

#include "Program.h"

#include <deque>
#include <string>

/// A template under a path that the module takes. The module looks for the extension behind the first "." of the whole
/// path; a user's path may have others in it: in "." and ".." and in the names of folders.
class TemplateForModule
{
public:
    /// `path` is the user's. Where only its folders stand in the way it is resolved, and where that does not help the
    /// template is copied, into a folder of its own that goes with the object. Throws Failure when there is no place
    /// for a copy.
    explicit TemplateForModule(const std::string &path);
    ~TemplateForModule();
    TemplateForModule(const TemplateForModule &) = delete;
    TemplateForModule &operator=(const TemplateForModule &) = delete;

    /// The user's path where the module takes that, and where it takes no path of this template.
    const std::string &Path() const { return m_path; }

private:
    void Copy(const std::string &folder, const std::string &name);

    std::string m_path;
    /// The folder of the copy, and the copy.
    std::string m_folder;
    std::deque<Platform::RemovedWhenInterrupted> m_removed;
};
