#include "TemplateForModule.h"

#include "ExitCode.h"
#include "FilesystemPath.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <string_view>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view kExtensions[] = {"txt", "ini"};
constexpr int kMostNames = 20;

bool IsTaken(std::string_view path)
{
    const std::size_t dot = path.find('.');
    std::string extension(dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1));
    for (char &character : extension)
        character = character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    return std::find(std::begin(kExtensions), std::end(kExtensions), extension) != std::end(kExtensions);
}

/// The path with its folder's links, "." and ".." resolved; the path itself where there is no such folder.
fs::path Resolved(const fs::path &path)
{
    std::error_code error;
    const fs::path folder = fs::canonical(path.has_parent_path() ? path.parent_path() : fs::path("."), error);
    return error ? path : folder / path.filename();
}

/// Folders for a copy, without a "." in them.
std::vector<fs::path> PlacesForCopies()
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

/// A new folder that nobody else looks into; empty when none can be made.
std::string MakeFolder()
{
    std::random_device random;
    for (const fs::path &place : PlacesForCopies())
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
    return {};
}

} // namespace

TemplateForModule::TemplateForModule(const std::string &path) : m_path(path)
{
    const fs::path users = Platform::ToFilesystemPath(path);
    const std::string name = Platform::FromFilesystemPath(users.filename());
    if (IsTaken(path) || !IsTaken(name) || !Platform::OpenStream(path, "rb"))
        return;
    const std::string resolved = Platform::FromFilesystemPath(Resolved(users));
    if (IsTaken(resolved))
        m_path = resolved;
    else
        Copy(MakeFolder(), name);
}

void TemplateForModule::Copy(const std::string &folder, const std::string &name)
{
    std::error_code error;
    if (!folder.empty())
    {
        const std::string copy = Platform::FromFilesystemPath(Platform::ToFilesystemPath(folder) / name);
        m_folder = folder;
        m_removed.emplace_back(m_folder);
        m_removed.emplace_back(copy);
        if (fs::copy_file(Platform::ToFilesystemPath(m_path), Platform::ToFilesystemPath(copy), error))
        {
            m_path = copy;
            return;
        }
    }
    throw Failure(ExitCode::NotDone, "there is no place for a copy of the template " + m_path +
                                         "; the module takes it from a folder without a \".\" in its path only");
}

TemplateForModule::~TemplateForModule()
{
    std::error_code ignored;
    if (!m_folder.empty())
        fs::remove_all(Platform::ToFilesystemPath(m_folder), ignored);
}
