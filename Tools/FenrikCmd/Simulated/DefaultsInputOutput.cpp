#include "KnobTables.h"

namespace
{

constexpr Choice kLinkGenerations[] = {
    {"Auto", 0}, {"Gen 1 (2.5 GT/s)", 1}, {"Gen 2 (5 GT/s)", 2}, {"Gen 3 (8 GT/s)", 3}, {"Gen 4 (16 GT/s)", 4}};
constexpr Choice kLinkWidths[] = {{"Auto", 0}, {"x1", 1}, {"x4", 2}, {"x8", 3}, {"x16", 4}};
constexpr Choice kSplits[] = {{"x16", 0}, {"x8 x8", 1}, {"x8 x4 x4", 2}, {"x4 x4 x8", 3}, {"x4 x4 x4 x4", 4}};
constexpr Choice kPayloads[] = {{"Auto", 0}, {"128 B", 1}, {"256 B", 2}, {"512 B", 3}};
constexpr Choice kIdleLinks[] = {{"Off", 0}, {"Light", 1}, {"Deep", 2}, {"Light & deep", 3}};
constexpr Choice kOptionRoms[] = {{"None", 0}, {"UEFI only", 1}, {"Legacy only", 2}, {"UEFI first, then legacy", 3}};
constexpr Choice kDiskModes[] = {{"Off", 0}, {"Single drives", 1}, {"RAID", 2}};
constexpr Choice kDiskSpeeds[] = {{"Auto", 0}, {"1.5 Gb/s", 1}, {"3 Gb/s", 2}, {"6 Gb/s", 3}};
constexpr Choice kSpinUps[] = {{"All at once", 0}, {"One by one", 1}, {"When first used", 2}};
constexpr Choice kRebuildRates[] = {{"Low (< 10 %)", 0}, {"Middle", 1}, {"High (> 50 %)", 2}};
constexpr Choice kUsbModes[] = {{"2.0 only", 0}, {"3.x", 1}, {"Auto", 2}};
constexpr Choice kUsbCharging[] = {{"Off", 0}, {"While running", 1}, {"Always", 2}};
constexpr Choice kNetBoot[] = {{"Off", 0}, {"IPv4", 1}, {"IPv6", 2}, {"IPv4, then IPv6", 3}};
constexpr Choice kWakeOnLan[] = {{"Off", 0}, {"Magic packet", 1}, {"Magic packet & password", 2}};
constexpr Choice kFirstDisplay[] = {
    {"Management controller", 0}, {"Slot 1", 1}, {"Slot 3", 2}, {"First one found", 0xF}};
constexpr Choice kResolutions[] = {{"800 × 600", 0}, {"1024 × 768", 1}, {"1280 × 1024", 2}, {"1920 × 1080", 3}};
constexpr Choice kSpeakers[] = {{"Mute", 0}, {"Errors only", 1}, {"Errors & \"ready\" tone", 2}};

constexpr KnobRow kSlots[] = {
    OneOf("PcieSlot1Speed", "Slot 1 Speed", kLinkGenerations, 0,
          "Highest speed at which slot 1 (x16, CPU 0) is trained."),
    OneOf("PcieSlot1Split", "Slot 1 Split", kSplits, 0,
          "Divides the 16 lanes of slot 1 for carriers that hold several devices."),
    OneOf("PcieSlot1Roms", "Slot 1 Option ROM", kOptionRoms, 1, "Which option ROM of a card in slot 1 is run."),
    OneOf("PcieSlot2Speed", "Slot 2 Speed", kLinkGenerations, 0,
          "Highest speed at which slot 2 (x8, CPU 0) is trained."),
    OneOf("PcieSlot2Roms", "Slot 2 Option ROM", kOptionRoms, 1, "Which option ROM of a card in slot 2 is run."),
    OneOf("PcieSlot3Speed", "Slot 3 Speed", kLinkGenerations, 0,
          "Highest speed at which slot 3 (x16, CPU 1) is trained."),
    OneOf("PcieSlot3Split", "Slot 3 Split", kSplits, 0, "Divides the 16 lanes of slot 3.",
          "GrayIf(PcieSlot3LinkWidth != 0x0)"),
    OneOf("PcieSlot3LinkWidth", "Slot 3 Width", kLinkWidths, 0,
          "Widest link that is trained, for cards that train badly."),
    OneOf("PcieSlot3Roms", "Slot 3 Option ROM", kOptionRoms, 1, "Which option ROM of a card in slot 3 is run."),
    OneOf("PcieSlot4Speed", "Slot 4 Speed", kLinkGenerations, 0,
          "Highest speed at which slot 4 (x4, chipset) is trained."),
    OneOf("PcieSlot4HotPlug", "Slot 4 Hot Plug", kDisabledEnabled, 0,
          "Keeps bus numbers & addresses free, so that a card can be put in while the machine runs."),
};

constexpr KnobRow kPcie[] = {
    OneOf("PciePayload", "Largest Payload", kPayloads, 0, "Largest packet that devices may send."),
    OneOf("PcieIdleLinks", "Idle Link States", kIdleLinks, 1,
          "Lets idle links save power. Wake-up takes up to 64 µs from the deep state."),
    OneOf("PcieRelaxedOrder", "Relaxed Ordering", kDisabledEnabledAuto, 2,
          "Lets writes of devices overtake each other where they say that it does no harm."),
    OneOf("PcieErrorReports", "Error Reporting", kDisabledEnabled, 1, "Reports link errors through the event log."),
    OneOf("PcieErrorCorrected", "Report Corrected Errors", kDisabledEnabled, 0,
          "Also reports errors that were corrected. A marginal link can fill the log.",
          "GrayIf(PcieErrorReports == 0x0)"),
    OneOf("PcieAbove4G", "Device Addresses Above 4 GiB", kDisabledEnabled, 1,
          "Lets 64-bit devices be placed above 4 GiB. Needed by accelerators with large windows."),
    OneOf("PcieResizeWindows", "Resizable Windows", kDisabledEnabledAuto, 2,
          "Lets devices show all of their memory at once.", "GrayIf(PcieAbove4G == 0x0)"),
    OneOf("PcieVirtualFunctions", "Virtual Functions", kDisabledEnabled, 1,
          "Gives bus numbers & addresses to the virtual functions of devices."),
    Number("PcieReservedBuses", "Bus Numbers Kept per Port", 1, 8, "Bus numbers kept free below a hot-plug port."),
    Number("PcieCompletionLimit", "Completion Time-Out [ms]", 2, 0x32,
           "How long a read may take before it counts as failed. Values < 10 are for error injection only."),
    Check("PcieCompliance", "Compliance Pattern", false,
          "Sends the test pattern on all ports without a device, for use with a test fixture & oscilloscope."),
};

constexpr KnobRow kDrives[] = {
    OneOf("DiskController1", "Disk Controller 1", kDiskModes, 1, "Mode of the controller of ports 0 to 7."),
    OneOf("DiskController2", "Disk Controller 2", kDiskModes, 1, "Mode of the controller of ports 8 to 13."),
    OneOf("DiskSpeed", "Highest Port Speed", kDiskSpeeds, 0, "Limits all ports, for long or poor cables."),
    OneOf("DiskSpinUp", "Spin-Up", kSpinUps, 1, "Order in which drives start. Together they draw about 2 A each."),
    Number("DiskSpinUpGap", "Gap Between Drives [ms]", 2, 0x7D0, "Time from one drive to the next.",
           "GrayIf(DiskSpinUp != 0x1)"),
    Check("DiskHealthCheck", "Check Drive Health at Start", true,
          "Asks every drive about its health & warns when one reports that it will soon fail."),
    Check("DiskHotPlugPort0", "Port 0 Hot Plug", true, "Drives on port 0 may be changed while the machine runs."),
    Check("DiskHotPlugPort1", "Port 1 Hot Plug", true, "Drives on port 1 may be changed while the machine runs."),
    Check("DiskFrozen", "Freeze Drive Passwords", true,
          "Refuses to set or change drive passwords once the operating system has been started."),
    OneOf("RaidRebuildRate", "Rebuild Priority", kRebuildRates, 1,
          "Share of the bandwidth that rebuilding a volume may take.", "GrayIf(DiskController1 != 0x2)"),
};

constexpr KnobRow kFlashDrives[] = {
    OneOf("FlashSlotA", "M.2 Slot A", kDisabledEnabled, 1, "Switches the slot on. Off also saves its standby power."),
    OneOf("FlashSlotB", "M.2 Slot B", kDisabledEnabled, 1, "Shares two lanes with disk ports 12 and 13."),
    OneOf("FlashSpeed", "M.2 Link Speed", kLinkGenerations, 0, "Highest speed of both slots."),
    Check("FlashSelfTest", "Self-Test at Start", false, "Runs the short self-test of every drive. Takes up to 2 min."),
    Number("FlashTimeout", "Ready Time-Out [s]", 1, 0x0A, "How long the firmware waits for a drive to become ready."),
    OneOf("FlashThrottle", "Thermal Throttling", kDisabledEnabledAuto, 2,
          "Lets the board slow drives down above 75 °C instead of leaving it to them."),
    Check("FlashVolumeManager", "Hot-Swap Volume Manager", false,
          "Puts the drives behind one controller that survives their removal. Needs a driver of its own."),
};

constexpr KnobRow kUsb[] = {
    OneOf("UsbFrontPorts", "Front Ports", kDisabledEnabled, 1, "Switches the two ports at the front."),
    OneOf("UsbRearPorts", "Rear Ports", kDisabledEnabled, 1, "Switches the four ports at the back."),
    OneOf("UsbInternalPort", "Internal Port", kDisabledEnabled, 1,
          "Switches the port on the board, as for a licence key."),
    OneOf("UsbSpeedMode", "Port Speed", kUsbModes, 2, "\"2.0 only\" helps with devices that do not train at 3.x."),
    OneOf("UsbCharging", "Charging", kUsbCharging, 1, "When the front ports supply charging current."),
    Check("UsbKeyboardEarly", "Keyboard Before the Operating System", true, "Makes USB keyboards work in the setup."),
    Check("UsbStorageBoot", "Start from USB Storage", true, "Offers USB drives as start devices.",
          "GrayIf(UsbRearPorts == 0x0)"),
    Number("UsbSettleTime", "Settle Time [ms]", 2, 0x64, "Wait after switching ports on, for slow devices."),
    Number("UsbPortMask", "Port Mask", 4, 0, "Bit n set switches port n off, whatever the other options say."),
};

constexpr KnobRow kNetwork[] = {
    OneOf("LanPort1", "LAN Port 1", kDisabledEnabled, 1, "Switches the first network port (1 Gb/s, shared)."),
    OneOf("LanPort2", "LAN Port 2", kDisabledEnabled, 1, "Switches the second network port (10 Gb/s)."),
    OneOf("LanBootPort1", "Network Boot, Port 1", kNetBoot, 1, "Protocols that are tried.", "GrayIf(LanPort1 == 0x0)"),
    OneOf("LanBootPort2", "Network Boot, Port 2", kNetBoot, 0, "Protocols that are tried.", "GrayIf(LanPort2 == 0x0)"),
    Number("LanBootRetries", "Network Boot Retries", 1, 3,
           "Attempts per port before the next start device. 255 never gives up."),
    Number("LanBootVlan", "VLAN for Network Boot", 2, 0, "VLAN number from 1 to 4094; 0 sends untagged frames."),
    Text("LanBootServer", "Boot Server URL", 96, "http://boot.lab.example/efi?rack=12&slot=7",
         "Address of the boot file, when it is not taken from the answer of the address server."),
    OneOf("LanWake", "Wake on LAN", kWakeOnLan, 1, "Lets a frame from the network start the machine."),
    Text("LanWakePassword", "Wake Password", 6, "", "Six characters that a waking frame must carry.",
         "GrayIf(LanWake != 0x2)"),
    Check("LanQuietLeds", "Dark Port LEDs", false, "Switches the LEDs of the network ports off."),
    Text("LanHostAlias", "Client Name", 32, "larkmoor-ü7", "Name that is sent when an address is asked for."),
};

constexpr KnobRow kGraphics[] = {
    OneOf("VideoFirst", "First Display", kFirstDisplay, 0, "Adapter that shows the start-up screens."),
    OneOf("VideoResolution", "Setup Resolution", kResolutions, 1, "Resolution of the setup pages."),
    Number("VideoMemory", "Shared Memory [MiB]", 2, 0x20, "Memory kept for the built-in adapter."),
    OneOf("VideoBuiltIn", "Built-In Adapter", kDisabledEnabledAuto, 2,
          "\"Auto\" switches it off when a card is found."),
    OneOf("AudioSpeaker", "Board Speaker", kSpeakers, 1, "When the speaker on the board sounds."),
    Check("AudioController", "Audio Controller", false, "Switches the controller at the front panel header."),
};

constexpr KnobPage kPages[] = {
    {"PCI Express/Slots", 4, kSlots},
    {"PCI Express/Links & Errors", 4, kPcie},
    {"Storage/Disks", 4, kDrives},
    {"Storage/Flash Drives", 4, kFlashDrives},
    {"USB/Ports", 4, kUsb},
    {"Network/Built-In Ports", 5, kNetwork},
    {"Graphics & Audio/Display & Speaker", 4, kGraphics},
};

} // namespace

constinit const std::span<const KnobPage> kInputOutputPages = kPages;
