#include "KnobTables.h"

namespace
{

constexpr Choice kLanguages[] = {{"English", 0}, {"Deutsch", 1}, {"Français", 2},
                                 {"Español", 3}, {"日本語", 4},  {"Português (Brasil)", 5}};
constexpr Choice kAfterPowerLoss[] = {{"Stay off", 0}, {"Last state", 1}, {"Power on", 2}};
constexpr Choice kDateFormats[] = {{"YYYY-MM-DD", 0}, {"DD.MM.YYYY", 1}, {"MM/DD/YYYY", 2}};
constexpr Choice kSetupLevels[] = {{"Basic", 0}, {"Advanced", 1}, {"Validation", 2}};
constexpr Choice kKeyboards[] = {{"US", 0}, {"UK", 1}, {"German", 2}, {"French", 3}, {"Nordic", 4}};
constexpr Choice kLedModes[] = {{"Off", 0}, {"On", 1}, {"Blink on fault", 2}, {"Blink < 1 Hz", 3}};
constexpr Choice kWatchdogActions[] = {{"None", 0}, {"Reset", 1}, {"Power cycle", 2}, {"Interrupt & log", 3}};
constexpr Choice kFanProfiles[] = {{"Quiet", 0}, {"Balanced", 1}, {"Performance", 2}, {"Full speed", 3}};
constexpr Choice kFanZones[] = {{"CPU", 0}, {"Memory", 1}, {"Inlet", 2}, {"Hottest of all", 3}};
constexpr Choice kPowerProfiles[] = {{"Efficiency", 0}, {"Balanced", 1}, {"Performance", 2}, {"Custom", 0xF}};
constexpr Choice kSupplyModes[] = {{"Load sharing", 0}, {"Hot standby", 1}, {"Redundant (N+1)", 2}};
constexpr Choice kWakeEdges[] = {{"Off", 0}, {"Rising edge", 1}, {"Falling edge", 2}};
constexpr Choice kVoltageSlopes[] = {{"Auto", 0}, {"0.5 mΩ", 1}, {"0.8 mΩ", 2}, {"1.1 mΩ", 3}};

constexpr KnobRow kMain[] = {
    OneOf("SetupLanguage", "Language of the Setup", kLanguages, 0,
          "Language in which the setup pages are shown. Texts that have no translation stay in English."),
    OneOf("SetupKeyboard", "Keyboard Layout", kKeyboards, 0,
          "Layout of the keyboard while the setup runs. The operating system is not told about it."),
    OneOf("SetupLevel", "Level of Detail", kSetupLevels, 1,
          "How many options the setup shows. \"Validation\" also shows those meant for board bring-up; they can leave "
          "a machine that does not start."),
    Check("SetupConfirmExit", "Confirm Leaving Without Saving", true,
          "Asks \"Discard changes?\" when the setup is left and something was changed."),
    OneOf("DateFormat", "Date Format", kDateFormats, 0, "Order of year, month and day on the setup pages."),
    Number(
        "ClockOffsetMinutes", "Clock Offset from UTC [min]", 2, 0x3C,
        "Difference between the real-time clock and UTC in minutes. Used for the time stamps of the event log only."),
    Check("ClockDaylight", "Daylight Saving Time", false,
          "Adds one hour to the shown time. The clock itself is not changed.", "HideIf(SetupLevel == 0x0)"),
};

constexpr KnobRow kIdentity[] = {
    Text("AssetTag", "Asset Tag", 32, "",
         "Free text of up to 32 bytes that inventory software finds in the system tables. Kept over firmware updates."),
    Text("SystemLocation", "Location", 48, "Lab 2, bench 11",
         "Where the machine stands. Shown on the main page and handed to the management controller."),
    Text("SystemOwner", "Owner", 32, "R&D <bring-up>",
         "Name or group that is responsible for this machine. May be left empty."),
    Number("BoardRevision", "Board Revision Override", 1, 0,
           "Revision that the firmware assumes instead of the one strapped on the board. 0 takes the strapped one."),
    Check("HideSerialNumbers", "Hide Serial Numbers", false,
          "Replaces serial numbers by \"-\" in the system tables, for machines that are shown in public."),
    OneOf(
        "ChassisLed", "Identify LED", kLedModes, 2,
        "Behaviour of the blue LED at the front. \"Blink < 1 Hz\" is meant for rooms in which fast blinking disturbs."),
};

constexpr KnobRow kPowerSupply[] = {
    OneOf(
        "AfterPowerLoss", "After a Power Loss", kAfterPowerLoss, 1,
        "What the machine does when mains power returns. \"Last state\" starts it only if it ran when power was lost."),
    Number(
        "PowerOnDelay", "Power-On Delay [s]", 1, 0,
        "Seconds to wait before a start after a power loss, so that a rack does not draw its inrush current at once."),
    Check("PowerOnDelayRandom", "Random Part of the Delay", false,
          "Adds up to 30 s, chosen anew each time, to the power-on delay.", "GrayIf(AfterPowerLoss == 0x0)"),
    OneOf("SupplyMode", "Power Supply Mode", kSupplyModes, 0,
          "How two or more power supplies work together. Hot standby saves some watts at low load; the second unit "
          "takes over within 10 ms."),
    Number("SupplyAlarmWatts", "Power Alarm [W]", 2, 0x320,
           "Input power above which an event is logged. 0 switches the alarm off."),
    Check("SupplyColdTest", "Test the Standby Supply Weekly", true,
          "Moves the load to the standby supply for one minute every week and logs the result.",
          "GrayIf(SupplyMode != 0x1)"),
    Number("PowerButtonHold", "Power Button Override [s]", 1, 4,
           "How long the button must be held until power is cut without asking the operating system."),
    OneOf("WakeOnRing", "Wake Pin Edge", kWakeEdges, 0, "Edge on the auxiliary wake pin that starts the machine."),
};

constexpr KnobRow kFans[] = {
    Number(
        "FanCurveProfile", "Fan Curve Number", 1, 1,
        "Curve that the fan controller loads: 1 to 4 are fixed, 5 to 8 can be written by the management controller."),
    OneOf("FanPolicy", "Fan Policy", kFanProfiles, 1,
          "Trade-off between noise and temperature. \"Full speed\" ignores all sensors."),
    OneOf("FanZoneFront", "Front Fans Follow", kFanZones, 3, "Sensors that the front fans answer to."),
    OneOf("FanZoneRear", "Rear Fans Follow", kFanZones, 0, "Sensors that the rear fans answer to."),
    Number("FanMinimumDuty", "Lowest Duty Cycle [%]", 1, 0x14,
           "The fans never run slower than this share of their full speed. Below 15 % some fans stop."),
    Check("FanStopAllowed", "Allow Fan Stop", false, "Lets fans stand still while all sensors are below 35 °C.",
          "GrayIf(FanPolicy == 0x3)"),
    OneOf("FanFailureAction", "On a Failed Fan", kWatchdogActions, 3,
          "What happens when a fan does not reach half of its expected speed for 10 s."),
    Number("ThermalTripInlet", "Inlet Alarm [°C]", 1, 0x2D, "Inlet temperature above which an event is logged."),
    Number("ThermalTripShutdown", "Shutdown Temperature [°C]", 1, 0x5F,
           "Board temperature at which the machine is switched off to protect it. Cannot exceed 105 °C."),
};

constexpr KnobRow kPowerPolicy[] = {
    OneOf("PowerProfile", "Power Profile", kPowerProfiles, 1,
          "Sets the options of this page together. \"Custom\" leaves each of them to you."),
    Number("PowerCapWatts", "Power Cap [W]", 2, 0,
           "Upper limit of what the machine draws, averaged over the window below. 0 means no limit."),
    Number("PowerCapWindow", "Averaging Window [ms]", 2, 0x3E8, "Time over which the power cap is averaged.",
           "GrayIf(PowerCapWatts == 0x0)"),
    OneOf("PowerCapHard", "Enforce the Cap at Once", kNoYes, 0,
          "Throttles within 1 ms when the cap is exceeded instead of waiting for the window to end."),
    OneOf(
        "VrLoadLine", "Load Line", kVoltageSlopes, 0,
        "Slope of the core voltage over the current. Lower values keep the voltage up under load; > 1 mΩ saves power."),
    OneOf("VrPhaseShedding", "Phase Shedding", kDisabledEnabledAuto, 2,
          "Switches off voltage regulator phases at light load. Costs a few µs when the load returns."),
    Number("VrCurrentLimit", "Current Limit [A]", 2, 0xFF,
           "Current at which the voltage regulator asks the processor to slow down."),
    Check("VrTelemetry", "Regulator Telemetry", true,
          "Lets software read voltage, current & temperature of each rail."),
};

constexpr KnobPage kPages[] = {
    {"Main", 0, kMain},
    {"Main/Identity", 0, kIdentity},
    {"Power & Thermal/Supply", 1, kPowerSupply},
    {"Power & Thermal/Fans/Curves & Limits", 1, kFans},
    {"Power & Thermal/Policy", 1, kPowerPolicy},
};

} // namespace

constinit const std::span<const KnobPage> kBoardPages = kPages;
