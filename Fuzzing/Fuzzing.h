#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <libxml/parser.h>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

/// What the fuzz targets share. A target gets bytes, has the project work on them and requires of the outcome what has
/// to hold for any bytes.
namespace Fuzzing
{

/// Ends the run as a finding when `holds` is false.
inline void Require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

/// The bytes that a target gets.
inline std::string_view Text(const std::uint8_t *bytes, std::size_t size)
{
    return {reinterpret_cast<const char *>(bytes), size};
}

/// An empty directory of the target's own, in memory where the system has such a place. It is the current one.
inline const std::string &Directory()
{
    static const std::string place = []
    {
        namespace fs = std::filesystem;
        const fs::path parent = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        const fs::path made = parent / ("bios config fuzz " + std::to_string(getpid()));
        fs::remove_all(made);
        fs::create_directory(made);
        fs::current_path(made);
        std::atexit([] { fs::remove_all(fs::current_path()); });
        return made.string() + "/";
    }();
    return place;
}

inline void WriteFile(const std::string &path, std::string_view bytes)
{
    std::ofstream stream(path, std::ios::binary);
    Require(stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush().good(), path.c_str());
}

/// The bytes of a file; empty when there is none.
inline std::string ReadFile(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

struct FreeDocument
{
    void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

/// Parses a whole document strictly; null when it is none.
inline Document Parse(std::string_view text)
{
    constexpr int kOptions = XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    return Document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, kOptions));
}

inline std::size_t Count(std::string_view text, std::string_view searched)
{
    std::size_t count = 0;
    for (std::size_t found = text.find(searched); found != std::string_view::npos;
         found = text.find(searched, found + searched.size()))
        ++count;
    return count;
}

} // namespace Fuzzing
