#include "DebugConfCheck.h"

#include "DebugConf.h"
#include "FilesystemPath.h"
#include "Platform.h"

#include <algorithm>
#include <iterator>

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

constexpr std::string_view kComponents[] = {
    "BiosConfigModule",    "BiosConfigurationModule", "ErrorUIXMLWriter",    "ModuleUIXMLWriter",  "ModuleLogXMLWriter",
    "ModuleLogHTMLWriter", "ModuleLogHTMLXMLWriter",  "ModuleLogJSONWriter", "ModuleUIJSONWriter", "XMLParser",
    "XMLReaderLib"};

/// The record of a component or of all, and what one has to know of the others to judge it.
struct View
{
    const DebugConf_t &record;
    /// A record without keys where there is none.
    const DebugConf_t &global;
    /// What any record sets.
    std::uint32_t keysOfAny;
    std::uint32_t sinksOfAny;

    bool IsGlobal() const { return record.packageName == kAllPackages; }
    bool Has(DebugConfKey key) const { return (record.setMask & key) != 0; }
    bool GlobalHas(DebugConfKey key) const { return (global.setMask & key) != 0; }
    bool IsOverridden(DebugConfKey key) const { return !IsGlobal() && Has(key) && GlobalHas(key); }
    /// The record whose value counts for a component.
    const DebugConf_t &Owner(DebugConfKey key) const { return GlobalHas(key) ? global : record; }

    bool ReachesItsFile() const
    {
        if (IsGlobal() && !Has(CONF_OUTPUT_TYPE))
            return (sinksOfAny & OUTPUT_FILE) != 0;
        const DebugConf_t &owner = Owner(CONF_OUTPUT_TYPE);
        return (owner.setMask & CONF_OUTPUT_TYPE) != 0 && (owner.outputType & OUTPUT_FILE) != 0;
    }

    bool HasFileFor() const
    {
        return ((IsGlobal() ? keysOfAny : record.setMask | global.setMask) & CONF_FILE_NAME) != 0;
    }

    bool LacksFlagOfFile() const
    {
        const DebugConf_t &owner = Owner(CONF_DEBUG_FLAGS_TYPE);
        return !IsGlobal() && (owner.setMask & CONF_DEBUG_FLAGS_TYPE) != 0 &&
               (owner.debugFlags & FLAG_LOG_TO_PACKAGE_FILE) == 0;
    }
};

/// A way in which a setting has no effect.
struct Rule
{
    const char *setting;
    bool (*applies)(const View &view);
    const char *reason;
};

template <DebugConfKey Key>
bool IsOverridden(const View &view)
{
    return view.IsOverridden(Key);
}

constexpr const char *kEverySetting = "every setting";
constexpr const char *kGlobalDecides = "Global sets it for all";
constexpr Rule kRules[] = {
    {kEverySetting,
     [](const View &view)
     {
         const auto *const end = std::end(kComponents);
         return !view.IsGlobal() && std::find(std::begin(kComponents), end, view.record.packageName) == end;
     },
     "no component has this name"},
    {kEverySetting,
     [](const View &view) {
         return ((view.IsGlobal() ? view.keysOfAny : view.record.setMask | view.global.setMask) & CONF_TRACE_TYPE) == 0;
     },
     "there is no TraceType"},
    {"TraceType", IsOverridden<CONF_TRACE_TYPE>, kGlobalDecides},
    {"OutputType", IsOverridden<CONF_OUTPUT_TYPE>, kGlobalDecides},
    {"TraceFormatType", IsOverridden<CONF_TRACE_FORMAT_TYPE>, kGlobalDecides},
    {"DebugFlagsType", IsOverridden<CONF_DEBUG_FLAGS_TYPE>, kGlobalDecides},
    {"code Fi in OutputType",
     [](const View &view)
     {
         return view.Has(CONF_OUTPUT_TYPE) && !view.IsOverridden(CONF_OUTPUT_TYPE) && view.ReachesItsFile() &&
                !view.HasFileFor();
     },
     "there is no FileName"},
    {"FileName", [](const View &view) { return view.Has(CONF_FILE_NAME) && !view.ReachesItsFile(); },
     "OutputType is without Fi"},
    {"FileName",
     [](const View &view) { return view.Has(CONF_FILE_NAME) && view.ReachesItsFile() && view.LacksFlagOfFile(); },
     "DebugFlagsType is without Lg"},
    {"SyncFlag", [](const View &view) { return view.Has(CONF_SYNC_FLAG) && !view.IsGlobal(); },
     "it is for Global only"},
    {"SyncFlag",
     [](const View &view) { return view.Has(CONF_SYNC_FLAG) && view.IsGlobal() && !view.Has(CONF_FILE_NAME); },
     "Global has no FileName"},
};

void FindUseless(const View &view, std::vector<std::string> &found)
{
    for (const Rule &rule : kRules)
    {
        if (!rule.applies(view))
            continue;
        found.push_back(std::string(kDebugConfFile) + ", " + rule.setting + " of " + view.record.packageName +
                        " has no effect: " + rule.reason);
        if (rule.setting == kEverySetting)
            return;
    }
}

} // namespace

std::vector<std::string> UselessDebugConfSettings()
{
    std::vector<std::string> found;
    DebugConfiguration configuration;
    if (configuration.Read() != StatusCode::Success)
        return found;
    const DebugConf_t none;
    const DebugConf_t *global = &none;
    std::uint32_t keys = 0;
    std::uint32_t sinks = 0;
    for (std::uint32_t index = 0; const DebugConf_t *const record = configuration.Record(index); ++index)
    {
        global = record->packageName == kAllPackages ? record : global;
        keys |= record->setMask;
        sinks |= record->outputType;
    }
    for (std::uint32_t index = 0; const DebugConf_t *const record = configuration.Record(index); ++index)
        FindUseless({*record, *global, keys, sinks}, found);
    return found;
}

std::vector<std::string> CheckDebugConf()
{
    if (Exists(kDebugConfFile) && !Platform::OpenStream(kDebugConfFile, "r"))
        return {Describe({0, "cannot be read"})};
    DebugConfiguration configuration;
    if (configuration.Read() != StatusCode::Success)
        return {Describe(configuration.Fault())};
    return CheckLogFiles(configuration);
}
