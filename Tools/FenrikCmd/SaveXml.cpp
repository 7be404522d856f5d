#include "SaveXml.h"

#include "Dump.h"
#include "Platform.h"
#include "WholeFile.h"

namespace
{

constexpr const char *kRootName = "SYSTEM";
constexpr const char *kWrongRootName = "FIRMWARE";
/// Enough options for more than 100 MB.
constexpr std::uint32_t kBigKnobCount = 100'000;

bool WriteHalf(const Firmware &firmware, std::FILE *stream)
{
    std::string dump;
    const auto toMemory = [&dump](std::string_view piece)
    {
        dump += piece;
        return true;
    };
    return WriteDump(firmware, kRootName, toMemory) &&
           Platform::WriteText(stream, std::string_view(dump).substr(0, dump.size() / 2));
}

bool WriteContent(const Firmware &firmware, FaultKind fault, std::FILE *stream)
{
    const auto toFile = [stream](std::string_view piece) { return Platform::WriteText(stream, piece); };
    switch (fault)
    {
    case FaultKind::EmptyDump:
        return true;
    case FaultKind::HalfDump:
        return WriteHalf(firmware, stream);
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
    WriteWholeFile(path, [&](std::FILE *stream) { return WriteContent(firmware, fault, stream); });
}
