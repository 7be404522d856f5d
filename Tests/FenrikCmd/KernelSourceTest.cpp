#include "KernelSource.h"

#include "FakeKernel.h"
#include "KernelError.h"
#include "KnobFile.h"

#include <filesystem>

using namespace TestSupport;

namespace
{

/// Four machines whose drivers have different habits.

/// Lists that end in ";", defaults, modifiers, an administrator, a reset.
const std::vector<FakeFile> kTarnmoor = {
    {"tarnmoor-wmi/attributes/BootMode/type", "enumeration\n"},
    {"tarnmoor-wmi/attributes/BootMode/display_name", "Boot Mode\n"},
    {"tarnmoor-wmi/attributes/BootMode/current_value", "UEFI\n"},
    {"tarnmoor-wmi/attributes/BootMode/default_value", "Legacy\n"},
    {"tarnmoor-wmi/attributes/BootMode/possible_values", "Legacy;UEFI;\n"},
    {"tarnmoor-wmi/attributes/BootMode/tarn_modifier", "[ReadOnlyIf:Security=High][SuppressIfNot:Fan=7]\n"},
    {"tarnmoor-wmi/attributes/BootMode/tarn_value_modifier", "Legacy[ForceIf:Security=Low];UEFI;\n"},
    {"tarnmoor-wmi/attributes/Fan/type", "integer\n"},
    {"tarnmoor-wmi/attributes/Fan/current_value", "-3\n"},
    {"tarnmoor-wmi/attributes/Fan/default_value", "0\n"},
    {"tarnmoor-wmi/attributes/Fan/min_value", "-10\n"},
    {"tarnmoor-wmi/attributes/Fan/max_value", "90\n"},
    {"tarnmoor-wmi/attributes/Fan/scalar_increment", "5\n"},
    {"tarnmoor-wmi/attributes/Security/type", "enumeration\n"},
    {"tarnmoor-wmi/attributes/Security/current_value", "Low\n"},
    {"tarnmoor-wmi/attributes/Security/possible_values", "Low;High;\n"},
    {"tarnmoor-wmi/attributes/pending_reboot", "0\n"},
    {"tarnmoor-wmi/attributes/reset_bios", "builtinsafe [factory] custom \n"},
    {"tarnmoor-wmi/authentication/Admin/is_enabled", "1\n"},
    {"tarnmoor-wmi/authentication/Admin/role", "BIOS-admin\n"},
    {"tarnmoor-wmi/authentication/Admin/mechanism", "password\n"},
    {"tarnmoor-wmi/authentication/Admin/min_password_length", "4\n"},
    {"tarnmoor-wmi/authentication/Admin/max_password_length", "32\n"},
    {"tarnmoor-wmi/authentication/Admin/current_password", ""},
};

/// No types and no defaults, older lists, names with "\", changes saved together.
const std::vector<FakeFile> kQuenlor = {
    {"quenlor/attributes/A\\B/current_value", "1\n"},
    {"quenlor/attributes/A\\B/possible_values", "1,0\n"},
    {"quenlor/attributes/Card/current_value", "Disable;[Optional:Disable,Enable]\n"},
    {"quenlor/attributes/Depth/current_value", "07\n"},
    {"quenlor/attributes/Depth/min_value", "0\n"},
    {"quenlor/attributes/Lid/current_value", "On;[Status:ShowOnly]\n"},
    {"quenlor/attributes/Numbers/current_value", "0x0\n"},
    {"quenlor/attributes/Numbers/possible_values", "0x1;0x0\n"},
    {"quenlor/attributes/pending_reboot", "1\n"},
    {"quenlor/attributes/save_settings", "single\n"},
    {"quenlor/attributes/debug_cmd", ""},
};

/// Names with blanks and brackets, ordered lists, texts with lengths.
const std::vector<FakeFile> kHearth = {
    {"hearth-cfg/attributes/Asset [1] Tag/type", "string\n"},
    {"hearth-cfg/attributes/Asset [1] Tag/current_value", " T\xE9"
                                                          "a\n\n"},
    {"hearth-cfg/attributes/Asset [1] Tag/min_length", "0\n"},
    {"hearth-cfg/attributes/Asset [1] Tag/max_length", "8\n"},
    {"hearth-cfg/attributes/Boot Order/type", "ordered-list\n"},
    {"hearth-cfg/attributes/Boot Order/current_value", "hdd;usb;net\n"},
    {"hearth-cfg/attributes/Boot Order/elements", "hdd;usb;net\n"},
    {"hearth-cfg/attributes/Fixed/type", "enumeration\n"},
    {"hearth-cfg/attributes/Fixed/current_value", "None\n"},
    {"hearth-cfg/attributes/Fixed/possible_values", "None;Some\n"},
    {"hearth-cfg/attributes/[odd]/type", "string\n"},
    {"hearth-cfg/attributes/[odd]/current_value", "x\n"},
};

/// Switches whose values are numbers, and values that cannot be read.
const std::vector<FakeFile> kGalda = {
    {"galda/attributes/BootMode/type", "enumeration\n"},    {"galda/attributes/BootMode/current_value", "9\n"},
    {"galda/attributes/BootMode/possible_values", "0;1\n"}, {"galda/attributes/Secret/type", "string\n"},
    {"galda/attributes/Secret/current_value", "x\n"},       {"galda/attributes/Strange/type", "something\n"},
    {"galda/attributes/Level/current_value", "01\n"},       {"galda/attributes/Level/possible_values", "Low;High\n"},
};

/// The settings in a line each: name, kind, value, default, choices, limits, marks.
std::string Describe(SettingsSource &source)
{
    std::string text;
    source.List(
        [&](const Setting &setting)
        {
            constexpr const char *kKinds[] = {"oneof", "checkbox", "numeric", "text"};
            const auto limit = [](const auto &number) { return number ? std::to_string(*number) : "-"; };
            text += setting.name + "|" + kKinds[static_cast<std::size_t>(setting.kind)] + "|" + setting.currentValue +
                    "|" + setting.defaultValue.value_or("-") + "|";
            for (const SettingChoice &choice : setting.choices)
                text += choice.text + "=" + std::to_string(choice.number) + " ";
            text += "|" + limit(setting.limits.minimum) + " " + limit(setting.limits.maximum) + " " +
                    limit(setting.limits.step) + " " + limit(setting.limits.minLength) + " " +
                    limit(setting.limits.maxLength) + "|" + (setting.isReadOnly ? "fixed" : "") +
                    (setting.state == SettingState::Locked   ? "locked"
                     : setting.state == SettingState::Hidden ? "hidden"
                                                             : "") +
                    setting.unreadable + "\n";
            return true;
        });
    return text;
}

TEST(KernelSource, TreesOfFourDriversAreRead)
{
    const TemporaryDirectory directory;
    const std::string root = directory.Path("class");
    for (const auto *const files : {&kTarnmoor, &kQuenlor, &kHearth, &kGalda})
        MakeTree(root, *files);
    std::filesystem::create_directories(directory.Path("class/no device"));
    std::filesystem::create_symlink("type", directory.Path("class/galda/attributes/Strange/current_value"));
    for (const char *const secret : {"galda/attributes/Secret", "hearth-cfg/attributes/Fixed"})
        std::filesystem::permissions(root + "/" + secret + "/current_value",
                                     secret[0] == 'h' ? std::filesystem::perms(0444) : std::filesystem::perms(0600));
    Configuration configuration;
    configuration.kernel.root = root;
    KernelSource source(configuration, [](const std::string & /*warning*/) {});
    EXPECT_EQ(source.Status(), "The BIOS interface is enabled; the settings come from the kernel's firmware attributes "
                               "(galda, hearth-cfg, quenlor, tarnmoor-wmi), writing is off.");
    EXPECT_EQ(Describe(source), "galda/BootMode|oneof|9|-|0=0 1=1 |- - - - -|\n"
                                "Level|text|01|-||- - - - -|\n"
                                "Secret|text|x|-||- - - - -|\n"
                                "Strange|text||-||- - - - -|Too many levels of symbolic links\n"
                                "Asset [1] Tag|text| T\xEF\xBF\xBD"
                                "a\n|-||- - - - 8|\n"
                                "Boot Order|text|hdd,usb,net|-||- - - - -|\n"
                                "Fixed|oneof|0x0|-|None=0 Some=1 |- - - - -|fixed\n"
                                "[odd]|text|x|-||- - - - -|fixed\n"
                                "A\\B|oneof|0x0|-|1=0 0=1 |- - - - -|\n"
                                "Card|oneof|0x0|-|Disable=0 Enable=1 |- - - - -|\n"
                                "Depth|numeric|0x7|-||0 - - - -|\n"
                                "Lid|text|On|-||- - - - -|fixed\n"
                                "Numbers|text|0x0|-||- - - - -|\n"
                                "tarnmoor-wmi/BootMode|oneof|0x1|0x0|Legacy=0 UEFI=1 |- - - - -|hidden\n"
                                "Fan|numeric|-3|0x0||-10 90 5 - -|\n"
                                "Security|oneof|0x0|-|Low=0 High=1 |- - - - -|\n");
    EXPECT_TRUE(source.ValuesNeedRights());
    EXPECT_EQ(source.Pending().remarks.front(), "The kernel does not tell which options wait for the restart. "
                                                "pending_reboot of quenlor is \"1\". pending_reboot of tarnmoor-wmi is "
                                                "\"0\".");
}

/// The exit code that Status ends with for what is below `root`.
ExitCode StatusOf(const std::string &root)
{
    Configuration configuration;
    configuration.kernel.root = root;
    try
    {
        KernelSource(configuration, [](const std::string & /*warning*/) {}).Status();
        return ExitCode::Success;
    }
    catch (const ToolError &error)
    {
        return error.Code();
    }
}

TEST(KernelSource, NothingToReadIsNoInterface)
{
    const TemporaryDirectory directory;
    EXPECT_EQ(StatusOf(directory.Path("none")), ExitCode::InterfaceDisabled);
    EXPECT_EQ(StatusOf(directory.Path("")), ExitCode::InterfaceDisabled);
    MakeTree(directory.Path(""), kGalda);
    EXPECT_EQ(StatusOf(directory.Path("")), ExitCode::Success);
}

TEST(KernelSource, UnreadableValuesAreSaidAndTheOthersGoOn)
{
    FakeKernel kernel(kTarnmoor);
    const std::pair<std::errc, const char *> cases[] = {{std::errc::permission_denied, "permission denied"},
                                                        {std::errc::invalid_argument, "refuses"},
                                                        {std::errc::io_error, "does not answer"},
                                                        {std::errc::device_or_resource_busy, "busy"}};
    for (const auto &[error, said] : cases)
    {
        kernel.readErrors["tarnmoor-wmi/attributes/Fan/current_value"] = error;
        const Configuration configuration;
        KernelSource source(
            configuration, [](const std::string & /*warning*/) {}, &kernel);
        const std::string text = Describe(source);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "Fan|numeric||0x0||-10 90 5 - -|", text);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, said, text);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "Security|oneof|0x0|", text);
    }
}

