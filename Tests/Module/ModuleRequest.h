#pragma once

#include "BiosConfiguration.h"
#include "ModuleSupport.h"

namespace TestSupport
{

/// What the host sees of a request.
struct Seen
{
    Status status = StatusCode::Failed;
    /// Of all data, in memory and in files.
    std::size_t hash = 0;
    std::vector<std::string> entries = {};
};

constexpr const char *kEarlierFile =
    "<?xml version=\"1.0\"?>\n<Tool Name=\"Tarnwell\"><Error><Message Name=\"Earlier\" "
    "Description=\"entry\"/></Error></Tool>\n";
constexpr const char *kEarlier = "Earlier / entry";

/// What a request is given and what it leaves, which is looked at when nothing fails any more.
struct Request
{
    void Prepare()
    {
        std::filesystem::remove(firmware);
        std::filesystem::remove_all(machine.ToolFile("out"));
        std::filesystem::remove_all(machine.HostFile("ModuleData"));
        std::filesystem::create_directory(machine.HostFile("ModuleData"));
        WriteFile(machine.HostFile("Error.xml"), kEarlierFile);
        parameters = {{"toolxmlpath", machine.HostDirectory()}};
        path = machine.HostFile("t.txt");
    }

    /// The capabilities, the report and its file, or the message and the programmed options.
    std::string Data() const
    {
        std::string inFile = text; // a report goes on without a file
        for (const auto &file : std::filesystem::directory_iterator(machine.HostFile("ModuleData")))
            Platform::ReadTextFile(machine.HostFile("ModuleData/" + file.path().filename().string()), inFile);
        return (caps.empty() ? "" : caps[0]->names[0]) + text + inFile +
               (std::filesystem::exists(firmware) ? ReadFile(firmware) : "");
    }

    void Forget()
    {
        for (const Cap *cap : caps)
            delete cap;
        caps = {};
        parameters = {};
        path = {};
        text = {};
    }

    /// Runs it, `make` being the call.
    template <typename Make>
    Seen Run(const Make &make)
    {
        Prepare();
        Seen seen;
        seen.status = make();
        seen.hash = std::hash<std::string>()(Data());
        EXPECT_TRUE(ReadFile(machine.HostFile("Error.xml")).ends_with("</Error></Tool>\n"));
        Forget();
        seen.entries = machine.Errors();
        return seen;
    }

    Machine &machine = Machine::Fresh();
    std::string firmware = machine.ToolFile("FenrikBinary/FenrikFirmware.json");
    BiosConfigModule module;
    std::vector<Cap *> caps = {};
    ParameterMap parameters = {};
    std::string path = {}, text = {};
};

/// Whether the host has got all of it or is told, by an entry where `wantsEntry`, and nothing recorded earlier is lost.
inline void Check(const Seen &seen, const Seen &whole, bool wantsEntry)
{
    ASSERT_FALSE(seen.entries.empty());
    EXPECT_EQ(seen.entries[0], kEarlier);
    const bool isWhole =
        seen.status == StatusCode::Success && seen.hash == whole.hash && seen.entries.size() >= whole.entries.size();
    const std::size_t fewer = seen.status == StatusCode::Success ? whole.entries.size() : wantsEntry ? 1 : 0;
    EXPECT_TRUE(isWhole || seen.entries.size() > fewer) << seen.status;
}

} // namespace TestSupport
