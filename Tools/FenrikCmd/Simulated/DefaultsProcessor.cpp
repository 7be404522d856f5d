#include "KnobTables.h"

namespace
{

constexpr Choice kCoreCounts[] = {{"All", 0},       {"2 cores", 2},   {"4 cores", 4},   {"8 cores", 8},
                                  {"12 cores", 12}, {"16 cores", 16}, {"24 cores", 24}, {"32 cores", 32}};
constexpr Choice kDeepestSleep[] = {
    {"No limit", 0xFF}, {"Run only", 0}, {"Halt", 1}, {"Halt, clock off", 2}, {"Core power off", 6}};
constexpr Choice kPackageSleep[] = {{"Auto", 0xFF}, {"Shallow", 0}, {"Retention", 2}, {"Deep", 6}};
constexpr Choice kSpeedGovernors[] = {
    {"Operating system", 0}, {"Hardware", 1}, {"Hardware, with hints", 2}, {"Fixed", 3}};
constexpr Choice kEnergyBias[] = {
    {"Performance", 0}, {"Leaning to performance", 4}, {"Neutral", 6}, {"Leaning to saving", 8}, {"Saving", 15}};
constexpr Choice kInterruptModes[] = {{"Compatible", 0}, {"Wide (x2)", 1}, {"Auto", 2}};
constexpr Choice kPageWalkSizes[] = {{"4 KiB", 0}, {"2 MiB", 1}, {"1 GiB", 2}};
constexpr Choice kUncoreSpeeds[] = {{"Auto", 0}, {"1.2 GHz", 12}, {"1.6 GHz", 16}, {"2.0 GHz", 20}, {"2.4 GHz", 24}};
constexpr Choice kCacheShares[] = {{"None", 0}, {"1/16", 1}, {"1/8", 2}, {"1/4", 4}, {"1/2", 8}};
constexpr Choice kLinkSpeeds[] = {
    {"Slow (bring-up)", 0}, {"8.0 GT/s", 1}, {"9.6 GT/s", 2}, {"10.4 GT/s", 3}, {"Fastest", 7}};
constexpr Choice kSnoopModes[] = {
    {"Source snoop", 0}, {"Home snoop", 1}, {"Directory", 2}, {"Directory & local cache", 3}};

constexpr KnobRow kCores[] = {
    OneOf("CpuSiblingThreads", "Sibling Threads", kDisabledEnabled, 1,
          "Lets every core run two threads. Disable it for software that is licensed or tuned per core."),
    OneOf("CpuCoresSocket0", "Active Cores, Socket 0", kCoreCounts, 0,
          "Number of cores that take part. The others stay powered off until the next restart."),
    OneOf("CpuCoresSocket1", "Active Cores, Socket 1", kCoreCounts, 0,
          "Number of cores that take part. At least one socket must keep core 0.", "HideIf(SocketCount < 2)"),
    Number("CpuCoreMaskSocket0", "Core Mask, Socket 0", 8, 0,
           "Bit n set takes core n out of service, whatever the number of active cores says. 0 leaves all in service."),
    Number("CpuCoreMaskSocket1", "Core Mask, Socket 1", 8, 0, "As for socket 0.", "HideIf(SocketCount < 2)"),
    OneOf("CpuInterruptMode", "Interrupt Controller Mode", kInterruptModes, 2,
          "\"Wide\" is needed for more than 255 threads. Older operating systems start in the compatible mode only."),
    Check("CpuLimitLeaf", "Limit the Identification Leaves", false,
          "Reports at most 3 leaves of processor identification, for operating systems that cannot cope with more."),
    Check("CpuFastStrings", "Fast String Operations", true,
          "Moves and stores of strings use whole cache lines. Disable it only to find memory ordering faults."),
    OneOf("CpuMachineCheck", "Machine Check", kDisabledEnabled, 1,
          "Reports hardware errors of the processor to the operating system."),
    Number("CpuMicroPatchMinimum", "Lowest Patch Level", 4, 0,
           "Does not start with a processor patch older than this one. 0 accepts any."),
    Check("CpuPatchFromDisk", "Take Patches from the System Partition", false,
          "Looks for a newer processor patch in \\FENRIK\\PATCH on the system partition."),
};

constexpr KnobRow kCaches[] = {
    OneOf("CpuFetchNextLine", "Next-Line Prefetch", kDisabledEnabled, 1,
          "Fetches the line after the one that missed. Helps sequential access, hurts random access."),
    OneOf("CpuFetchPair", "Line-Pair Prefetch", kDisabledEnabled, 1,
          "Fetches the other half of a 128-byte pair. Disable it when bandwidth is short."),
    OneOf("CpuFetchStride", "Stride Prefetch", kDisabledEnabledAuto, 2,
          "Learns constant distances between accesses of one instruction, up to 2 KiB."),
    OneOf("CpuFetchPage", "Next-Page Prefetch", kDisabledEnabledAuto, 2,
          "Translates the next page before a stream reaches it."),
    OneOf("CpuCacheForIo", "Cache Share for I/O", kCacheShares, 2,
          "Share of the last-level cache that devices may fill directly. \"None\" sends their data to memory."),
    Check("CpuCacheInclusive", "Inclusive Last Level", false,
          "Keeps a copy of every core's lines in the last level. Costs capacity, saves snoops."),
    OneOf("CpuCacheFlushOnSleep", "Flush Before Deep Sleep", kDisabledEnabledAuto, 2,
          "Writes the caches back before a package sleeps, so that a lost supply loses no data."),
    Number("CpuCacheWaysReserved", "Reserved Ways", 1, 0,
           "Ways of the last-level cache that are kept for real-time partitions (0 to 8)."),
};

constexpr KnobRow kVirtual[] = {
    OneOf("CpuVirtualMachines", "Virtual Machine Support", kDisabledEnabled, 1,
          "Hardware support for hypervisors. Locked until the next restart once it has been set."),
    OneOf("CpuIoRemap", "I/O Address Remapping", kDisabledEnabled, 1,
          "Gives every device its own address space. Needed to hand devices to virtual machines."),
    OneOf("CpuIoRemapEarly", "Remapping Before the Operating System", kDisabledEnabled, 0,
          "Blocks device access to memory while the firmware runs.", "GrayIf(CpuIoRemap == 0x0)"),
    OneOf("CpuIoInterruptRemap", "Interrupt Remapping", kDisabledEnabledAuto, 2,
          "Checks interrupts of devices against a table.", "GrayIf(CpuIoRemap == 0x0)"),
    OneOf("CpuNestedPages", "Largest Nested Page", kPageWalkSizes, 2,
          "Largest page that a hypervisor may use for its guests. Smaller ones are for debugging."),
    Check("CpuNestedGuests", "Guests May Nest", false, "Lets a guest run guests of its own."),
    Number("CpuGuestKeys", "Keys for Encrypted Guests", 2, 0,
           "Number of memory keys set aside for guests. Each takes 4 KiB; 0 switches guest encryption off.",
           "GrayIf(CpuVirtualMachines == 0x0)"),
};

constexpr KnobRow kCStates[] = {
    OneOf(
        "CpuSleepDeepest", "Deepest Core Sleep", kDeepestSleep, 0xFF,
        "No core goes deeper than this. \"Run only\" keeps all cores awake and is meant for latency tests below 5 µs."),
    OneOf("CpuSleepPackage", "Deepest Package Sleep", kPackageSleep, 0xFF,
          "Limit for the parts that all cores share. Deep sleep needs links that can be idle, too."),
    OneOf("CpuSleepHaltEnhanced", "Lower Voltage in Halt", kDisabledEnabled, 1,
          "Goes to the lowest speed and voltage when a core halts."),
    OneOf("CpuSleepDemotion", "Sleep Demotion", kDisabledEnabledAuto, 2,
          "Chooses a lighter sleep when recent ones were short."),
    OneOf("CpuSleepUndemotion", "Undo Demotion", kDisabledEnabled, 1,
          "Returns to what was asked for when sleeps become long again.", "GrayIf(CpuSleepDemotion == 0x0)"),
    Number("CpuSleepLatency", "Wake-Up Latency Limit [µs]", 2, 0x85,
           "Wake-up time that is reported to the operating system for the deepest sleep."),
    OneOf("CpuSleepMonitor", "Monitor & Wait Instructions", kDisabledEnabled, 1,
          "Lets the operating system name the sleep it wants. Without it all idling is plain halt."),
    Check("CpuSleepLogResidency", "Log Sleep Residency", false,
          "Keeps counters per sleep state that the validation tools read. Costs less than 0.1 %."),
};

constexpr KnobRow kPStates[] = {
    OneOf("CpuBoostClock", "Boost Clock", kDisabledEnabled, 1,
          "Lets cores run above their rated speed while power & temperature allow it."),
    Number("CpuBoostCeiling", "Boost Ceiling [MHz]", 2, 0xED8,
           "Highest speed of a single core. The processor's own limit stays in force.", "GrayIf(CpuBoostClock == 0x0)"),
    Number("CpuBoostBudget", "Boost Energy Budget [J]", 2, 0x78,
           "Energy that may be spent above the rated power before the clock falls back.",
           "GrayIf(CpuBoostClock == 0x0)"),
    OneOf("CpuSpeedGovernor", "Speed Control", kSpeedGovernors, 2,
          "Who chooses the speed of a core. \"Hardware, with hints\" listens to the operating system but decides "
          "itself."),
    OneOf("CpuEnergyBias", "Energy Bias", kEnergyBias, 6,
          "What the hardware prefers where it decides. Values between those listed can be set by software."),
    Number("CpuFixedSpeed", "Fixed Speed [MHz]", 2, 0x8FC, "Speed of all cores.", "GrayIf(CpuSpeedGovernor != 0x3)"),
    OneOf("CpuUncoreSpeed", "Mesh Speed", kUncoreSpeeds, 0,
          "Clock of everything in the package that is not a core. A fixed value makes measurements repeatable."),
    Check("CpuVectorSlowdown", "Slow Down for Wide Vectors", true,
          "Lowers the clock while 512-bit instructions run. Without it the current limit may be hit."),
    Number("CpuThermalMargin", "Thermal Margin [K]", 1, 0,
           "Starts to slow down this many kelvin below the limit of the processor."),
};

constexpr KnobRow kSockets[] = {
    OneOf("LinkSpeed", "Socket Link Speed", kLinkSpeeds, 7,
          "Speed of the links between sockets. \"Slow\" does without training and is for bring-up only."),
    OneOf("LinkHalfWidth", "Half Width at Low Load", kDisabledEnabled, 1,
          "Switches half of the lanes off when traffic stays below 10 %."),
    OneOf("LinkIdle", "Link Idle State", kDisabledEnabledAuto, 2, "Lets an idle link stop its clock."),
    OneOf("LinkSnoopMode", "Coherence Mode", kSnoopModes, 3,
          "How one socket learns what the other has cached. A directory saves traffic and costs memory bandwidth."),
    Check("LinkCrcLong", "Long Checksum", false,
          "Uses 32 instead of 16 check bits per flit. Lowers the usable bandwidth by about 3 %."),
    Number("LinkRetryLimit", "Retries Before Retraining", 1, 0x10,
           "Failed transfers in a row that make a link train anew."),
    Check("LinkClusters", "Two Memory Clusters per Socket", false,
          "Presents every socket as two nodes. Needs software that places its data."),
};

constexpr KnobPage kPages[] = {
    {"Processor/Cores & Threads", 2, kCores},     {"Processor/Caches & Prefetch", 2, kCaches},
    {"Processor/Virtual Machines", 2, kVirtual},  {"Advanced/Power/CPU C-States", 2, kCStates},
    {"Advanced/Power/CPU P-States", 2, kPStates}, {"Advanced/Socket Links", 2, kSockets},
};

} // namespace

constinit const std::span<const KnobPage> kProcessorPages = kPages;