/// What became of a knob file.
struct Programmed
{
    ExitCode code = ExitCode::Success;
    std::string said;
    std::string warned;
};

Programmed Program(FakeKernel &kernel, const std::string &knobFile, Configuration configuration)
{
    Programmed programmed;
    configuration.isWritingAllowed = true;
    KernelSource source(
        configuration, [&](const std::string &warning) { programmed.warned = warning; }, &kernel);
    try
    {
        programmed.said =
            source.Program(ReadAssignments(knobFile, [&](const SettingVisitor &visit) { source.List(visit); }));
    }
    catch (const ToolError &error)
    {
        programmed.code = error.Code();
        programmed.said = error.what();
    }
    return programmed;
}

struct Writing
{
    const std::vector<FakeFile> &files;
    const char *knobFile;
    /// Which write fails, as FakeKernel::writeErrors has it, and how; nullptr for none.
    const char *failing;
    std::errc error;
    ExitCode code;
    const char *log;
    const char *said;
};

const std::string kAsset = "hearth-cfg/attributes/Asset [1] Tag/current_value";

const Writing kWritings[] = {
    {kHearth,
     "Asset [1] Tag=\xC3\xA9;\nBoot Order=net, usb,hdd",
     nullptr,
     {},
     ExitCode::Success,
     "Asset [1] Tag/current_value=\xC3\xA9 Boot Order/current_value=net;usb;hdd ",
     "2 options programmed;"},
    {kHearth,
     "Asset [1] Tag=",
     nullptr,
     {},
     ExitCode::Success,
     "Asset [1] Tag/current_value=\\n ",
     "1 options programmed;"},
    {kHearth, "Fixed=None", nullptr, {}, ExitCode::Success, "", "0 options programmed;"},
    {kHearth, "Fixed=0x1", nullptr, {}, ExitCode::BadInput, "", "line 1: Fixed: it is read-only"},
    {kHearth, "Boot Order=net,usb", nullptr, {}, ExitCode::BadInput, "", "each of them belongs into it"},
    {kHearth, "Boot Order=net,usb,usb", nullptr, {}, ExitCode::BadInput, "", "is there a second time"},
    {kHearth, "Asset [1] Tag=123456789", nullptr, {}, ExitCode::BadInput, "", "longer than 8 bytes"},
    {kHearth, "Asset [1] Tag=a\x01", nullptr, {}, ExitCode::BadInput, "", "not printable"},
    {kQuenlor, "Numbers=0x1", nullptr, {}, ExitCode::Success, "Numbers/current_value=0x1 ", "1 options programmed;"},
    {kQuenlor, "Numbers=0x2", nullptr, {}, ExitCode::BadInput, "", "line 1: Numbers: \"0x2\" is none of"},
    {kQuenlor,
     "A\\B=0\nCard=1\nDepth=7",
     nullptr,
     {},
     ExitCode::Success,
     "attributes/save_settings=bulk A\\B/current_value=0 Card/current_value=Enable attributes/save_settings=save ",
     "pending_reboot of quenlor is \"1\"."},
    {kQuenlor, "A\\B=0\nCard=1", "quenlor/attributes/save_settings=bulk", std::errc::operation_not_supported,
     ExitCode::Success, "attributes/save_settings=bulk A\\B/current_value=0 Card/current_value=Enable ",
     "2 options programmed;"},
    {kQuenlor, "A\\B=0\nCard=1", "quenlor/attributes/save_settings=save", std::errc::operation_not_permitted,
     ExitCode::CannotWrite,
     "attributes/save_settings=bulk A\\B/current_value=0 Card/current_value=Enable attributes/save_settings=save "
     "Card/current_value=Disable A\\B/current_value=1 attributes/save_settings=single ",
     "the settings of quenlor were not saved: not permitted"},
    {kQuenlor, "Depth=-1", nullptr, {}, ExitCode::BadInput, "", "-1 is less than the least number, 0"},
    {kGalda, "BootMode=0\nSecret=y", "galda/attributes/Secret/current_value=y", std::errc::invalid_argument,
     ExitCode::BadInput, "BootMode/current_value=0 Secret/current_value=y BootMode/current_value=9 ",
     "line 2: Secret: the firmware refuses the value; some settings can be changed in the setup alone; what had been "
     "written before was put back, nothing is changed"},
    {kGalda, "BootMode=0\nSecret=y", "galda/attributes/Secret/current_value=y", std::errc::device_or_resource_busy,
     ExitCode::CannotWrite, "BootMode/current_value=0 Secret/current_value=y BootMode/current_value=9 ",
     "restart the machine first"},
};

