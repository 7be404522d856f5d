#pragma once

#include "Arguments.h"
#include "Platform.h"

#include <optional>
#include <string>

/// Files with values that others write: the module, and what it hands to the external tool.

/// Whether the external tool's last dump says that its values are not for everybody. False where there is none.
bool ValuesNeedRights(const Arguments &arguments);

/// While it lives, and where values need rights, the files in `reportFolder` and in the external tool's folder for knob
/// files are their owners' alone, and so is whatever this process and its children make. What is only known at the end,
/// because there was no dump before, is done then. Folders that are not there are passed over.
class FilesWithValues
{
public:
    explicit FilesWithValues(const Arguments &arguments, std::string reportFolder = {});
    ~FilesWithValues();
    FilesWithValues(const FilesWithValues &) = delete;
    FilesWithValues &operator=(const FilesWithValues &) = delete;

private:
    void Restrict() const noexcept;

    const Arguments &m_arguments;
    std::string m_reportFolder;
    std::optional<Platform::FilesForOwnerOnly> m_forOwnerOnly;
};
