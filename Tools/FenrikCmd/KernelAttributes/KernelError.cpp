#include "KernelError.h"

#include <algorithm>

namespace
{

struct Meaning
{
    std::errc error;
    const char *reading;
    const char *writing;
};

constexpr Meaning kMeanings[] = {
    {std::errc::permission_denied, "permission denied, only root may read it",
     "permission denied: the administrator password is wrong or was not given, or only root may write it"},
    {std::errc::operation_not_permitted, "not permitted",
     "not permitted: the administrator password is wrong or needed, or the settings were saved already and the machine "
     "has to restart first"},
    {std::errc::invalid_argument, "its driver refuses (invalid argument)",
     "the firmware refuses the value; some settings can be changed in the setup alone"},
    {std::errc::io_error, "the firmware does not answer (input/output error)",
     "the firmware does not answer or does not take it (input/output error)"},
    {std::errc::device_or_resource_busy, "the firmware is busy, the machine may have to restart first",
     "the firmware is busy: restart the machine first"},
    {std::errc::operation_not_supported, "not supported",
     "not supported: an administrator password may have to be set up in the firmware first"},
    {std::errc::read_only_file_system, "the file system is read-only", "the file system is read-only"},
    {std::errc::no_such_device, "the device is gone", "the device is gone"},
    {std::errc::no_such_file_or_directory, "its file is gone", "its file is gone"},
};

const Meaning *MeaningOf(const std::error_code &error)
{
    const auto *const found = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                           [&](const Meaning &known) { return error == known.error; });
    return found == std::end(kMeanings) ? nullptr : found;
}

} // namespace

std::string ReadFailure(const std::error_code &error)
{
    const Meaning *const meaning = MeaningOf(error);
    return meaning ? meaning->reading : error.message();
}

std::string WriteFailure(const std::error_code &error)
{
    const Meaning *const meaning = MeaningOf(error);
    return meaning ? meaning->writing : error.message();
}

ExitCode CodeOfWriteFailure(const std::error_code &error)
{
    return error == std::errc::invalid_argument ? ExitCode::BadInput : ExitCode::CannotWrite;
}
