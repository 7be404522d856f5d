// Where the time of a report goes. The external tool is a program that does nothing; its dump lies ready.

#include "CopyingJSONWriter.h"
#include "GeneratedDump.h"
#include "KnobDump.h"
#include "Platform.h"
#include "ReportFormat.h"
#include "ToolProgram.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <libxml/parser.h>

namespace
{

namespace fs = std::filesystem;

constexpr const char *kToolSubdirectory = "Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK";
constexpr std::int64_t kSizes[] = {1000, 5000, 50000, 500000};

void WriteBytes(const fs::path &path, const std::string &bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// A machine with the tool's dump of so many options lying ready; gone again when the object is.
class Machine
{
public:
    explicit Machine(std::int64_t knobs)
        : m_root(fs::temp_directory_path() / ("biosconfig-benchmark-" + std::to_string(knobs))),
          m_tool(m_root / kToolSubdirectory)
    {
        fs::create_directories(m_tool / "FenrikBinary");
        fs::create_directories(m_root / "ModuleData");
        fs::copy_file("/bin/true", m_tool / "FenrikBinary/FenrikCmd.exe", fs::copy_options::overwrite_existing);
        WriteBytes(DumpPath(), GenerateDump(static_cast<std::size_t>(knobs)));
        WriteBytes(m_root / "CapsList.json", R"({"Tarnwell": {"CapabilityList": {"BIOS Options": [
            {"Name": "bios", "Description": "All options"}]}}})");
        setenv("ProgramFiles", m_root.c_str(), 1);
    }
    ~Machine() { fs::remove_all(m_root); }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

    std::string Directory() const { return m_root.string() + '/'; }
    std::string DumpPath() const { return m_tool / "FenrikOutput.xml"; }
    std::string ToolCommand() const { return '"' + (m_tool / "FenrikBinary/FenrikCmd.exe").string() + '"'; }

private:
    fs::path m_root;
    fs::path m_tool;
};

/// The two runs of the tool that belong to a report.
void RunTool(const Machine &machine)
{
    std::uint32_t exitCode = 0;
    for (const char *command : {" fenrikstatus", " savexml"})
        Platform::RunCommand(machine.ToolCommand() + command, exitCode);
}

double Seconds(const auto &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// The bare library call that the reading of a dump cannot do without.
void ParseAlone(benchmark::State &state)
{
    const std::string dump = GenerateDump(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        xmlFreeDoc(xmlReadMemory(dump.data(), static_cast<int>(dump.size()), nullptr, nullptr, XML_PARSE_RECOVER));
}

void ToolRuns(benchmark::State &state)
{
    const Machine machine(state.range(0));
    for (auto _ : state)
        RunTool(machine);
}

/// The dump from the file to the text that is parsed.
void ReadFile(benchmark::State &state)
{
    const Machine machine(state.range(0));
    std::string text;
    for (auto _ : state)
        Platform::ReadTextFile(machine.DumpPath(), text);
}

/// Reading, parsing and turning the tree into records, with one run of the tool.
void Records(benchmark::State &state)
{
    const Machine machine(state.range(0));
    std::string extra;
    biosConfigurationLibInit("", extra);
    for (auto _ : state)
    {
        KnobList knobs;
        readKnob(knobs, "");
        benchmark::DoNotOptimize(knobs);
    }
}

std::vector<std::string> MakeRows(std::int64_t count)
{
    std::vector<std::string> rows;
    for (std::int64_t index = 0; index < count; ++index)
        rows.push_back("\"Knob" + std::to_string(index) + "\", \"Level 2\", \"Link speed & width\", \"" +
                       std::string(180, 'd') + '"');
    return rows;
}

/// The calls of a report with its rows in groups of a hundred.
std::string RunWriter(ModuleDataWriter &writer, const std::vector<std::string> &rows)
{
    writer.Initialize("BIOS Options", "");
    writer.AddTab("Bios Options", "Name,Value,Prompt,Description");
    for (std::size_t index = 0; index < rows.size(); ++index)
    {
        if (index % 100 == 0)
            writer.AddGroup("Page");
        writer.AddRow(rows[index]);
    }
    std::string report;
    writer.CopyDataToBuffer(report);
    writer.UnInitialize();
    return report;
}

/// The writer alone, from the first row to the finished text.
void Writer(benchmark::State &state, OutputKind kind)
{
    const std::vector<std::string> rows = MakeRows(state.range(0));
    for (auto _ : state)
    {
        const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
        benchmark::DoNotOptimize(RunWriter(*writer, rows));
    }
}

/// A JSON writer beside one that copies wherever a part of the document is completed.
void WriterAgainstCopying(benchmark::State &state, OutputKind kind)
{
    const std::vector<std::string> rows = MakeRows(state.range(0));
    std::vector<double> movingTimes;
    std::vector<double> copyingTimes;
    for (auto _ : state)
    {
        const ModuleDataWriterOwner writer(CreateModuleDataWriter(kind));
        CopyingJSONWriter copying(kind);
        movingTimes.push_back(Seconds([&] { RunWriter(*writer, rows); }));
        copyingTimes.push_back(Seconds([&] { RunWriter(copying, rows); }));
        state.SetIterationTime(movingTimes.back());
    }
    state.counters["time_ratio"] = Median(movingTimes) / Median(copyingTimes);
}

void WriteFile(benchmark::State &state)
{
    const Machine machine(1);
    const std::string report(static_cast<std::size_t>(state.range(0)) * 300, 'x');
    for (auto _ : state)
    {
        Platform::TextFileWriter file;
        file.Open(machine.Directory() + "report");
        file.Write(report);
        file.Close();
    }
}

void Sizes(benchmark::internal::Benchmark *benchmark)
{
    for (const std::int64_t size : kSizes)
        benchmark->Arg(size);
    benchmark->Unit(benchmark::kMillisecond);
}

#define BENCHMARK_KIND(benchmark, kind) BENCHMARK_CAPTURE(benchmark, kind, OutputKind::kind)->Apply(Sizes)
BENCHMARK_KIND(WriterAgainstCopying, LogJson)->UseManualTime();
BENCHMARK_KIND(WriterAgainstCopying, UiJson)->UseManualTime();
BENCHMARK(ToolRuns)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadFile)->Apply(Sizes);
BENCHMARK(ParseAlone)->Apply(Sizes);
BENCHMARK(Records)->Apply(Sizes);
BENCHMARK_KIND(Writer, UiXml);
BENCHMARK_KIND(Writer, LogXml);
BENCHMARK_KIND(Writer, LogHtml);
BENCHMARK_KIND(Writer, LogHtmlXml);
BENCHMARK_KIND(Writer, LogJson);
BENCHMARK_KIND(Writer, UiJson);
BENCHMARK(WriteFile)->Apply(Sizes);

} // namespace

BENCHMARK_MAIN();