TEST(KernelSource, AssignmentsAreWrittenAllOrNone)
{
    for (const Writing &writing : kWritings)
    {
        SCOPED_TRACE(writing.knobFile);
        FakeKernel kernel(writing.files);
        if (writing.failing)
            kernel.writeErrors[writing.failing] = writing.error;
        const Programmed programmed = Program(kernel, writing.knobFile, {});
        EXPECT_EQ(programmed.code, writing.code);
        EXPECT_EQ(kernel.log, writing.log);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, writing.said, programmed.said);
    }
}

TEST(KernelSource, WhatCannotBePutBackOrReadBackIsNamed)
{
    FakeKernel kernel(kGalda);
    kernel.writeErrors = {{"galda/attributes/Secret/current_value=y", std::errc::io_error},
                          {"galda/attributes/BootMode/current_value=9", std::errc::io_error}};
    const Programmed stuck = Program(kernel, "BootMode=0\nSecret=y", {});
    EXPECT_EQ(stuck.code, ExitCode::CannotWrite);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "these could not be put back and stay changed: BootMode", stuck.said);

    FakeKernel deaf(kGalda);
    deaf.ignoresWrites = true;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "These show their old value still: BootMode.",
                        Program(deaf, "BootMode=0", {}).said);

    FakeKernel wilful(kGalda);
    wilful.changesCase = true;
    const Programmed other = Program(wilful, "BootMode=0", {});
    EXPECT_EQ(other.code, ExitCode::CannotWrite);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "took another value", other.said);
}

