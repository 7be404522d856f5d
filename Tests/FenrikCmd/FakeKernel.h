#pragma once

#include "AttributeFiles.h"
#include "TestSupport.h"

#include <algorithm>
#include <csignal>
#include <map>

/// What a file of a fake kernel holds, below the folder of the class.
struct FakeFile
{
    const char *path;
    const char *text;
};

/// The class as a tree of plain files in the folder `root`.
inline void MakeTree(const std::string &root, const std::vector<FakeFile> &files)
{
    for (const FakeFile &file : files)
    {
        const std::filesystem::path path = std::filesystem::path(root) / file.path;
        std::filesystem::create_directories(path.parent_path());
        TestSupport::WriteFile(path.string(), file.text);
    }
}

/// The class with drivers behind it that have habits; what is written is noted.
class FakeKernel : public AttributeFiles
{
public:
    explicit FakeKernel(const std::vector<FakeFile> &files)
    {
        for (const FakeFile &file : files)
            m_files[file.path] = file.text;
    }

    std::error_code List(const std::string &folder, std::vector<Platform::FolderEntry> &entries) override
    {
        entries.clear();
        const std::string prefix = folder.empty() ? "" : folder + "/";
        for (const auto &[path, text] : m_files)
        {
            if (!path.starts_with(prefix))
                continue;
            const std::string rest = path.substr(prefix.size());
            const std::string name = rest.substr(0, rest.find('/'));
            if (entries.empty() || entries.back().name != name)
                entries.push_back({name, name.size() < rest.size()});
        }
        return std::make_error_code(entries.empty() ? std::errc::no_such_file_or_directory : std::errc());
    }

    Platform::FileText Read(const std::string &file) override
    {
        const auto found = m_files.find(file);
        const auto failure = readErrors.find(file);
        const bool isThere = found != m_files.end();
        const std::errc error = failure != readErrors.end() ? failure->second
                                : isThere                   ? std::errc()
                                                            : std::errc::no_such_file_or_directory;
        return {error == std::errc() ? std::error_code() : std::make_error_code(error), isThere ? found->second : "",
                isThere && !file.ends_with("Fixed/current_value"), !file.ends_with("Secret/current_value")};
    }

    std::error_code Write(const std::string &file, std::string_view bytes) override
    {
        const std::string text(bytes);
        if (endsWithWrite && log.empty())
            std::raise(SIGTERM);
        log += file.substr(file.rfind('/', file.rfind('/') - 1) + 1) + "=" + (text == "\n" ? "\\n" : text) + " ";
        const auto failure = writeErrors.find(file + "=" + text);
        if (failure != writeErrors.end())
            return std::make_error_code(failure->second);
        if (file.ends_with("current_password"))
        {
            m_isOpen = text == password;
            return {};
        }
        if (!password.empty() && !m_isOpen)
            return std::make_error_code(std::errc::permission_denied);
        m_isOpen = m_isOpen && !forgetsPassword;
        if (!ignoresWrites)
            m_files[file] = changesCase ? "Other\n" : text == "\n" ? text : text + "\n";
        return {};
    }

    /// By path.
    std::map<std::string, std::errc> readErrors;
    /// By path, "=" and text.
    std::map<std::string, std::errc> writeErrors;
    /// Writes need it where there is one.
    std::string password;
    /// It counts for one write.
    bool forgetsPassword = false;
    /// Writes succeed and change nothing.
    bool ignoresWrites = false;
    /// Writes succeed and put another value there.
    bool changesCase = false;
    /// Somebody wants the process to end while it writes.
    bool endsWithWrite = false;
    /// The last two parts of the path, "=" and what was written, each with a blank behind.
    std::string log;

private:
    std::map<std::string, std::string> m_files;
    bool m_isOpen = false;
};
