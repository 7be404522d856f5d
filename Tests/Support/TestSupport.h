#pragma once

#include "Platform.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace TestSupport
{

/// A new empty directory whose name holds a blank; the destructor removes it with all that is in it.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::random_device random;
        do
            m_path = std::filesystem::temp_directory_path() / ("bios config " + std::to_string(random()));
        while (!std::filesystem::create_directory(m_path));
    }

    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    /// The path of `name` inside.
    std::string Path(const std::string &name) const { return m_path.string() + "/" + name; }

private:
    std::filesystem::path m_path;
};

/// Makes the file at `path` hold exactly `bytes`.
inline void WriteFile(const std::string &path, const std::string &bytes)
{
    std::ofstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) << path;
}

/// The bytes of the file at `path`; a missing file fails the test.
inline std::string ReadFile(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Sets an environment variable, also for programs that are started, until the end of the object's life. An empty
/// value is as good as none.
class EnvironmentSetting
{
public:
    EnvironmentSetting(const std::string &name, const std::string &value) : m_name(name)
    {
        Platform::ReadEnvironmentVariable(name, m_before);
        Platform::WriteEnvironmentVariable(name, value);
    }

    ~EnvironmentSetting() { Platform::WriteEnvironmentVariable(m_name, m_before); }

    EnvironmentSetting(const EnvironmentSetting &) = delete;
    EnvironmentSetting &operator=(const EnvironmentSetting &) = delete;

private:
    std::string m_name;
    std::string m_before;
};

} // namespace TestSupport
