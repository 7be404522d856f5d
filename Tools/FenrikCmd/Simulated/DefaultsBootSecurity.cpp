#include "KnobTables.h"

namespace
{

constexpr Choice kBootModes[] = {{"Legacy", 0}, {"UEFI", 1}, {"UEFI, then legacy", 2}};
constexpr Choice kStartDevices[] = {{"None", 0},           {"System disk", 1}, {"Flash drive A", 2},
                                    {"Network port 1", 3}, {"USB storage", 4}, {"Shell <built in>", 5}};
constexpr Choice kOnNoDevice[] = {{"Enter the setup", 0}, {"Try again", 1}, {"Restart", 2}, {"Stop & show code", 3}};
constexpr Choice kNumLock[] = {{"Off", 0}, {"On", 1}, {"As before", 2}};
constexpr Choice kScreens[] = {{"Messages", 0}, {"Picture", 1}, {"Picture & progress", 2}};
constexpr Choice kTpmStates[] = {{"Hidden", 0}, {"Present, off", 1}, {"Present, on", 2}};
constexpr Choice kTpmActions[] = {{"None", 0}, {"Clear", 1}, {"Clear & take ownership", 2}};
constexpr Choice kHashes[] = {{"SHA-256", 1}, {"SHA-384", 2}, {"SHA-256 & SHA-384", 3}};
constexpr Choice kSecureModes[] = {{"Setup", 0}, {"User", 1}, {"Audit", 2}, {"Deployed", 3}};
constexpr Choice kFlashGuards[] = {{"Open", 0}, {"Locked after start", 1}, {"Locked, signed updates only", 2}};
constexpr Choice kIntrusion[] = {{"Ignore", 0}, {"Log", 1}, {"Log & ask for password", 2}};
constexpr Choice kWipes[] = {{"Off", 0}, {"Once", 1}, {"At every start", 2}};

constexpr KnobRow kBootMode[] = {
    OneOf("BootMode", "Boot Mode", kBootModes, 1,
          "Which kind of boot loader is looked for. Secure boot needs \"UEFI\"; changing it may make an installed "
          "operating system unreachable."),
    OneOf("BootFast", "Fast Start", kDisabledEnabled, 0,
          "Starts only the devices that the last start needed. A press of the power button > 2 s starts them all."),
    OneOf("BootQuietScreen", "Start Screen", kScreens, 1, "What is shown while the machine starts."),
    Number(
        "BootPromptSeconds", "Time to Enter the Setup [s]", 1, 3,
        "How long the start waits for a key. 0 does not wait; the setup can then be entered from the boot menu only."),
    OneOf("BootNumLock", "Num Lock", kNumLock, 1, "State of the key after the start."),
    OneOf("BootOnNoDevice", "Without a Start Device", kOnNoDevice, 1, "What happens when no device could be started."),
    Number("BootRetrySeconds", "Retry After [s]", 2, 0x1E, "Pause before all devices are tried again.",
           "GrayIf(BootOnNoDevice != 0x1)"),
    Check("BootOnErrors", "Stop on Errors", false, "Waits for a key when the self-test found a fault."),
    Check("BootShellScript", "Run startup.nsh", false, "Lets the built-in shell run a script of this name by itself."),
};

constexpr KnobRow kBootOrder[] = {
    OneOf("BootDevice1", "First Device", kStartDevices, 1, "Device that is tried first."),
    OneOf("BootDevice2", "Second Device", kStartDevices, 3, "Device that is tried when the first one fails."),
    OneOf("BootDevice3", "Third Device", kStartDevices, 4, "Device that is tried when the second one fails."),
    OneOf("BootDevice4", "Fourth Device", kStartDevices, 5, "Device that is tried last."),
    OneOf("BootOnce", "Next Start Only", kStartDevices, 0,
          "Device for the next start; goes back to \"None\" afterwards."),
    Text("BootLabel", "Label of the System Disk", 24, "Fenrik Grundsystem", "Name that the boot menu shows."),
    Text("BootArguments", "Loader Arguments", 80, "console=ttyS0,115200 quiet mode=\"lab\"",
         "Handed to the loader that is started from the system disk. Quotes are passed on as they are."),
    Check("BootKeepForeign", "Keep Entries of Other Systems", true,
          "Does not remove boot entries whose disk was not found at this start."),
};

constexpr KnobRow kSecureBoot[] = {
    OneOf("SecureBoot", "Secure Boot", kDisabledEnabled, 0,
          "Starts only boot loaders with a signature that the key lists accept.", "GrayIf(BootMode != 0x1)"),
    OneOf("SecureBootMode", "Key Mode", kSecureModes, 1,
          "\"Setup\" accepts new keys without a signature; \"Deployed\" cannot be left without clearing all keys."),
    Check("SecureBootVendorKeys", "Use the Keys That Came with the Board", true,
          "Adds the maker's keys to the lists. Without it only your own keys count."),
    Check("SecureBootRestore", "Restore Keys at the Next Start", false, "Puts all four key lists back as delivered."),
    Check("SecureOptionRoms", "Check Option ROMs", true, "Runs only option ROMs with an accepted signature."),
    OneOf("SecureHash", "Measurement Hashes", kHashes, 1, "Hashes that are taken of everything that is started."),
};

constexpr KnobRow kTpm[] = {
    OneOf("TpmDevice", "Security Module", kTpmStates, 2, "Whether the security module on the board can be used."),
    OneOf("TpmAction", "Pending Action", kTpmActions, 0,
          "Carried out at the next start. Clearing makes everything sealed with the module unreadable.",
          "GrayIf(TpmDevice == 0x0)"),
    OneOf("TpmPresence", "Ask at the Machine", kNoYes, 1, "Actions that software asks for need a key press.",
          "GrayIf(TpmDevice == 0x0)"),
    Check("TpmMeasureSetup", "Measure the Setup", true, "Setup options become part of the measurements."),
    Check("TpmPlatformHierarchy", "Platform Hierarchy", true,
          "Leaves the platform hierarchy on for management software."),
};

constexpr KnobRow kPasswords[] = {
    Check("PasswordAtStart", "Ask at Every Start", false, "Asks for the user password before anything is started."),
    Check("PasswordAtSetup", "Ask Before the Setup", true, "Asks for a password before the setup is shown."),
    Number("PasswordMinimum", "Shortest Password", 1, 8, "Characters that a new password must have at least."),
    Number("PasswordAttempts", "Attempts", 1, 3, "Wrong passwords after which the machine must be switched off."),
    OneOf("FlashGuard", "Firmware Protection", kFlashGuards, 2, "Who may write the firmware while the machine runs."),
    Check("FlashDowngrade", "Allow Older Firmware", false, "Accepts an update that is older than what is installed.",
          "GrayIf(FlashGuard == 0x2)"),
    OneOf("IntrusionAction", "Opened Chassis", kIntrusion, 1, "What happens when the lid switch was released."),
    OneOf("MemoryWipe", "Wipe Memory on Request", kWipes, 1,
          "Whether memory is overwritten when the operating system did not end as it should."),
    Check("SmmLock", "Lock the Management Mode", true, "Closes the memory of the management mode before the start."),
    Check("DebugPort", "Debug Port", false,
          "Opens the debug port. It gives access to everything & is reported as such."),
    Text("SecurityNotice", "Notice Before Log-In", 120,
         "Property of the lab — use only with \"yellow card\" & training.",
         "Text that is shown before a password is asked for."),
};

constexpr KnobPage kPages[] = {
    {"Boot/Mode", 6, kBootMode},
    {"Boot/Order", 6, kBootOrder},
    {"Security/Secure Boot", 7, kSecureBoot},
    {"Security/Security Module", 7, kTpm},
    {"Security/Passwords & Protection", 7, kPasswords},
};

} // namespace

constinit const std::span<const KnobPage> kBootSecurityPages = kPages;
