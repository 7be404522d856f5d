#include "SaveXml.h"

#include "Dump.h"
#include "Platform.h"
#include "ReplacedFile.h"
#include "ToolError.h"

namespace
{

constexpr const char *kRootName = "SYSTEM";
constexpr const char *kWrongRootName = "FIRMWARE";
/// Enough options for more than 100 MB.
constexpr std::uint32_t kBigKnobCount = 100'000;

bool WriteHalf(const Firmware &firmware, ReplacedFile &file)
{
    std::string dump;
    const auto toMemory = [&dump](std::string_view piece)
    {
        dump += piece;
        return true;
    };
    return WriteDump(firmware, kRootName, toMemory) && file.Write(std::string_view(dump).substr(0, dump.size() / 2));
}

bool WriteContent(const Firmware &firmware, FaultKind fault, ReplacedFile &file)
{
    const auto toFile = [&file](std::string_view piece) { return file.Write(piece); };
    switch (fault)
    {
    case FaultKind::EmptyDump:
        return true;
    case FaultKind::HalfDump:
        return WriteHalf(firmware, file);
    case FaultKind::WrongRoot:
        return WriteDump(firmware, kWrongRootName, toFile);
    case FaultKind::BigDump:
        return WriteDump(GeneratedFirmware(kBigKnobCount), kRootName, toFile);
    default:
        return WriteDump(firmware, kRootName, toFile);
    }
}

} // namespace

void SaveXml(const Firmware &firmware, const std::string &path, FaultKind fault)
{
    if (fault == FaultKind::NoDump)
    {
        Platform::RemoveFile(path);
        return;
    }
    ReplacedFile file(path);
    if (!WriteContent(firmware, fault, file))
        throw ToolError(ExitCode::CannotWrite, "cannot write the dump \"" + path + "\"");
    file.Commit();
}
