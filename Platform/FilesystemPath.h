#pragma once

#include <filesystem>
#include <string>

namespace Platform
{

/// A path text as std::filesystem takes it, which does not take path texts on its own: it would leave `\` on POSIX and
/// not know the ANSI code page on Windows. Windows: MultiByteToWideChar with the ANSI code page. POSIX: `\` becomes
/// `/`.
std::filesystem::path ToFilesystemPath(const std::string &path);

/// The path text of `path`. Windows: WideCharToMultiByte with the ANSI code page.
std::string FromFilesystemPath(const std::filesystem::path &path);

} // namespace Platform
