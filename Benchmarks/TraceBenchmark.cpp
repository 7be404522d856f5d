// What a trace call costs, disabled and enabled, beside spdlog and beside fprintf of the same text.

#include "DebugTrace.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <memory>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace
{

constexpr const char *kFunction = "CCXmlGetAttributeValue";

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

std::unique_ptr<std::FILE, CloseFile> NullFile()
{
    return std::unique_ptr<std::FILE, CloseFile>(std::fopen("/dev/null", "w"));
}

/// The call as it stands on the paths that run once per attribute.
void DisabledTrace(benchmark::State &state)
{
    TraceSource source("DisabledTrace", "xmlInterface");
    source.Open();
    TraceSource *global = &source;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(global);
        const FunctionTrace trace(*global, kFunction);
        TRACE(trace, TRACE_ENTRY, "Node %p, Attribute Name %s", static_cast<void *>(global), "name");
    }
}

/// The function itself, which tests the same out of line.
void DisabledTraceOutOfLine(benchmark::State &state)
{
    DebugHandle_t handle;
    DebugHandle_t *global = &handle;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(global);
        DebugTrace(global, "xmlInterface", kFunction, 1, TRACE_ENTRY, "Node %p, Attribute Name %s",
                   static_cast<void *>(global), "name");
    }
}

void DisabledSpdlog(benchmark::State &state)
{
    const auto logger = spdlog::basic_logger_st("disabled", "/dev/null");
    logger->set_level(spdlog::level::off);
    spdlog::logger *global = logger.get();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(global);
        global->trace("Node {}, Attribute Name {}", static_cast<void *>(global), "name");
    }
    spdlog::drop_all();
}

void TraceToFile(benchmark::State &state, bool sync)
{
    const auto file = NullFile();
    TraceSource source("TraceToFile", "xmlInterface");
    source.Open();
    DebugHandle_t *handle = nullptr;
    InitDebugHandle("TraceToFile", &handle);
    handle->traceType = TRACE_ALL;
    handle->outputType = OUTPUT_FILE;
    handle->packageFile = file.get();
    handle->syncPackageFile = sync;
    const FunctionTrace trace(source, kFunction);
    for (auto _ : state)
        TRACE(trace, TRACE_ENTRY, "Node %p, Attribute Name %s", static_cast<void *>(handle), "name");
    UnInitDebugHandle(handle);
}

void FprintfToFile(benchmark::State &state, bool sync)
{
    const auto file = NullFile();
    for (auto _ : state)
    {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        std::fprintf(
            file.get(), "\n --> %s%s%s%u%s%llu Node %p, Attribute Name %s", " Fn:", kFunction, " Ln:", 120U,
            " TS:", static_cast<unsigned long long>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count()),
            static_cast<void *>(file.get()), "name");
        if (sync)
            std::fflush(file.get());
    }
}

void SpdlogToFile(benchmark::State &state)
{
    const auto logger = spdlog::basic_logger_st("enabled", "/dev/null");
    logger->set_pattern("TS:%E%e %v");
    for (auto _ : state)
        logger->info("Fn:{} Ln:{} Node {}, Attribute Name {}", kFunction, 120, static_cast<void *>(logger.get()),
                     "name");
    spdlog::drop_all();
}

BENCHMARK(DisabledTrace);
BENCHMARK(DisabledTraceOutOfLine);
BENCHMARK(DisabledSpdlog);
BENCHMARK_CAPTURE(TraceToFile, buffered, false);
BENCHMARK_CAPTURE(FprintfToFile, buffered, false);
BENCHMARK(SpdlogToFile);
BENCHMARK_CAPTURE(TraceToFile, flushed, true);
BENCHMARK_CAPTURE(FprintfToFile, flushed, true);

} // namespace

BENCHMARK_MAIN();
