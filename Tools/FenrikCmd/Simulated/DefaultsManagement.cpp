#include "KnobTables.h"

namespace
{

constexpr Choice kBaudRates[] = {{"9600", 0}, {"19200", 1}, {"38400", 2}, {"57600", 3}, {"115200", 4}};
constexpr Choice kTerminals[] = {{"VT100", 0}, {"VT100+", 1}, {"VT-UTF8", 2}, {"ANSI", 3}};
constexpr Choice kFlowControls[] = {{"None", 0}, {"RTS/CTS", 1}, {"XON/XOFF", 2}};
constexpr Choice kParities[] = {{"None", 0}, {"Even", 1}, {"Odd", 2}};
constexpr Choice kBmcAddresses[] = {{"Static", 0}, {"From the network", 1}, {"Off", 2}};
constexpr Choice kBmcPorts[] = {{"Own port", 0}, {"Shared with LAN port 1", 1}, {"Own port, else shared", 2}};
constexpr Choice kWatchdogTimes[] = {{"Off", 0}, {"5 min", 5}, {"10 min", 10}, {"15 min", 15}, {"20 min", 20}};
constexpr Choice kOnExpiry[] = {{"Log only", 0}, {"Reset", 1}, {"Power cycle", 2}, {"Power off", 3}};
constexpr Choice kLogFull[] = {{"Stop logging", 0}, {"Overwrite the oldest", 1}};
constexpr Choice kLogLevels[] = {{"Errors", 0}, {"Warnings", 1}, {"Everything", 2}, {"Everything & bus traces", 3}};
constexpr Choice kTraceSinks[] = {{"None", 0}, {"Memory", 1}, {"Serial port", 2}, {"Memory & serial port", 3}};
constexpr Choice kStepStops[] = {
    {"Nowhere", 0}, {"Before memory", 1}, {"After memory", 2}, {"Before devices", 3}, {"Before the loader", 4}};
constexpr Choice kInjectTargets[] = {{"None", 0}, {"Memory, corrected", 1}, {"Memory, fatal", 2}, {"Link", 3}};
constexpr Choice kMargins[] = {{"Off", 0}, {"Reference voltage", 1}, {"Delay", 2}, {"Voltage & delay", 3}};

constexpr KnobRow kSerial[] = {
    OneOf("SerialConsole", "Serial Console", kDisabledEnabled, 1,
          "Sends the screen to the serial port & takes keys from it."),
    OneOf("SerialConsoleBaud", "Bits per Second", kBaudRates, 4, "Speed of the serial port.",
          "GrayIf(SerialConsole == 0x0)"),
    OneOf("SerialConsoleTerminal", "Terminal Type", kTerminals, 2, "How colours, keys & non-ASCII letters are coded.",
          "GrayIf(SerialConsole == 0x0)"),
    OneOf("SerialConsoleFlow", "Flow Control", kFlowControls, 0, "How the other side can stop the output for a while.",
          "GrayIf(SerialConsole == 0x0)"),
    OneOf("SerialConsoleParity", "Parity", kParities, 0, "Parity bit of every character."),
    Check("SerialConsoleAfterBoot", "Keep It After the Start", false,
          "Goes on until the operating system takes the port over."),
    Number("SerialPortAddress", "I/O Address", 2, 0x3F8, "Address of the serial port's registers."),
    Number("SerialPortInterrupt", "Interrupt", 1, 4, "Interrupt line of the serial port."),
};

constexpr KnobRow kController[] = {
    OneOf("BmcAddressSource", "Address", kBmcAddresses, 1, "Where the management controller gets its address from."),
    Text("BmcAddress", "IP Address", 39, "192.0.2.17", "Address of the controller.", "GrayIf(BmcAddressSource != 0x0)"),
    Text("BmcNetmask", "Netmask", 39, "255.255.255.0", "Netmask, or prefix length after a \"/\".",
         "GrayIf(BmcAddressSource != 0x0)"),
    Text("BmcGateway", "Gateway", 39, "192.0.2.1", "Router for all other networks.", "GrayIf(BmcAddressSource != 0x0)"),
    Text("BmcHostName", "Host Name", 63, "larkmoor-bmc", "Name of the controller in the network."),
    OneOf("BmcPort", "Network Port", kBmcPorts, 2, "Port through which the controller is reached."),
    Number("BmcVlan", "VLAN", 2, 0, "VLAN number from 1 to 4094; 0 sends untagged frames."),
    Check("BmcWebPage", "Web Page", true, "Offers the controller's web page on port 443."),
    Check("BmcUserDefault", "Account \"service\"", false,
          "Keeps the delivered account open. Close it before the machine leaves the lab."),
    OneOf("BmcRestorePolicy", "Settings After an Update", kNoYes, 1, "Keeps the controller's settings over an update."),
    Number("BmcSensorPeriod", "Sensor Period [ms]", 2, 0x3E8, "How often all sensors are read."),
};

constexpr KnobRow kWatchdogs[] = {
    OneOf("WatchdogFirmware", "Watchdog of the Self-Test", kWatchdogTimes, 10,
          "Time in which the self-test must end, or the action below is taken."),
    OneOf("WatchdogLoader", "Watchdog of the Loader", kWatchdogTimes, 0,
          "Time in which the operating system must report that it has started."),
    OneOf("WatchdogAction", "When a Watchdog Expires", kOnExpiry, 1, "Action of both watchdogs."),
    Number("WatchdogTries", "Tries Before the Fallback", 1, 3,
           "Expiries in a row after which the fallback firmware is started."),
    OneOf("EventLog", "Event Log", kDisabledEnabled, 1, "Records faults in the log of the management controller."),
    OneOf("EventLogFull", "When the Log Is Full", kLogFull, 1, "What happens to new events.",
          "GrayIf(EventLog == 0x0)"),
    OneOf("EventLogLevel", "Level", kLogLevels, 1, "What is recorded.", "GrayIf(EventLog == 0x0)"),
    Check("EventLogClear", "Clear at the Next Start", false, "Empties the log once.", "GrayIf(EventLog == 0x0)"),
    Number("EventLogRepeat", "Pause for Equal Events [s]", 2, 0x3C,
           "Equal events within this time are counted, not listed."),
    Text("EventLogCollector", "Collector", 64, "udp://log.lab.example:514", "Where events are sent as well."),
};

constexpr KnobRow kTrace[] = {
    OneOf("TraceSink", "Trace Output", kTraceSinks, 1, "Where the firmware writes its trace."),
    Number("TraceMask", "Trace Mask", 4, 0x80000046, "One bit per component; the table is in the bring-up guide."),
    Number("TraceBuffer", "Trace Buffer [KiB]", 2, 0x100, "Memory for the trace. The oldest lines are overwritten."),
    OneOf("TraceStop", "Stop at", kStepStops, 0, "Waits at this step for a key on the serial port."),
    Check("TraceTimes", "Time Stamps", true, "Adds the time since power-on in µs to every line."),
    Number("TracePostCodeDelay", "Delay per Code [ms]", 2, 0, "Slows the start down so that codes can be read."),
    Check("TraceAsserts", "Stop on Failed Assertions", false, "Without it a failed assertion is only traced."),
};

constexpr KnobRow kInjection[] = {
    OneOf("InjectTarget", "Inject", kInjectTargets, 0,
          "Error that is injected once after the start. \"Memory, fatal\" ends the operating system at once."),
    Number("InjectAddress", "Address", 8, 0, "Physical address of a memory error. Must lie in installed memory.",
           "GrayIf(InjectTarget == 0x0)"),
    Number("InjectDelay", "After [s]", 2, 0x78, "Seconds from the start of the loader to the injection.",
           "GrayIf(InjectTarget == 0x0)"),
    OneOf("MarginTest", "Margin Test", kMargins, 0,
          "Finds at every start how far settings can be moved until errors appear."),
    Number("MarginSteps", "Steps", 1, 0x20, "Settings tried in each direction.", "GrayIf(MarginTest == 0x0)"),
    Number("MarginErrors", "Errors per Step", 4, 0x10, "Errors after which a step counts as failed (>= 1).",
           "GrayIf(MarginTest == 0x0)"),
    Text("MarginReport", "Report File", 60, "\\margins\\<date>.csv", "File on the system partition for the result.",
         "GrayIf(MarginTest == 0x0)"),
    Number("ValidationSeed", "Seed", 4, 0x1D4C5EED, "Start value of all random patterns, to repeat a run."),
    Number("ValidationLoops", "Restarts in a Row", 2, 0,
           "Restarts the machine so many times without starting a loader."),
};

constexpr KnobPage kPages[] = {
    {"Server Management/Serial Console", 8, kSerial},        {"Server Management/Controller", 8, kController},
    {"Server Management/Watchdogs & Events", 8, kWatchdogs}, {"Debug & Validation/Trace", 9, kTrace},
    {"Debug & Validation/Errors & Margins", 9, kInjection},
};

} // namespace

constinit const std::span<const KnobPage> kManagementPages = kPages;
