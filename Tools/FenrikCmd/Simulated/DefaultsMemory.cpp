#include "KnobTables.h"

namespace
{

constexpr Choice kMemSpeeds[] = {{"Auto", 0},      {"1866 MT/s", 1}, {"2133 MT/s", 2}, {"2400 MT/s", 3},
                                 {"2666 MT/s", 4}, {"2933 MT/s", 5}, {"3200 MT/s", 6}};
constexpr Choice kMirrorModes[] = {{"Disabled", 0}, {"All of memory", 1}, {"Below 4 GiB", 2}, {"As the OS asks", 3}};
constexpr Choice kSpareRanks[] = {{"None", 0}, {"One rank", 1}, {"Two ranks", 2}, {"Three ranks", 3}};
constexpr Choice kInterleave[] = {{"Auto", 0}, {"1-way", 1}, {"2-way", 2}, {"3-way", 3}, {"6-way", 6}};
constexpr Choice kMemTests[] = {
    {"None", 0}, {"Quick", 1}, {"Walking ones & zeros", 2}, {"Thorough (\"overnight\")", 3}};
constexpr Choice kRefreshRates[] = {{"Once", 0}, {"Twice", 1}, {"Four times", 2}, {"Once below 85 °C, else twice", 3}};
constexpr Choice kCommandRates[] = {{"Auto", 0}, {"1N", 1}, {"2N", 2}, {"3N", 3}};
constexpr Choice kPagePolicies[] = {{"Open", 0}, {"Closed", 1}, {"Adaptive", 2}};
constexpr Choice kTermination[] = {{"Auto", 0}, {"40 Ω", 1}, {"48 Ω", 2}, {"60 Ω", 3}, {"80 Ω", 4}, {"120 Ω", 5}};
constexpr Choice kHighLimits[] = {{"1 TiB", 0}, {"4 TiB", 1}, {"16 TiB", 2}, {"64 TiB", 3}};
constexpr Choice kLowWindow[] = {{"1 GiB", 1}, {"1.5 GiB", 2}, {"2 GiB", 3}, {"3 GiB", 4}};
constexpr Choice kPersistentModes[] = {{"As memory", 0}, {"As a block device", 1}, {"Mixed", 2}};

constexpr KnobRow kGeneral[] = {
    OneOf("MemSpeedCeiling", "Highest Memory Speed", kMemSpeeds, 0,
          "Upper limit of the transfer rate. \"Auto\" takes what all modules of a channel can do."),
    OneOf("MemTestAtStart", "Memory Test", kMemTests, 1,
          "Test that runs at every start. The thorough one takes about 40 s per GiB and is not meant for daily use."),
    Check("MemTestKeepsErrors", "Take Failing Rows Out of Use", true,
          "Rows in which a test found errors are replaced by spare ones, if the module has any left.",
          "GrayIf(MemTestAtStart == 0x0)"),
    OneOf("MemFastStart", "Reuse Training Results", kDisabledEnabled, 1,
          "Starts with the results of the last training while the same modules are found in the same slots."),
    OneOf("MemInterleaveChannels", "Channel Interleave", kInterleave, 0, "Spreads neighbouring lines over channels."),
    OneOf("MemInterleaveRanks", "Rank Interleave", kInterleave, 0,
          "Spreads neighbouring lines over the ranks of a channel."),
    OneOf("MemInterleaveSockets", "Socket Interleave", kDisabledEnabled, 0,
          "Spreads all of memory over the sockets. Only for software that knows nothing about nodes."),
    OneOf("MemPagePolicy", "Page Policy", kPagePolicies, 2,
          "How long a row stays open after an access. \"Closed\" suits random access."),
    OneOf("MemHighLimit", "Highest Address", kHighLimits, 2,
          "Addresses above it are not used, for devices that can address no more."),
    OneOf("MemLowWindow", "Device Window Below 4 GiB", kLowWindow, 3,
          "Room below 4 GiB that is kept for devices with 32-bit addresses."),
    Check("MemClearAtStart", "Clear Memory at Every Start", false,
          "Overwrites all memory with zeros before anything is loaded. Adds about 1 s per 64 GiB."),
};

constexpr KnobRow kTiming[] = {
    Check("MemTimingManual", "Set Timings by Hand", false,
          "Takes the values below instead of those that the modules ask for. A wrong value can keep the machine from "
          "starting; three failed starts switch this option off again."),
    Number("MemTimingRead", "Read Latency [clocks]", 1, 0x13, "Clocks from a read command to its first data.",
           "GrayIf(MemTimingManual == 0x0)"),
    Number("MemTimingActivate", "Activate to Read [clocks]", 1, 0x13,
           "Clocks between opening a row and reading from it.", "GrayIf(MemTimingManual == 0x0)"),
    Number("MemTimingPrecharge", "Precharge [clocks]", 1, 0x13, "Clocks that closing a row takes.",
           "GrayIf(MemTimingManual == 0x0)"),
    Number("MemTimingRowOpen", "Row Open Time [clocks]", 1, 0x2B, "Least time that a row stays open.",
           "GrayIf(MemTimingManual == 0x0)"),
    Number("MemTimingFourActivates", "Four-Activate Window [clocks]", 1, 0x1C,
           "Window in which at most four rows of a rank are opened.", "GrayIf(MemTimingManual == 0x0)"),
    Number("MemTimingRefresh", "Refresh Recovery [ns]", 2, 0x15E, "Time that a refresh keeps a rank busy.",
           "GrayIf(MemTimingManual == 0x0)"),
    OneOf("MemCommandRate", "Command Rate", kCommandRates, 0,
          "Clocks for which a command stays on the bus. Two modules per channel usually need 2N."),
    OneOf("MemTerminationRead", "Read Termination", kTermination, 0,
          "Termination of the modules that are not read from. ≥ 60 Ω is usual for one module per channel."),
    OneOf("MemTerminationWrite", "Write Termination", kTermination, 0, "Termination of the module that is written to."),
    Number("MemVoltage", "Module Voltage [mV]", 2, 0x4B0, "Supply voltage of the modules. 1200 mV is nominal."),
    Number("MemVoltageReferenceShift", "Reference Shift [steps]", 1, 0,
           "Moves the trained reference voltage, for margin tests. Values of 0x80 and above count downwards."),
};

constexpr KnobRow kReliability[] = {
    OneOf("MemMirror", "Mirroring", kMirrorModes, 0,
          "Keeps every line twice, on two channels. Halves the memory that it covers."),
    Number("MemMirrorPercent", "Mirrored Share [%]", 1, 0x14, "Share of memory above 4 GiB that is mirrored.",
           "GrayIf(MemMirror != 0x3)"),
    OneOf("MemSpareRanks", "Spare Ranks", kSpareRanks, 0, "Ranks per channel that stand by for one that fails.",
          "GrayIf(MemMirror != 0x0)"),
    OneOf("MemScrub", "Background Scrubbing", kDisabledEnabled, 1,
          "Reads all of memory in the background and repairs what can be repaired."),
    Number("MemScrubInterval", "Scrub Interval [h]", 1, 0x18, "Time in which all of memory is scrubbed once.",
           "GrayIf(MemScrub == 0x0)"),
    OneOf("MemScrubOnDemand", "Write Back Corrected Data", kDisabledEnabled, 1,
          "A read that was corrected writes the corrected line back."),
    Number("MemErrorThreshold", "Correctable Error Threshold", 2, 0x1F4,
           "Corrected errors of a rank in 24 h above which an event is logged. 1 logs each of them; 0 logs none."),
    Number("MemErrorLeak", "Error Bucket Leak [errors/h]", 2, 0x0A,
           "Corrected errors that are forgotten per hour, so that rare ones never reach the threshold."),
    OneOf("MemDeviceReplace", "Replace a Failing Chip", kDisabledEnabledAuto, 2,
          "Moves the data of one failing memory chip to the check bits & goes on with weaker protection."),
    OneOf("MemPoison", "Mark Bad Data", kDisabledEnabled, 1,
          "Data that cannot be repaired is marked and handed on; only its user is stopped, not the machine."),
    OneOf("MemRefreshRate", "Refresh Rate", kRefreshRates, 3,
          "More refreshes protect against disturbance by neighbouring rows & cost up to 4 % of the bandwidth."),
    Check("MemHammerGuard", "Guard Against Row Hammering", true,
          "Refreshes the neighbours of rows that are opened unusually often."),
    Check("MemParityRetry", "Repeat on Command Parity Error", true,
          "Repeats the commands that a module refused because of wrong parity, instead of stopping."),
};

constexpr KnobRow kPersistent[] = {
    OneOf("PmemMode", "Persistent Modules", kPersistentModes, 0, "How non-volatile memory modules are presented."),
    Number("PmemMemoryPercent", "Share Used as Memory [%]", 1, 0x64, "The rest is offered as a block device.",
           "GrayIf(PmemMode != 0x2)"),
    OneOf("PmemFlushOnPowerLoss", "Flush on Power Loss", kDisabledEnabled, 1,
          "Holds the supply for 10 ms & writes the queues out when mains power goes."),
    Number("PmemPowerBudget", "Power Budget per Module [W]", 1, 0x0F, "Average power of one module (10 to 18 W)."),
    Check("PmemLock", "Lock at Every Start", false, "Asks for a pass phrase before the contents can be read."),
};

constexpr KnobPage kPages[] = {
    {"Memory/General", 3, kGeneral},
    {"Memory/Timing/Clocks & Voltages", 3, kTiming},
    {"Memory/Reliability", 3, kReliability},
    {"Memory/Persistent Modules", 3, kPersistent},
};

} // namespace

constinit const std::span<const KnobPage> kMemoryPages = kPages;
