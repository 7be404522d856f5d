#include "DebugConfCheck.h"

#include "DebugConf.h"
#include "FilesystemPath.h"
#include "Platform.h"

namespace
{

/// A link counts, wherever it points.
bool Exists(const std::string &path)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(Platform::ToFilesystemPath(path), error));
}

bool IsWritable(const std::string &path)
{
    const bool existed = Exists(path);
    const bool writable = Platform::OpenStream(path, "a") != nullptr;
    if (writable && !existed)
        Platform::RemoveFile(path);
    return writable;
}

std::string Describe(const DebugConfFault &fault)
{
    const std::string place = fault.line == 0 ? " " : ", line " + std::to_string(fault.line) + ", ";
    return kDebugConfFile + place + fault.reason + "; no trace setting takes effect";
}

std::string DescribeLogFile(const DebugConf_t &record)
{
    const std::string traces = record.packageName == kAllPackages ? "at all" : "of " + std::string(record.packageName);
    return std::string(kDebugConfFile) + ", the log file \"" + record.fileName +
           "\" cannot be written; there are no traces " + traces;
}

std::vector<std::string> CheckLogFiles(const DebugConfiguration &configuration)
{
    std::vector<std::string> faults;
    for (std::uint32_t index = 0; const DebugConf_t *const record = configuration.Record(index); ++index)
    {
        if ((record->setMask & CONF_FILE_NAME) && !IsWritable(record->fileName))
            faults.push_back(DescribeLogFile(*record));
    }
    return faults;
}

} // namespace

std::vector<std::string> CheckDebugConf()
{
    if (Exists(kDebugConfFile) && !Platform::OpenStream(kDebugConfFile, "r"))
        return {Describe({0, "cannot be read"})};
    DebugConfiguration configuration;
    if (configuration.Read() != StatusCode::Success)
        return {Describe(configuration.Fault())};
    return CheckLogFiles(configuration);
}