TEST(KernelSource, AnEndFromOutsideWaitsUntilAllIsPutBack)
{
    FakeKernel kernel(kGalda);
    kernel.endsWithWrite = true;
    const auto before = std::signal(SIGTERM, SIG_IGN);
    const Programmed ended = Program(kernel, "BootMode=0\nSecret=y", {});
    std::signal(SIGTERM, before);
    EXPECT_EQ(ended.code, ExitCode::CannotWrite);
    EXPECT_EQ(kernel.log, "BootMode/current_value=0 BootMode/current_value=9 ");
    EXPECT_PRED_FORMAT2(testing::IsSubstring,
                        "it was interrupted before Secret; what had been written before was put back", ended.said);
}

struct Barred
{
    const char *knobFile;
    /// Empty where it is taken.
    const char *said;
};

// BootMode is UEFI and hidden unless Fan is 7; Security is Low, which forces Legacy.
constexpr Barred kBarred[] = {
    {"BootMode=Legacy", "line 1: BootMode: it is hidden while Fan is not \"7\""},
    {"BootMode=UEFI", ""},
    {"Fan=8\nBootMode=Legacy", "Fan: 8 is not one of the steps of 5 from -10"},
    {"Fan=-11", "Fan: -11 is less than the least number, -10"},
    {"Security=High\nBootMode=Legacy", "BootMode: it is locked while Security is \"High\""},
    {"Fan=0x5\nSecurity=1", ""},
};

