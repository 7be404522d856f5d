// What becomes of a request, and of the files, when one call of the system fails.

#include "ErrorFile.h"
#include "FailingCalls.h"
#include "ModuleRequest.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>

namespace
{

using namespace TestSupport;

// Streams look at no error code of their reading, writing and closing.
const struct
{
    SystemCall call;
    std::vector<int> errors;
    /// Whether the file gets written all the same, where that is certain.
    std::optional<bool> isWritten;
} kFaults[] = {
    {SystemCall::Open, {EIO, EINTR, EMFILE, ENFILE, ESTALE, ENOMEM, ELOOP, EACCES}, {}},
    {SystemCall::Create, {EACCES, EROFS}, true},
    // A disk that takes no new file would not take the old one again either.
    {SystemCall::Create, {ENOSPC, EMFILE, EIO, EINTR}, false},
    {SystemCall::Read, {EBADF}, {}},
    {SystemCall::Write, {EBADF}, {}},
    {SystemCall::Sync, {EIO, ENOSPC}, {}},
    {SystemCall::Close, {EIO}, {}},
    {SystemCall::Rename, {EACCES, EBUSY, EIO}, true},
};

std::ptrdiff_t FilesIn(const std::string &folder)
{
    std::error_code error;
    return std::distance(std::filesystem::recursive_directory_iterator(folder, error), {});
}

/// Runs it with one call of the system failing after the other, those beyond the first dozen of a kind by steps unless
/// SWEEP_STEP asks for all. It makes calls for so many rows of the table.
template <typename Make>
void Sweep(Request &request, bool wantsEntry, int kindsOfFault, const Make &make)
{
    const int step = std::getenv("SWEEP_STEP") ? 1 : 97;
    const Seen whole = request.Run(make);
    ASSERT_EQ(whole.status, StatusCode::Success);
    const std::ptrdiff_t files = FilesIn(request.machine.HostFile(""));
    int kinds = 0, points = 0;
    for (const auto &[call, errors, isWritten] : kFaults)
    {
        int calls = 0;
        for (const int error : errors)
        {
            calls = 1;
            for (int position = 1; position <= calls; position += position < 12 ? 1 : step, ++points)
            {
                SCOPED_TRACE("call " + std::to_string(static_cast<int>(call)) + ", number " + std::to_string(position) +
                             ", error " + std::to_string(error));
                const auto makeWithFault = [&, call = call]
                {
                    FailCall(call, position, error);
                    const Status status = make();
                    calls = CallsSeen();
                    FailCall(call, 0, 0);
                    return status;
                };
                const Seen seen = request.Run(makeWithFault);
                Check(seen, whole, wantsEntry);
                EXPECT_LE(FilesIn(request.machine.HostFile("")), files);
                EXPECT_LE(FilesIn(request.machine.ToolFile("out")), 1);
                if (isWritten && position <= calls)
                {
                    EXPECT_EQ(seen.status == StatusCode::Success, *isWritten);
                }
            }
        }
        kinds += calls > 0 ? 1 : 0;
    }
    std::printf("%d faults\n", points);
    EXPECT_EQ(kinds, kindsOfFault);
}

TEST(SystemFaults, AreToldByAnInitialisation)
{
    Request request;
    Sweep(request, false, 3, [&] { return request.module.InitModule(request.caps, std::move(request.parameters)); });
}

TEST(SystemFaults, AreToldByAReport)
{
    for (const OutputKind kind : {OutputKind::UiXml, OutputKind::LogXml, OutputKind::LogHtml, OutputKind::LogHtmlXml,
                                  OutputKind::LogJson, OutputKind::UiJson})
    {
        SCOPED_TRACE(static_cast<int>(kind));
        Request request;
        request.machine.UseDump(ReadFile(TEST_DATA_DIRECTORY "SmallFirmware.xml"));
        EXPECT_EQ(InitModule(request.module, request.machine), StatusCode::Success);
        Sweep(request, true, 4, [&] { return request.module.GetData("all", &kind, &request.text); });
    }
}

TEST(SystemFaults, AreToldByAnUpdate)
{
    Request request;
    WriteFile(request.machine.HostFile("t.txt"), "BootFast=Enabled;BootMode=Legacy");
    Sweep(request, false, 8,
          [&] { return UpdateBiosSettings(std::move(request.path), request.text, std::move(request.parameters)); });
}

TEST(SystemFaults, LoseNoEarlierEntry)
{
    Request request;
    InitErrorFile(request.machine.HostDirectory().c_str(), "Error.xml");
    Sweep(request, false, 8, [] { return ReportError("Message", "Title", "Source", "1", "Date"); });
}

} // namespace
