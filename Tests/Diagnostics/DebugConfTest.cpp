#include "DebugConfCheck.h"
#include "DebugSetters.h"
#include "DebugTrace.h"
#include "DebugTraceValues.h"
#include "FailingAllocation.h"
#include "TestSupport.h"

#include <cinttypes>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace
{

namespace fs = std::filesystem;
using namespace StatusCode;
using TestSupport::ReadFile;
using TestSupport::WriteFile;
using Handle = DebugHandle_t *;

/// What an open gave: its status and the settings of the handle, if there is one. As they stand here they are a new
/// handle's.
struct Settings
{
    Status status = Success;
    std::uint64_t levels = 0, sinks = OUTPUT_CONSOLE;
    std::uint32_t fields = FORMAT_ALL;
    /// The flags that are on, and what has been set, in the order in which Describe asks for them.
    std::string_view on = "log ";

    bool operator==(const Settings &other) const = default;
    friend void PrintTo(const Settings &settings, std::ostream *stream)
    {
        *stream << "status " << settings.status << ", levels " << settings.levels << ", sinks " << settings.sinks
                << ", fields " << settings.fields << ", on: " << settings.on;
    }
};

Settings Describe(const DebugHandle_t &handle)
{
    static std::set<std::string> kept; // the texts that settings point to
    const DebugHandle_t fresh;
    std::string on;
    for (const auto &[isOn, name] :
         {std::pair(handle.syncPackageFile, "sync "), std::pair(handle.locked, "locked "),
          std::pair(handle.threaded, "threaded "), std::pair(handle.logToPackageFile, "log "),
          std::pair(handle.syncGlobalFile, "globalSync "), std::pair(handle.packageFile != nullptr, "file "),
          std::pair(handle.globalFile != nullptr, "globalFile "),
          std::pair(handle.consolePrint != fresh.consolePrint, "consolePrint "),
          std::pair(handle.filePrint != fresh.filePrint, "filePrint "),
          std::pair(handle.customPrint != nullptr, "customPrint "),
          std::pair(handle.callbackMask != TRACE_ALL, "mask "), std::pair(handle.callback != nullptr, "callback ")})
        on += isOn ? name : "";
    return {Success, handle.traceType, handle.outputType, handle.traceFormat, *kept.insert(on).first};
}

Handle Open(const char *name)
{
    Handle handle = nullptr;
    EXPECT_EQ(InitDebugHandle(name, &handle), Success) << name;
    return handle;
}

/// A log file with '#' for every time stamp.
std::string Masked(const std::string &path)
{
    std::string text;
    EXPECT_TRUE(Platform::ReadTextFile(path, text)) << path;
    return std::regex_replace(text, std::regex("TS:[0-9]+"), "TS:#");
}

/// How a line with bytes begins.
std::string RowOf(const unsigned char *bytes)
{
    char text[80];
    std::snprintf(text, sizeof text, "\n **ERROR**  Fn:F Ln:9 TS:#  Pos  0x%016" PRIxPTR ":  ",
                  reinterpret_cast<std::uintptr_t>(bytes));
    return text;
}

/// Works in a directory of its own, where debug.conf is looked for.
class DebugConfTest : public testing::Test
{
protected:
    void SetUp() override { fs::current_path(m_directory.Path("")); }
    void TearDown() override { fs::current_path(fs::temp_directory_path()); }

    /// What a handle of the component X gets from the file.
    static Settings SettingsFrom(const std::string &configuration)
    {
        WriteFile("debug.conf", configuration);
        Handle handle = nullptr;
        const Status status = InitDebugHandle("X", &handle);
        Settings settings = handle ? Describe(*handle) : Settings();
        settings.status = status;
        UnInitDebugHandle(handle);
        return settings;
    }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(DebugConfTest, GivesEveryHandleWhatItsLinesSay)
{
    const std::string unused = "; no trace setting takes effect";
    const std::string form = "is not of the form NAME : KEY < VALUE >" + unused, text63(63, 'x');
    const struct
    {
        std::string configuration;
        Settings settings;
        std::string fault = "";
    } cases[] = {
        {"[GLOBAL]\r\n # comment\n\n[PACK AGES]\n#" + std::string(254, 'x') + "\r\n", {}},
        {"Y:TraceType<Al>\nX" + text63 + ":TraceType<Al>\n", {}},
        {" X : \vTrace\fType < En\tEx > behind #\r\nX:SyncFlag<Y>", {.levels = TRACE_ENTRY | TRACE_EXIT}},
        {"X:TraceType<EnNoEx>\nX:OutputType<Al>\nX:TraceFormatType<FnTd>\n",
         {.levels = TRACE_EXIT, .sinks = OUTPUT_ALL, .fields = FORMAT_FUNCTION | FORMAT_TAGS}},
        {"X:TraceType<PaWaInEr>\nX:OutputType<FiIn>\nX:TraceFormatType<LnTi>\n",
         {.levels = TRACE_ALL & ~(TRACE_ENTRY | TRACE_EXIT),
          .sinks = OUTPUT_FILE | OUTPUT_CUSTOM,
          .fields = FORMAT_LINE | FORMAT_TIME}},
        {"X:TraceType<En>\nX:OutputType<No>\nX:TraceType<>\nX:TraceFormatType<Al>\n", {.sinks = 0}},
        {"X:TraceType<Al>\nX:OutputType<Co>\nX:DebugFlagsType<SyTr>\n", {.levels = TRACE_ALL, .on = "sync threaded "}},
        {"X:DebugFlagsType<SyTrNoLoLg>\n", {.on = "locked log "}},
        {"X:TraceType<En>\nGlobal:TraceType<Er>\nGlobal:SyncFlag<Y>\nX:OutputType<CoFi>\n",
         {.levels = TRACE_ERROR, .sinks = OUTPUT_CONSOLE | OUTPUT_FILE, .on = "log globalSync "}},
        {"X:FileName<x.log>\nGlobal:FileName<all.log>\nGlobal:SyncFlag<y>\n", {.on = "log file globalFile "}},
        {"X:FileName<" + text63 + "/x.log>\n", {.on = "log file "}},
        {"Y:FileName<no/y>\n", {}, ", the log file \"no/y\" cannot be written; there are no traces of Y"},
        {"Global:FileName<>\n",
         {.status = Failed},
         ", the log file \"\" cannot be written; there are no traces at all"},
        {"\xEF\xBB\xBFX:TraceType<Al>\n", {.levels = TRACE_ALL}},
        // One bad line, and no setting counts.
        {"X:TraceType<Al>\nX:TraceType<EnE>\n", {}, ", line 2, holds a code of one character" + unused},
        {"X:TraceType<Al>\n\nX:OutputType<En>", {}, ", line 3, holds an unknown code" + unused},
        {"X:Colour<Al>\nX:TraceType<Al>\n", {}, ", line 1, holds an unknown key" + unused},
        {"X:TraceType<Al>\nX:TraceType<Al\n", {}, ", line 2, " + form},
        {"X:TraceType Al>\n", {}, ", line 1, " + form},
        {"X:TraceType<Al>\n#" + std::string(255, 'x'), {}, ", line 2, is longer than 255 characters" + unused},
    };
    for (const auto &[configuration, settings, fault] : cases)
    {
        EXPECT_EQ(SettingsFrom(configuration), settings) << configuration;
        const std::vector<std::string> faults = CheckDebugConf();
        EXPECT_EQ(faults.empty() ? "debug.conf" : faults.at(0), "debug.conf" + fault) << configuration;
    }
    EXPECT_TRUE(fs::exists(text63)); // of a file name that is too long 63 characters are kept
}

TEST_F(DebugConfTest, FileThatCannotBeReadIsToldAndHasNoSettings)
{
    const std::vector<std::string> unreadable = {"debug.conf cannot be read; no trace setting takes effect"};
    fs::create_directory("debug.conf");
    EXPECT_EQ(CheckDebugConf(), unreadable);
    fs::remove("debug.conf");
    // Opens, but its first byte cannot be read.
    std::error_code error;
    fs::create_symlink("/proc/self/mem", "debug.conf", error);
    EXPECT_TRUE(error || CheckDebugConf() == unreadable);
}

TEST_F(DebugConfTest, LinesGoToTheSinksOfTheirHandlesWithoutAllocating)
{
    WriteFile("all.log", "of an earlier run");
    WriteFile("debug.conf", "Global:FileName<all.log>\nGlobal:OutputType<CoFi>\nGlobal:SyncFlag<Y>\n"
                            "A:TraceType<EnEx>\nA:FileName<ab.log>\nA:DebugFlagsType<LgSy>\n"
                            "AB:TraceType<Er>\nAB:FileName<./ab.log>\nD:TraceType<Er>\nD:TraceFormatType<Td>\n"
                            "C:TraceType<Al>\nC:FileName<c.log>\nC:DebugFlagsType<No>\n");
    EXPECT_EQ(CheckDebugConf(), std::vector<std::string>());
    EXPECT_TRUE(ReadFile("all.log") == "of an earlier run" && !fs::exists("ab.log"));
    std::string name = "A";
    const Handle handles[] = {Open(name.c_str()), Open("AB"), Open("C"), Open("D")};
    name = "gone";
    testing::internal::CaptureStdout();
    for (const Handle handle : handles)
    {
        const auto trace = [handle]
        { return DebugTrace(handle, "F.cpp", "F", 7, TRACE_FAILURE, "%-300s", handle->componentName); };
        EXPECT_EQ(WithoutMemory(0, trace), Success);
    }
    const std::string fields = " Fn:F Ln:7 TS:# ", rest(253, ' '), error = "\n **ERROR** ";
    const std::string lineOfA = "\n <-- " + fields + "A " + rest, lineOfB = error + fields + "AB" + rest;
    const std::string lines = lineOfA + lineOfB + error + " <-- " + fields + "C " + rest + error + " D " + rest;
    EXPECT_EQ(Masked("all.log"), lines);
    EXPECT_EQ(Masked("ab.log"), lineOfA);
    UnInitDebugHandle(handles[0]);
    const unsigned char bytes[9] = {1, 2, 3, 4, 5, 6, 7, 8, 0xFF};
    const DebugHandle_t closed{.componentName = "A"};
    const auto trace = [](const DebugHandle_t *handle, const void *data, std::size_t length)
    { return DebugTraceValues(handle, TRACE_ERROR, data, length, "", "F", 9); };
    EXPECT_EQ(trace(nullptr, bytes, 9), Missing);
    EXPECT_EQ(trace(handles[1], nullptr, 9), Missing);
    EXPECT_EQ(trace(&closed, bytes, 9), NotFound);
    for (const std::size_t length : {0, 9})
        EXPECT_EQ(trace(handles[1], bytes, length), Success);
    for (const Handle handle : {handles[1], handles[2], handles[3]})
        UnInitDebugHandle(handle);
    const std::string banner =
        error + " Fn: Ln:0 TS:# " + std::string(29, ' ') + "--------------------Values------------------";
    const std::string values =
        banner + banner + RowOf(bytes) + "0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 " + RowOf(bytes + 8) + "0xff        ";
    EXPECT_EQ(Masked("all.log"), lines + values);
    EXPECT_EQ(Masked("ab.log"), lineOfA + lineOfB + values);
    EXPECT_EQ(ReadFile("c.log"), "");
    WriteFile("console", testing::internal::GetCapturedStdout());
    EXPECT_EQ(Masked("console"), Masked("all.log"));
}

TEST_F(DebugConfTest, IsReadAgainOnlyAfterTheLastRelease)
{
    WriteFile("debug.conf", "X:TraceType<bad>\n");
    Handle first = Open("Y"), other = Open("y"), empty = Open("");
    EXPECT_EQ(SettingsFrom("X:TraceType<Al>\n"), Settings());
    EXPECT_TRUE(Open("Y") == first && other != first && empty != first && first->refCount == 2);
    EXPECT_TRUE(first->state == 1 && first->mutex);
    DebugHandle_t closed{.componentName = "Y"};
    for (const Handle handle : {first, first, other, empty})
        EXPECT_EQ(UnInitDebugHandle(handle), Success);
    EXPECT_EQ(UnInitDebugHandle(&closed), Failed);
    EXPECT_EQ(UnInitDebugHandle(nullptr), Missing);
    EXPECT_EQ(InitDebugHandle("Y", nullptr), Missing);
    EXPECT_TRUE(InitDebugHandle(nullptr, &first) == Missing && !first);
    EXPECT_EQ(SettingsFrom("X:TraceType<Al>\nX:FileName<whose name takes memory.log>\n"),
              (Settings{.levels = TRACE_ALL, .on = "log file "}));
    // An open without memory gives no handle or a good one, and keeps nothing that failed.
    for (long succeeding = 0; succeeding < 12; ++succeeding)
    {
        Handle handle = nullptr;
        const Status status = WithoutMemory(succeeding, [&handle] { return InitDebugHandle("X", &handle); });
        EXPECT_EQ(handle != nullptr, status == Success) << succeeding;
        UnInitDebugHandle(handle);
    }
    char version[kDebugVersionSize] = {};
    EXPECT_EQ(GetDebugLibVersion(version), Success);
    EXPECT_EQ(GetDebugLibVersion(nullptr), Missing);
    EXPECT_EQ(std::string(version, kDebugVersionSize), std::string("02\00000\0"
                                                                   "0\0\0\0\0"
                                                                   "1001\0",
                                                                   kDebugVersionSize));
}

/// A bit that no mask has, and those that SetDebugFlag accepts without a flag behind them.
constexpr std::uint32_t kUnknownBit = 64, kNoFlags = 16 | 32;

constexpr TraceCallback_t kCallBack = [](std::uint32_t, const char *, std::uint32_t) { return Success; };

std::vector<Status> SetEverything(Handle handle)
{
    return {SetTraceType(handle, TRACE_WARN | kUnknownBit, true),
            SetOutputType(handle, OUTPUT_CONSOLE, false),
            SetTraceFormat(handle, FORMAT_TIME, false),
            SetPackageFile(handle, stdout),
            SetTraceCallback(handle, kCallBack),
            SetTraceCallbackMask(handle, 0),
            SetConsolePrint(handle, std::scanf),
            SetFilePrint(handle, std::fscanf),
            SetCustomPrint(handle, DebugHandle_t().consolePrint)};
}

std::vector<Status> SetAll(std::uint32_t mask)
{
    return {SetTraceTypeAll(mask, true), SetOutputTypeAll(mask, true), SetTraceFormatAll(mask, false)};
}

TEST_F(DebugConfTest, NameThatNoMutexCanHaveGivesAHandleAllTheSame)
{
    UnInitDebugHandle(Open("no\\such\\folder"));
}

TEST_F(DebugConfTest, SettingsWithoutEffectAreNamed)
{
    const std::string writer = "ModuleUIXMLWriter", ofWriter = " of " + writer + " has no effect: ";
    const struct
    {
        std::string configuration;
        std::vector<std::string> useless;
    } cases[] = {
        {"", {}},
        {"Global:TraceType<Er", {}}, // CheckDebugConf tells
        {"Global:TraceType<Er>\nGlobal:OutputType<Fi>\nGlobal:FileName<a>\nGlobal:SyncFlag<Y>", {}},
        {"Global:OutputType<Fi>\nXMLParser:TraceType<Er>\nXMLParser:FileName<a>", {}},
        {"Global:FileName<a>\nXMLParser:TraceType<Er>\nXMLParser:OutputType<Fi>", {}},
        {"Parser:TraceType<Er>\nParser:OutputType<Fi>",
         {"every setting of Parser has no effect: no component has this name"}},
        {"Global:OutputType<Co>", {"every setting of Global has no effect: there is no TraceType"}},
        {writer + ":OutputType<Fi>", {"every setting" + ofWriter + "there is no TraceType"}},
        {"Global:TraceType<Er>\n" + writer + ":TraceType<Al>", {"TraceType" + ofWriter + "Global sets it for all"}},
        {writer + ":TraceType<Er>\n" + writer + ":OutputType<CoFi>",
         {"code Fi in OutputType" + ofWriter + "there is no FileName"}},
        {writer + ":TraceType<Er>\n" + writer + ":FileName<a>", {"FileName" + ofWriter + "OutputType is without Fi"}},
        {writer + ":TraceType<Er>\n" + writer + ":FileName<a>\nGlobal:OutputType<Fi>\nGlobal:DebugFlagsType<Sy>",
         {"FileName" + ofWriter + "DebugFlagsType is without Lg"}},
        {"Global:TraceType<Er>\nGlobal:SyncFlag<Y>\n" + writer + ":SyncFlag<Y>",
         {"SyncFlag of Global has no effect: Global has no FileName", "SyncFlag" + ofWriter + "it is for Global only"}},
    };
    for (auto [configuration, useless] : cases)
    {
        WriteFile("debug.conf", configuration);
        for (std::string &text : useless)
            text.insert(0, "debug.conf, ");
        EXPECT_EQ(UselessDebugConfSettings(), useless) << configuration;
    }
}

TEST_F(DebugConfTest, SettersChangeWhatIsOpenAndNotLocked)
{
    const std::vector<Status> refused(9, NotFound), all(3, Success);
    DebugHandle_t closed{.componentName = "X"};
    EXPECT_EQ(SetEverything(&closed), refused);
    EXPECT_EQ(SetEverything(nullptr), std::vector<Status>(9, Missing));
    EXPECT_EQ(SetAll(TRACE_INFO), all);
    const Handle handle = Open("X"), locked = Open("Y");
    EXPECT_EQ(SetDebugFlag(locked, FLAG_LOCKED, true), Success);
    EXPECT_EQ(SetGlobalFileAll(stdout), Success);
    EXPECT_EQ(SetEverything(locked), refused);
    // Whether the bit 2 is a level, a sink or a field.
    EXPECT_EQ(SetAll(2), all);
    EXPECT_EQ(SetAll(kUnknownBit), std::vector<Status>(3, NotFound));
    // A level, but neither a sink nor a field.
    EXPECT_EQ(SetAll(TRACE_EXIT), (std::vector{Success, NotFound, NotFound}));
    Settings expected = {Success, TRACE_INFO | TRACE_EXIT, OUTPUT_CONSOLE | OUTPUT_FILE, FORMAT_ALL & ~FORMAT_LINE,
                         "log globalFile "};
    EXPECT_EQ(Describe(*handle), expected);
    EXPECT_EQ(Describe(*locked), Settings{.on = "locked log "});
    EXPECT_EQ(SetEverything(handle), std::vector<Status>(9, Success));
    EXPECT_EQ(SetGlobalFileAll(nullptr), Missing);
    EXPECT_EQ(SetPackageFile(handle, nullptr), Missing);
    EXPECT_EQ(SetDebugFlag(nullptr, kUnknownBit, true), Missing);
    EXPECT_EQ(SetTraceType(handle, kUnknownBit, true), NotFound);
    EXPECT_EQ(SetOutputType(handle, TRACE_EXIT, true), NotFound);
    EXPECT_EQ(SetTraceFormat(handle, TRACE_EXIT, true), NotFound);
    EXPECT_EQ(SetDebugFlag(handle, kUnknownBit, true), NotFound);
    EXPECT_EQ(SetDebugFlagAll(kNoFlags, true), NotFound);
    EXPECT_EQ(SetDebugFlag(handle, kNoFlags, true), Success);
    expected = {Success, TRACE_INFO | TRACE_EXIT | TRACE_WARN | kUnknownBit, OUTPUT_FILE, FORMAT_FUNCTION | FORMAT_TAGS,
                "log file globalFile consolePrint filePrint customPrint mask callback "};
    EXPECT_EQ(Describe(*handle), expected);
    // The first of several flags is set, in one order for one handle and in another for all.
    EXPECT_EQ(SetDebugFlag(handle, FLAG_SYNC_PACKAGE_FILE | FLAG_LOG_TO_PACKAGE_FILE, true), Success);
    EXPECT_EQ(SetDebugFlag(handle, FLAG_LOG_TO_PACKAGE_FILE | FLAG_THREADED | FLAG_LOCKED, false), Success);
    EXPECT_EQ(SetDebugFlag(handle, FLAG_THREADED | FLAG_LOCKED | kNoFlags, true), Success);
    EXPECT_EQ(SetDebugFlag(locked, FLAG_THREADED, true), Success);
    EXPECT_EQ(SetGlobalFileSyncAll(true), Success);
    expected.on = "sync threaded globalSync file globalFile consolePrint filePrint customPrint mask callback ";
    EXPECT_EQ(Describe(*handle), expected);
    EXPECT_EQ(Describe(*locked), Settings{.on = "locked threaded log globalSync "});
    EXPECT_EQ(SetDebugFlagAll(FLAG_SYNC_PACKAGE_FILE | FLAG_LOG_TO_PACKAGE_FILE, false), Success);
    EXPECT_EQ(SetDebugFlagAll(FLAG_LOCKED | FLAG_LOG_TO_PACKAGE_FILE, false), Success);
    EXPECT_EQ(SetTraceCallback(handle, nullptr), Success);
    expected.on = "threaded globalSync file globalFile consolePrint filePrint customPrint mask ";
    EXPECT_EQ(Describe(*handle), expected);
    EXPECT_EQ(Describe(*locked), Settings{.on = "threaded log globalSync "});
    UnInitDebugHandle(handle);
    UnInitDebugHandle(locked);
}

} // namespace
