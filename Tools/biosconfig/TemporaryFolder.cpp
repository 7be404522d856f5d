#include "TemporaryFolder.h"

#include "ExitCode.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr int kMostNames = 20;

/// Folders for a new one, without a "." in them.
std::vector<fs::path> Places()
{
    std::error_code error;
    std::vector<fs::path> places = {fs::temp_directory_path(error), "/tmp", "/var/tmp"};
    std::string shared;
    if (Platform::ReadEnvironmentVariable("ProgramData", shared))
        places.push_back(Platform::ToFilesystemPath(shared));
    const auto isUnfit = [](const fs::path &place)
    {
        std::error_code ignored;
        return Platform::FromFilesystemPath(place).find('.') != std::string::npos || !fs::is_directory(place, ignored);
    };
    places.erase(std::remove_if(places.begin(), places.end(), isUnfit), places.end());
    return places;
}

std::string MakeFolder()
{
    std::random_device random;
    for (const fs::path &place : Places())
    {
        for (int attempt = 0; attempt < kMostNames; ++attempt)
        {
            const fs::path folder = place / ("biosconfig-" + std::to_string(random()));
            std::error_code error;
            if (!fs::create_directory(folder, error))
                continue;
            fs::permissions(folder, fs::perms::owner_all, error);
            return Platform::FromFilesystemPath(folder);
        }
    }
    throw Failure(ExitCode::NotPermitted,
                  "there is no place for temporary files; set TMPDIR (TMP on Windows) to a folder that can be written "
                  "and has no \".\" in its path");
}

} // namespace

TemporaryFolder::TemporaryFolder() : m_path(MakeFolder()), m_prefix(Platform::AsPrefix(m_path))
{
    m_removed.emplace_back(m_path);
}

TemporaryFolder::~TemporaryFolder()
{
    if (m_isKept)
        return;
    std::error_code ignored;
    fs::remove_all(Platform::ToFilesystemPath(m_path), ignored);
}

std::string TemporaryFolder::PathOf(const std::string &name)
{
    std::string path = m_prefix + name;
    m_removed.emplace_back(path);
    return path;
}

std::string TemporaryFolder::Write(const std::string &name, std::string_view bytes)
{
    std::string path = PathOf(name);
    const Platform::StreamOwner stream = Platform::CreateStream(path, Platform::FileAccess::OwnerOnly);
    if (!stream || std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size() ||
        std::fflush(stream.get()) != 0)
        throw Failure(ExitCode::Unexpected, "cannot write the temporary file " + path);
    return path;
}
