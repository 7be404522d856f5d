#include "DebugHandle.h"
#include "TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;
using TestSupport::TemporaryDirectory;
using TestSupport::WriteFile;

/// Works in a directory of its own, where debug.conf is looked for.
class DebugConfTest : public testing::Test
{
protected:
    void SetUp() override { fs::current_path(m_directory.Path("")); }
    void TearDown() override { fs::current_path(fs::temp_directory_path()); }

    /// What a handle of the component X gets from the file: "status traceType outputType traceFormat flags", the flags
    /// as the letters of those that are on.
    static std::string Settings(const std::string &configuration)
    {
        WriteFile("debug.conf", configuration);
        DebugHandle_t *handle = nullptr;
        const Status status = InitDebugHandle("X", &handle);
        std::string settings = std::to_string(status);
        if (!handle)
        {
            // The file is read again once a handle that it lets open has been the last.
            EXPECT_EQ(InitDebugHandle("other", &handle), StatusCode::Success);
            EXPECT_EQ(UnInitDebugHandle(handle), StatusCode::Success);
            return settings;
        }
        for (const std::uint64_t value : {handle->traceType, handle->outputType, std::uint64_t{handle->traceFormat}})
            settings += ' ' + std::to_string(value);
        settings += ' ';
        for (const auto &[flag, letter] :
             {std::pair(handle->syncPackageFile, 'S'), std::pair(handle->locked, 'L'), std::pair(handle->threaded, 'T'),
              std::pair(handle->logToPackageFile, 'P'), std::pair(handle->syncGlobalFile, 'G'),
              std::pair(handle->packageFile != nullptr, 'p'), std::pair(handle->globalFile != nullptr, 'g')})
            settings += flag ? std::string(1, letter) : "";
        EXPECT_EQ(UnInitDebugHandle(handle), StatusCode::Success);
        return settings;
    }

    TemporaryDirectory m_directory;
};

TEST_F(DebugConfTest, GivesEveryHandleWhatItsLinesSay)
{
    const std::string defaults = "1 0 1 15 P";
    const struct
    {
        std::string configuration;
        std::string settings;
    } cases[] = {
        {"", defaults},
        {"[GLOBAL]\r\n # comment\n\n[PACKAGES]\n", defaults},
        {"Y:TraceType<Al>\n", defaults},
        {" X : TraceType < En Ex > behind\r\n", "1 33 1 15 P"},
        {"X:TraceType<EnNoEx>\nX:OutputType<Al>\nX:TraceFormatType<FnTd>\n", "1 32 7 9 P"},
        {"X:TraceType<En>\nX:TraceType<>\n", "1 0 1 15 P"},
        {"X:TraceType<Al>\nX:DebugFlagsType<SyTr>\n", "1 63 1 15 ST"},
        {"X:DebugFlagsType<Al>\nX:SyncFlag<Y>\n", "1 0 1 15 SLTP"},
        {"X:TraceType<En>\nGlobal:TraceType<Er>\nGlobal:SyncFlag<Y>\nX:OutputType<CoFi>\n", "1 16 3 15 PG"},
        {"X:FileName<x.log>\nGlobal:FileName<all.log>\nGlobal:SyncFlag<no>\n", "1 0 1 15 Ppg"},
        {"X:FileName<no folder/x.log>\n", "5"},
        {"Y:FileName<no folder/y.log>\nX:TraceType<In>\n", "1 2 1 15 P"},
        // One bad line, and no setting counts.
        {"X:TraceType<Al>\nX:TraceType<E>\n", defaults},
        {"X:TraceType<Al>\nX:TraceType<Xx>\n", defaults},
        {"X:TraceType<Al>\nX:Colour<Al>\n", defaults},
        {"X:TraceType<Al>\nX:TraceType<Al\n", defaults},
        {"X:TraceType<Al>\nX TraceType<Al>\n", defaults},
        {"X:TraceType<Al>\nX:" + std::string(300, 'x') + "<Al>\n", defaults},
    };
    for (const auto &[configuration, settings] : cases)
        EXPECT_EQ(Settings(configuration), settings) << configuration;
    fs::remove("debug.conf");
}

TEST_F(DebugConfTest, IsReadAgainOnlyAfterTheLastRelease)
{
    WriteFile("debug.conf", "X:TraceType<bad>\n");
    DebugHandle_t *first = nullptr;
    ASSERT_EQ(InitDebugHandle("Y", &first), StatusCode::Success);
    EXPECT_EQ(Settings("X:TraceType<Al>\n"), "1 0 1 15 P");
    UnInitDebugHandle(first);
    EXPECT_EQ(Settings("X:TraceType<Al>\n"), "1 63 1 15 P");
}

} // namespace
