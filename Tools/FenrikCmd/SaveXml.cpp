#include "SaveXml.h"

#include "Dump.h"
#include "Platform.h"
#include "SimulatedSource.h"
#include "WholeFile.h"

namespace
{

constexpr const char *kRootName = "SYSTEM";
constexpr const char *kWrongRootName = "FIRMWARE";
/// Enough options for more than 100 MB.
constexpr std::uint32_t kBigKnobCount = 100'000;

bool WriteHalf(SettingsSource &source, std::FILE *stream)
{
    std::string dump;
    std::size_t count = 0;
    const auto toMemory = [&dump](std::string_view piece)
    {
        dump += piece;
        return true;
    };
    return WriteDump(source, kRootName, toMemory, count) &&
           Platform::WriteText(stream, std::string_view(dump).substr(0, dump.size() / 2));
}

bool WriteContent(SettingsSource &source, FaultKind fault, std::FILE *stream, std::size_t &count)
{
    const auto toFile = [stream](std::string_view piece) { return Platform::WriteText(stream, piece); };
    switch (fault)
    {
    case FaultKind::EmptyDump:
        return true;
    case FaultKind::HalfDump:
        return WriteHalf(source, stream);
    case FaultKind::BigDump:
    {
        SimulatedSource big(GeneratedFirmware(kBigKnobCount));
        return WriteDump(big, kRootName, toFile, count);
    }
    default:
        return WriteDump(source, fault == FaultKind::WrongRoot ? kWrongRootName : kRootName, toFile, count);
    }
}

std::size_t Count(SettingsSource &source)
{
    std::size_t count = 0;
    source.List(
        [&count](const Setting & /*setting*/)
        {
            ++count;
            return true;
        });
    return count;
}

} // namespace

std::size_t SaveXml(SettingsSource &source, const std::string &path, FaultKind fault)
{
    std::size_t count = 0;
    if (fault == FaultKind::NoDump)
        Platform::RemoveFile(path);
    else
        WriteWholeFile(
            path, [&](std::FILE *stream) { return WriteContent(source, fault, stream, count); },
            source.ValuesNeedRights() ? Platform::FileAccess::OwnerOnly : Platform::FileAccess::Usual);
    // A dump that is not what the source has does not tell.
    const bool isCounted = fault == FaultKind::None || fault == FaultKind::WrongRoot;
    return isCounted ? count : Count(source);
}
