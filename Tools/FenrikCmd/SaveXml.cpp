#include "SaveXml.h"

#include "Dump.h"
#include "Platform.h"
#include "ReplacedFile.h"

namespace
{

constexpr const char *kRootName = "SYSTEM";
constexpr const char *kWrongRootName = "FIRMWARE";
/// Enough options for more than 100 MB.
constexpr std::uint32_t kBigKnobCount = 100'000;

void WriteHalf(const Firmware &firmware, ReplacedFile &file)
{
    std::string dump;
    WriteDump(firmware, kRootName,
              [&dump](std::string_view piece)
              {
                  dump += piece;
                  return true;
              });
    file.Write(std::string_view(dump).substr(0, dump.size() / 2));
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
    const auto toFile = [&file](std::string_view piece) { return file.Write(piece); };
    if (fault == FaultKind::HalfDump)
        WriteHalf(firmware, file);
    else if (fault == FaultKind::WrongRoot)
        WriteDump(firmware, kWrongRootName, toFile);
    else if (fault == FaultKind::BigDump)
        WriteDump(GeneratedFirmware(kBigKnobCount), kRootName, toFile);
    else if (fault != FaultKind::EmptyDump)
        WriteDump(firmware, kRootName, toFile);
    file.Commit();
}
