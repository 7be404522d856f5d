#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Which machine the tool is for and how it reaches it.

enum class SourceKind
{
    /// The simulated firmware beside the program.
    Simulated,
    /// The Linux kernel's firmware attributes.
    Kernel,
    /// A Redfish service.
    Redfish
};

/// The word for it: "simulated", "kernel", "redfish".
std::string_view SourceName(SourceKind kind);

struct KernelConfiguration
{
    /// The folder with a folder per device.
    std::string root = "/sys/class/firmware-attributes";
    /// The file whose first line is the administrator password; empty for none.
    std::string passwordFile;
    /// The file descriptor, open in this process, whose first line is the administrator password; nothing for none.
    /// Not both.
    std::optional<int> passwordDescriptor;
};

struct RedfishConfiguration
{
    /// Of the service, as the user wrote it: "https://bmc.example", with or without "/redfish/v1".
    std::string url;
    /// The file whose first line is the user and whose second is the password; empty for none.
    std::string credentialsFile;
    /// A file as netrc(5) describes; empty for none. Not both.
    std::string netrcFile;
    /// The certificates that the service's is verified against, PEM; empty for the system's.
    std::string caFile;
    /// Whether the service's certificate is not verified.
    bool isInsecure = false;
    /// Which of several systems: its Id, or the last part of its path; empty for the only one.
    std::string system;
    /// For one request, from its start to its end.
    std::uint32_t timeoutSeconds = 60;
    /// Of names and texts.
    std::string language = "en";
};

struct Configuration
{
    SourceKind source = SourceKind::Simulated;
    /// Whether a real machine's settings may be changed. The simulated one's may always.
    bool isWritingAllowed = false;
    KernelConfiguration kernel;
    RedfishConfiguration redfish;
};

/// The environment variable that chooses the source in the place of the file's: "simulated", "kernel", "kernel:ROOT" or
/// "redfish:URL".
constexpr const char *kSourceVariable = "FENRIKCMD_SOURCE";

/// Where the configuration is: FenrikCmd.conf in the directory of the program.
std::string ConfigurationPath();

/// Reads the text of a configuration, with line feeds as line ends: lines `key = value`, blank ones, and comments that
/// begin with "#" or ";". Paths that are not absolute are below `directory` (with final separator). Throws ToolError
/// (Unreadable) that names the first bad line: an unknown key, one that is there twice, a value that the key cannot
/// take, two keys that exclude each other.
Configuration ParseConfiguration(std::string_view text, const std::string &directory);

/// The choice of the environment put in the place of that of `configuration`. Throws ToolError (Unreadable) for a text
/// that chooses nothing.
void ChooseSource(Configuration &configuration, const std::string &choice);

/// The configuration of this run: that of the file, or the simulated firmware where there is no file, and the choice of
/// the environment. Throws ToolError (Unreadable) where either is bad, the file cannot be read, or what the source
/// needs is missing: there is no falling back to another source.
Configuration LoadConfiguration();

/// The first `lineCount` lines of the file at `path`, without their ends: secrets. `what` is what messages call them.
/// Throws ToolError (Unreadable) where the file cannot be read, one of the lines is missing or empty, or others than
/// its owner may read or write the file. No message tells of what is in it.
std::vector<std::string> ReadSecretFile(const std::string &path, const std::string &what, std::size_t lineCount);

/// Throws ToolError (Unreadable), with `what` in its message, where the file at `path` cannot be read or others than
/// its owner may read or write it.
void RequirePrivateFile(const std::string &path, const std::string &what);
