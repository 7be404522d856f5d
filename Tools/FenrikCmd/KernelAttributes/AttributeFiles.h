#pragma once

#include "NativeFolder.h"

/// The files of the kernel's firmware attributes, as Platform::NativeFolder has them; a seam for those who stand in for
/// a kernel that misbehaves. The root folder may be missing: every function then gives its error.
class AttributeFiles
{
public:
    AttributeFiles() = default;
    virtual ~AttributeFiles() = default;
    AttributeFiles(const AttributeFiles &) = delete;
    AttributeFiles &operator=(const AttributeFiles &) = delete;

    virtual std::error_code List(const std::string &folder, std::vector<Platform::FolderEntry> &entries) = 0;
    virtual Platform::FileText Read(const std::string &file) = 0;
    virtual std::error_code Write(const std::string &file, std::string_view bytes) = 0;
};

/// Those of the system, below the folder at `root`.
class SystemAttributeFiles : public AttributeFiles
{
public:
    explicit SystemAttributeFiles(const std::string &root) : m_folder(root) {}

    std::error_code List(const std::string &folder, std::vector<Platform::FolderEntry> &entries) override
    {
        return m_folder.Error() ? m_folder.Error() : m_folder.List(folder, entries);
    }
    Platform::FileText Read(const std::string &file) override { return m_folder.Read(file); }
    std::error_code Write(const std::string &file, std::string_view bytes) override
    {
        return m_folder.Write(file, bytes);
    }

private:
    Platform::NativeFolder m_folder;
};