TEST(KernelSource, ConditionsAreJudgedBeforeAnythingIsWritten)
{
    const TemporaryDirectory directory;
    WriteFile(directory.Path("password"), "se;sam \n");
    std::filesystem::permissions(directory.Path("password"), std::filesystem::perms(0600));
    Configuration configuration;
    configuration.kernel.passwordFile = directory.Path("password");
    for (const Barred &barred : kBarred)
    {
        FakeKernel kernel(kTarnmoor);
        const Programmed programmed = Program(kernel, barred.knobFile, configuration);
        EXPECT_EQ(programmed.code, *barred.said ? ExitCode::BadInput : ExitCode::Success) << barred.knobFile;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, barred.said, programmed.said);
        EXPECT_EQ(*barred.said != '\0' && !kernel.log.empty(), false) << kernel.log;
    }
    const auto conditions = ParseConditions("Off[ForceIf:A b=C][ForceIfNot:D=E];\n On[ForceIf:F=G];[Unknown:H=I][x");
    ASSERT_EQ(conditions.size(), 3U);
    EXPECT_EQ(conditions[1].forced + conditions[1].other + conditions[1].value, "OffDE");
    EXPECT_EQ(conditions[2].forced, "On");
}

struct Login
{
    /// What is in the file, its mode, and what the driver wants.
    const char *password;
    int mode;
    const char *wanted;
    bool forgets;
    /// A write that fails, or nullptr.
    const char *failing;
    ExitCode code;
    const char *log;
    const char *said;
};

constexpr const char *kClear = "tarnmoor-wmi/authentication/Admin/current_password=\n";
constexpr Login kLogins[] = {
    {"sesam\n", 0600, "sesam", true, nullptr, ExitCode::Success,
     "Admin/current_password=sesam Fan/current_value=0 Admin/current_password=sesam Security/current_value=High "
     "Admin/current_password=\\n ",
     "2 options programmed;"},
    {"sesam\r\n", 0600, "sesam", false, kClear, ExitCode::Success,
     "Admin/current_password=sesam Fan/current_value=0 Admin/current_password=sesam Security/current_value=High "
     "Admin/current_password=\\n ",
     "2 options programmed;"},
    {"wrong", 0600, "sesam", false, nullptr, ExitCode::CannotWrite,
     "Admin/current_password=wrong Fan/current_value=0 Admin/current_password=\\n ",
     "the administrator password is wrong"},
    {"sesam", 0600, "sesam", false, "tarnmoor-wmi/authentication/Admin/current_password=sesam", ExitCode::CannotWrite,
     "Admin/current_password=sesam Admin/current_password=\\n ", "does not take the administrator password"},
    {"ses", 0600, "ses", false, nullptr, ExitCode::InterfaceDisabled, "", "has not a length"},
    {"", 0600, "sesam", false, nullptr, ExitCode::Unreadable, "", "lacks a line"},
    {"sesam", 0644, "sesam", false, nullptr, ExitCode::Unreadable, "", "chmod 600"},
    {nullptr, 0, "sesam", false, nullptr, ExitCode::InterfaceDisabled, "", "password-file"},
};

