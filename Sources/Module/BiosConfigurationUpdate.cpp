#include "BiosConfiguration.h"
#include "ExceptionBarrier.h"
#include "FailureReport.h"
#include "FilesystemPath.h"
#include "KnobFile.h"
#include "LowerAscii.h"
#include "Platform.h"
#include "TextTemplate.h"
#include "ToolProgram.h"

#include <algorithm>
#include <filesystem>
#include <source_location>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

constexpr const char *kUpdateTitle = "Update Bios Settings";
constexpr const char *kTextExtension = "txt";
constexpr const char *kKnobFileExtension = "ini";
constexpr std::string_view kUpdated =
    "BIOS settings updated successfully. Please reboot the system to reflect the changes";
constexpr std::string_view kNotReady = "Failed to Update BIOS Settings. Please Enable FENRIK to support this option";
constexpr std::string_view kNotProgrammed =
    "Failed to Update BIOS Settings, Please make sure all the provided options in "
    "the BKC Template are valid";
constexpr std::size_t kLongestMessage = std::max({kUpdated.size(), kNotReady.size(), kNotProgrammed.size()});

/// What the host needs not get to see.
struct OwnCaps
{
    OwnCaps() = default;
    ~OwnCaps()
    {
        for (const Cap *cap : records)
            delete cap;
    }
    OwnCaps(const OwnCaps &) = delete;
    OwnCaps &operator=(const OwnCaps &) = delete;

    std::vector<Cap *> records;
};

/// The text after the first "." of a path, in lower case; empty where there is none.
std::string ExtensionOf(const std::string &path)
{
    const std::size_t dot = path.find('.');
    return dot == std::string::npos ? std::string() : LowerAscii(path.substr(dot + 1));
}

/// The name of a path's file, without the extension.
std::string StemOf(const std::string &path)
{
    const std::size_t begin = path.find_last_of("/\\:") + 1;
    return path.substr(begin, path.find('.') - begin);
}

/// Whether something has this path, or the system does not tell.
bool IsThere(const std::string &path)
{
    std::error_code error;
    return std::filesystem::status(Platform::ToFilesystemPath(path), error).type() !=
           std::filesystem::file_type::not_found;
}

} // namespace

Status UpdateBiosSettings(std::string templatePath, std::string &message, ParameterMap params)
{
    return WithoutExceptions(
        [&]
        {
            const std::string extension = ExtensionOf(templatePath);
            if (extension != kTextExtension && extension != kKnobFileExtension)
                return StatusCode::Failed;
            BiosConfigModule module;
            return module.UpdateSettings(templatePath, message, std::move(params));
        });
}

Status BiosConfigModule::UpdateSettings(const std::string &templatePath, std::string &message, ParameterMap params)
{
    const FunctionTrace trace(m_debugHandle, "UpdateBiosSettings");
    if (!isPassableToTool(templatePath))
    {
        trace.Error("the path of the template cannot be passed to the tool\n");
        return StatusCode::Failed;
    }

    // Once the options are programmed, the outcome must be told.
    message.reserve(kLongestMessage);
    OwnCaps caps;
    Status status = InitModule(caps.records, std::move(params));
    if (status != StatusCode::Success)
    {
        RecordFailure(trace, TRACE_ERROR, "Failed to Initialize module\n", "Failed to Initialize module", kUpdateTitle);
        return status;
    }
    status = Initialize();
    if (status != StatusCode::Success)
    {
        RecordFailure(trace, TRACE_ERROR, "Failed to Initialize BiosOptions package\n",
                      "Failed to Initialize BiosOptions package", kUpdateTitle);
        message = kNotReady;
        return status;
    }
    status = WithoutExceptions([&] { return ProgramTemplate(templatePath); });
    if (status != StatusCode::Success)
        RecordFailure(trace, TRACE_ERROR, "Failed to Write to knobs\n", "Failed to Write to knobs", kUpdateTitle);
    message = status == StatusCode::Success ? kUpdated : kNotProgrammed;
    return status;
}

Status BiosConfigModule::ProgramTemplate(const std::string &templatePath)
{
    if (ExtensionOf(templatePath) == kKnobFileExtension)
        return writeKnob(templatePath);
    std::string knobFile;
    Status status = getOutFolder(knobFile);
    if (status != StatusCode::Success)
        return status;
    knobFile += StemOf(templatePath) + '.' + kKnobFileExtension;
    status = ParseBkcTemplate(templatePath, knobFile);
    return status == StatusCode::Success ? writeKnob(knobFile) : status;
}

Status BiosConfigModule::ParseBkcTemplate(std::string templatePath, const std::string &knobFile)
{
    const FunctionTrace trace(m_debugHandle, "BiosConfigModule::ParseBkcTemplate");
    const auto fail =
        [&trace](const char *traced, const char *reported, std::source_location where = std::source_location::current())
    {
        RecordFailure(trace, TRACE_ERROR, traced, reported, kUpdateTitle, where);
        return StatusCode::Failed;
    };
    return WithoutExceptions(
        [&]
        {
            std::string text;
            if (!Platform::ReadTextFile(templatePath, text) && IsThere(templatePath))
                return fail("failed to read the template\n", "Failed to read the template");
            AssignmentTable assignments = SplitTemplate(text);
            // An update reads no knobs, so its option texts go to the tool as they are, which knows them; only a caller
            // that has read the knobs gets them translated.
            TranslateOptionTexts(m_knobs, assignments);
            if (!WriteKnobFile(knobFile, assignments))
                return fail("failed to write the knob file\n", "Failed to write the knob file");
            return StatusCode::Success;
        });
}
