#include "ErrorFile.h"

#include "ErrorUIXMLWriter.h"
#include "ExceptionBarrier.h"
#include "Platform.h"
#include "SingletonManager.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <string>

namespace
{

constexpr const char *kToolName = "Tarnwell";

std::string errorFileDirectory;
std::string errorFileName;

/// The local time as asctime writes it, without the line feed; empty when the system cannot tell it.
std::string FormatTimeStamp(std::time_t time)
{
    constexpr std::array kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr int kFirstYear = 1900;
    std::tm local = {};
    if (!Platform::LocalTime(time, local))
        return {};
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %d", kDays.at(static_cast<std::size_t>(local.tm_wday)),
                  kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec, kFirstYear + local.tm_year);
    return text;
}

/// One entry from opening the document to saving it; the caller holds the shared mutex.
Status AddEntryToFile(std::time_t time, const char *path, const char *message, const char *title,
                      const char *sourceFile, const char *line, const char *date)
{
    ErrorUIXMLWriter writer;
    Status status = WithoutExceptions([&] { return writer.Initialize(kToolName, path); });
    if (status != StatusCode::Success)
        return status;
    status = WithoutExceptions(
        [&] { return writer.AddErrorDetails(message, title, FormatTimeStamp(time), sourceFile, line, date); });
    if (status == StatusCode::Success)
        status = writer.SaveDataFile(path);
    writer.UnInitialize();
    return status;
}

} // namespace

Status InitErrorFile(const char *directory, const char *fileName)
{
    if (!directory || !fileName)
        return StatusCode::Failed;
    if (!errorFileDirectory.empty() && !errorFileName.empty())
        return StatusCode::Success;
    return WithoutExceptions(
        [&]
        {
            errorFileDirectory = directory;
            errorFileName = fileName;
            return StatusCode::Success;
        });
}

Status ReportError(const char *message, const char *title, const char *sourceFile, const char *line, const char *date)
{
    if (errorFileDirectory.empty() || errorFileName.empty())
        return StatusCode::Success;
    if (!message || !title || !sourceFile || !line || !date)
        return StatusCode::NotFound;
    return WithoutExceptions(
        [&]
        {
            const std::string path = errorFileDirectory + errorFileName;
            return WriteErrorEntry(path.c_str(), message, title, sourceFile, line, date);
        });
}

Status WriteErrorEntry(const char *path, const char *message, const char *title, const char *sourceFile,
                       const char *line, const char *date)
{
    // The time of the report, not of its turn at the mutex.
    const std::time_t now = std::time(nullptr);
    const SingletonInstance *const shared = getSingletonInstance();
    if (!path || !message || !title || !sourceFile || !line || !date || !shared)
        return StatusCode::NotFound;
    const Platform::MutexLock lock(shared->errorFileMutex);
    if (!lock)
        return StatusCode::Missing;
    return WithoutExceptions([&] { return AddEntryToFile(now, path, message, title, sourceFile, line, date); });
}