TEST(KernelSource, ThePasswordIsSentForEachWriteAndClearedInTheEnd)
{
    for (const Login &login : kLogins)
    {
        const TemporaryDirectory directory;
        Configuration configuration;
        if (login.password)
        {
            configuration.kernel.passwordFile = directory.Path("password");
            WriteFile(directory.Path("password"), login.password);
            std::filesystem::permissions(directory.Path("password"), std::filesystem::perms(login.mode));
        }
        FakeKernel kernel(kTarnmoor);
        kernel.password = login.wanted;
        kernel.forgetsPassword = login.forgets;
        if (login.failing)
            kernel.writeErrors[login.failing] = std::errc::invalid_argument;
        const Programmed programmed = Program(kernel, "Fan=0\nSecurity=High", configuration);
        EXPECT_EQ(programmed.code, login.code) << programmed.said;
        EXPECT_EQ(kernel.log, login.log);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, login.said, programmed.said);
        EXPECT_EQ(programmed.warned.empty(), login.failing != kClear) << programmed.warned;
        EXPECT_EQ((programmed.said + programmed.warned).find("sesam"), std::string::npos);
    }
}

TEST(KernelSource, WritingAndResetWantPermission)
{
    FakeKernel kernel(kQuenlor);
    Configuration configuration;
    KernelSource reader(
        configuration, [](const std::string & /*warning*/) {}, &kernel);
    EXPECT_THROW(reader.Program({}), ToolError);
    EXPECT_THROW(reader.Reset("factory"), ToolError);
    configuration.isWritingAllowed = true;
    EXPECT_THROW(KernelSource(configuration, {}, &kernel).Reset("factory"), ToolError);

    std::vector<FakeFile> files(kTarnmoor);
    files.resize(files.size() - 6);
    FakeKernel tarnmoor(files);
    KernelSource source(
        configuration, [](const std::string & /*warning*/) {}, &tarnmoor);
    for (const char *const word : {"", "[factory]", "factory custom", "../custom"})
        EXPECT_THROW(source.Reset(word), ToolError) << word;
    EXPECT_EQ(tarnmoor.log, "");
    EXPECT_EQ(source.Reset("custom"), "The settings of tarnmoor-wmi become \"custom\" with the next restart.");
    EXPECT_EQ(tarnmoor.log, "attributes/reset_bios=custom ");
}

TEST(NativeFolder, LeavesItsFolderInNoWay)
{
    const TemporaryDirectory directory;
    WriteFile(directory.Path("outside"), "x");
    std::filesystem::create_directories(directory.Path("root/folder"));
    std::filesystem::create_symlink("../outside", directory.Path("root/link"));
    const Platform::NativeFolder folder(directory.Path("root"));
    std::vector<Platform::FolderEntry> entries;
    for (const char *const path :
         {"../outside", "folder/../../outside", "/etc/hostname", "", ".", "folder//x", "link", "folder"})
    {
        EXPECT_TRUE(folder.Read(path).error) << path;
        EXPECT_TRUE(folder.Write(path, "y")) << path;
    }
    EXPECT_TRUE(folder.List("..", entries));
    EXPECT_EQ(ReadFile(directory.Path("outside")), "x");
}

/// The kernel's own class, where this machine has one; it is only read.
TEST(KernelSource, TheRealClassCanBeRead)
{
    const Configuration configuration;
    if (!std::filesystem::exists(configuration.kernel.root))
        GTEST_SKIP() << "no " << configuration.kernel.root;
    KernelSource source(configuration, [](const std::string & /*warning*/) {});
    if (StatusOf(configuration.kernel.root) == ExitCode::InterfaceDisabled)
        GTEST_SKIP() << "no device in " << configuration.kernel.root;
    EXPECT_NE(Describe(source), "");
}

} // namespace
