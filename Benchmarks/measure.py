#!/usr/bin/env python3
"""Measures what requests cost, and prints a table: each figure with its goal and whether it is met.

Programs that are compared take turns, request by request, so that both see the same machine; figures are medians of
processor time, never of the time on the clock.
"""

import argparse
import collections
import html
import json
import os
import pathlib
import re
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile

FORMATS = ["UiXml", "LogXml", "LogHtml", "LogHtmlXml", "LogJson", "UiJson"]
TOOL = "Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK"
COMPONENTS_TRACED = "Global : TraceType < Al >\nGlobal : OutputType < Fi >\nGlobal : FileName < trace.log >\n"
CAPABILITIES = """{"Tarnwell": {"CapabilityList": {"BIOS Options": [
    {"Name": "bios", "Description": "All options"}]}}}"""

Answer = collections.namedtuple("Answer", "microseconds peak")


class Server:
    """A program that makes one request for each line that it is sent."""

    def __init__(self, command, machine, directory=None):
        environment = dict(os.environ, ProgramFiles=str(machine.root))
        self.process = subprocess.Popen([str(word) for word in command], env=environment, cwd=directory, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.times = []
        self.peaks = []

    def request(self):
        self.process.stdin.write("\n")
        self.process.stdin.flush()
        words = self.process.stdout.readline().split()
        if len(words) != 2:
            sys.exit("a program gave no answer: " + " ".join(self.process.args))
        self.times.append(float(words[0]))
        self.peaks.append(int(words[1]))

    def forget_times(self):
        self.times = []

    @property
    def median(self):
        return statistics.median(self.times)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait()


class Machine:
    """A machine with the tool's dump of so many options lying ready. The tool is a program that does nothing."""

    def __init__(self, programs, parent, options):
        self.options = options
        self.root = pathlib.Path(parent) / str(options)
        tool = self.root / TOOL
        (tool / "FenrikBinary").mkdir(parents=True)
        (self.root / "ModuleData").mkdir()
        shutil.copy("/bin/true", tool / "FenrikBinary/FenrikCmd.exe")
        (self.root / "CapsList.json").write_text(CAPABILITIES)
        self.dump = tool / "FenrikOutput.xml"
        with open(self.dump, "wb") as dump:
            subprocess.run([programs / "MakeDump", str(options)], stdout=dump, check=True)


class Measurement:
    def __init__(self, programs, module, long_form, parent):
        self.programs = programs
        self.module = module
        self.long_form = long_form
        self.parent = parent
        self.machines = {}

    def machine(self, options):
        if options not in self.machines:
            self.machines[options] = Machine(self.programs, self.parent, options)
        return self.machines[options]

    def module_server(self, options, what, directory=None):
        machine = self.machine(options)
        return Server([self.programs / "ModuleRequests", self.module, f"{machine.root}/", what], machine, directory)

    def floor_server(self, options, what):
        machine = self.machine(options)
        return Server([self.programs / "HandWrittenRequests", machine.dump, self.floor_report(options), what], machine)

    def floor_report(self, options):
        return self.machine(options).root / "HandWritten"

    def expect_same_report(self, options, what):
        reports = list((self.machine(options).root / "ModuleData").iterdir())
        if len(reports) != 1 or reports[0].read_bytes() != self.floor_report(options).read_bytes():
            sys.exit(f"the module's report {what} of {options} options is not the hand-written one")
        reports[0].unlink()


class Table:
    def __init__(self):
        self.missed = 0

    @staticmethod
    def head():
        print(f"{'':58}{'figure':>9}{'goal':>9}  verdict", flush=True)

    def row(self, name, figure, goal, digits=2):
        if goal is None:
            print(f"{name:58}{figure:9.{digits}f}", flush=True)
            return
        met = figure <= goal
        self.missed += not met
        print(f"{name:58}{figure:9.{digits}f}{goal:9.{digits}f}  {'met' if met else 'MISSED'}", flush=True)


def first_requests(measurement, servers, options, what):
    """The first request of each: checks the bytes, and is no part of the times."""
    for server in servers:
        server.request()
        server.forget_times()
    measurement.expect_same_report(options, what)


def reports(measurement, table, what):
    """A format at 5,000 and 50,000 options, beside the hand-written report."""
    rounds = 15 if measurement.long_form else 5
    with measurement.module_server(5000, what) as small, measurement.floor_server(5000, what) as small_floor, \
         measurement.module_server(50000, what) as large, measurement.floor_server(50000, what) as large_floor:
        first_requests(measurement, [small, small_floor], 5000, what)
        first_requests(measurement, [large, large_floor], 50000, what)
        for _ in range(rounds):
            for server in [small, small_floor] * 3 + [large, large_floor]:
                server.request()
        table.row(f"{what}: 5,000 options / hand-written", small.median / small_floor.median, 0.65)
        table.row(f"{what}: 50,000 options / hand-written", large.median / large_floor.median, 0.85)
        table.row(f"{what}: per option, 50,000 / 5,000", large.median / small.median / 10, 1.10)
        table.row(f"{what}: microseconds per option at 5,000", small.median / 5000, None)
        for peer, other, options in (small, small_floor, "5,000"), (large, large_floor, "50,000"):
            table.row(f"{what}: peak memory at {options} / hand-written", peer.peaks[0] / other.peaks[0], 1.05)
        table.row(f"{what}: memory of two requests / of one, 50,000", large.peaks[1] / large.peaks[0], 1.02)
        table.row(f"{what}: kilobytes per option at 50,000", large.peaks[0] / 50000, None)


def many_options(measurement, table, what):
    """A format at 500,000 options, beside itself at 50,000."""
    rounds = 5 if measurement.long_form else 1
    with measurement.module_server(500000, what) as huge, measurement.module_server(50000, what) as large:
        for server in huge, large:
            server.request()
            server.forget_times()
        for _ in range(rounds):
            for server in [large] * 3 + [huge] + [large] * 3:
                server.request()
        table.row(f"{what}: per option, 500,000 / 50,000", huge.median / large.median / 10, 1.25)
        peak = huge.peaks[0]
    with measurement.floor_server(500000, what) as floor:
        floor.request()
        table.row(f"{what}: peak memory at 500,000 / hand-written", peak / floor.peaks[0], 1.05)
    measurement.expect_same_report(500000, what)
    next((measurement.machine(50000).root / "ModuleData").iterdir()).unlink()


def processor_seconds(command, answer):
    """The processor time of a whole program, from its start to its end."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, **answer)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def rows_of(text):
    return [html.unescape(row) for row in re.findall("<Row>(.*?)</Row>", text.decode())]


def cold_request(measurement, table):
    """A program that makes one request and ends, beside xsltproc."""
    machine = measurement.machine(50000)
    style = pathlib.Path(__file__).resolve().parent / "rows.xsl"
    xslt_output = machine.root / "xsltproc"
    os.environ["ProgramFiles"] = str(machine.root)
    module_command = [measurement.programs / "ModuleRequests", measurement.module, f"{machine.root}/", "UiXml"]
    xslt_command = ["xsltproc", "--huge", "-o", xslt_output, style, machine.dump]
    module_times = []
    xslt_times = []
    for _ in range(9 if measurement.long_form else 3):
        module_times.append(processor_seconds(module_command, {"input": b"\n", "stdout": subprocess.DEVNULL}))
        xslt_times.append(processor_seconds(xslt_command, {}))
    report = next((machine.root / "ModuleData").iterdir())
    if rows_of(report.read_bytes()) != rows_of(xslt_output.read_bytes()):
        sys.exit("xsltproc gives other rows than the module")
    report.unlink()
    table.row("UiXml: one cold request at 50,000 / xsltproc", statistics.median(module_times) /
              statistics.median(xslt_times), 0.43)


def containers(measurement, table):
    """The containers beside others that do the same work under the same lock."""
    pattern = "PushAndPop|Tree/(BSD|GTree)"
    seconds = "1.0" if measurement.long_form else "0.2"
    output = subprocess.run([measurement.programs / "ContainerBenchmark", f"--benchmark_filter={pattern}",
                             f"--benchmark_min_time={seconds}", "--benchmark_format=json"],
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    for run in json.loads(output.stdout)["benchmarks"]:
        work, own, other, count = run["name"].split("/")[:4]
        goal = 1.0 if own == "List" else 1.05
        table.row(f"{own}: {work} {int(count):,} / {other}", run["ratio"], goal)


def traces(measurement, table):
    """A request that traces everything to a file, beside one that traces nothing."""
    directory = measurement.machine(5000).root / "traced"
    directory.mkdir()
    (directory / "debug.conf").write_text(COMPONENTS_TRACED)
    with measurement.module_server(5000, "UiXml") as plain, measurement.module_server(5000, "UiXml", directory) as traced:
        for _ in range(40 if measurement.long_form else 15):
            plain.request()
            traced.request()
        lines = (directory / "trace.log").stat().st_size
        if lines < 1000000:
            sys.exit("the traced requests wrote no traces")
        table.row("UiXml: all traces to a file / none, 5,000", traced.median / plain.median, 2.0)
    shutil.rmtree(directory)


def template(measurement, table):
    path = measurement.machine(5000).root / "update.txt"
    path.write_text("".join(f"Knob{index:06}=0x{index % 7}\n;" for index in range(500000)))
    with measurement.module_server(5000, path) as server:
        for _ in range(7 if measurement.long_form else 3):
            server.request()
        table.row("update with a template of 500,000 lines, seconds", server.median / 1e6, 0.5)


def error_file(measurement, table):
    path = pathlib.Path(measurement.parent) / "Error.xml"
    with Server([measurement.programs / "ErrorFileRequests", path], measurement.machine(5000)) as server:
        server.request()
        one = path.read_bytes()
        entry = one[one.index(b"<Error>"):one.rindex(b"</Error>") + len(b"</Error>")]
        path.write_bytes(one.replace(entry, entry * 10000))
        server.request()
        server.forget_times()
        for _ in range(40 if measurement.long_form else 15):
            server.request()
        if path.read_bytes().count(b"<Error>") < 10000:
            sys.exit("the error file lost its entries")
        table.row("Error.xml of 10,000 entries: one more, milliseconds", server.median / 1e3, 10.0)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("programs", type=pathlib.Path, help="the folder with the measuring programs")
    parser.add_argument("--module", type=pathlib.Path, help="the module's file (that of the same folder)")
    parser.add_argument("--long", action="store_true", help="more turns, and more formats at 500,000 options")
    parser.add_argument("--only", default="", help="comma-separated parts")
    arguments = parser.parse_args()
    module = arguments.module or arguments.programs / "libBiosConfigModule.so"
    table = Table()
    with tempfile.TemporaryDirectory() as parent:
        measurement = Measurement(arguments.programs.resolve(), module.resolve(), arguments.long, parent)
        parts = {"reports": lambda: [reports(measurement, table, what) for what in FORMATS],
                 "many": lambda: [many_options(measurement, table, what) for what in ("LogHtml", "UiXml")],
                 "cold": lambda: cold_request(measurement, table),
                 "containers": lambda: containers(measurement, table),
                 "traces": lambda: traces(measurement, table),
                 "template": lambda: template(measurement, table),
                 "errors": lambda: error_file(measurement, table)}
        table.head()
        for name, part in parts.items():
            if not arguments.only or name in arguments.only.split(","):
                part()
    print(f"{table.missed} missed; load of the machine {os.getloadavg()[0]:.1f}")


main()
