#!/usr/bin/env python3
"""check-real-machines.py BIOSCONFIG FENRIKCMD [--measure]: reports, updates and failures on the sources of real machines,
through biosconfig, the module and the external tool; each source has a function below. No machine's settings are touched:
the kernel's are a tree of plain files. With --measure it prints the processor time that the tool takes and tests
nothing."""
import json
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM, TOOL = (os.path.abspath(path) for path in sys.argv[1:3])
FORMATS = ("ui-xml", "log-xml", "log-html", "log-html-xml", "log-json", "ui-json")
OTHERS = 0o077
PASSWORD = "Sesam-öffne 7;x"
failures = 0


def check(holds, message):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", message)


class Machine:
    """A machine of its own with the tool on it, a host's tool directory, and everything traced."""

    def __init__(self, work, configuration):
        self.work = work
        self.place = work / "programs/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK"
        self.binary = self.place / "FenrikBinary/FenrikCmd.exe"
        self.binary.parent.mkdir(parents=True)
        shutil.copy(TOOL, self.binary)
        self.tool_directory = work / "tool"
        (self.tool_directory / "ModuleData").mkdir(parents=True)
        shutil.copy(ROOT / "Docs/Example/CapsList.json", self.tool_directory)
        (work / "debug.conf").write_text("Global : TraceType < Al >\nGlobal : OutputType < Al >\nGlobal : FileName < all.log >\n")
        self.said = ""
        self.configure(configuration)

    def configure(self, text):
        (self.binary.parent / "FenrikCmd.conf").write_text(text)

    def run(self, *command, **settings):
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith(("FENRIKCMD_", "BIOSCONFIG_")) and name != "NO_COLOR"}
        outcome = subprocess.run([str(word) for word in command], capture_output=True, text=True, cwd=self.work,
                                 stdin=subprocess.DEVNULL, env=environment, umask=0o022, **settings)
        self.said += outcome.stdout + outcome.stderr
        return outcome

    def biosconfig(self, command, *arguments):
        return self.run(PROGRAM, command, "--program-files", self.work / "programs", *arguments)

    def report(self, report_format, *further):
        path = self.work / f"report.{report_format}"
        outcome = self.biosconfig("report", "--tool-dir", self.tool_directory, "--format", report_format, "-o", path, *further)
        check(outcome.returncode == 0, f"the report {report_format}: {outcome}")
        return path.read_text()

    def tool(self, *arguments, **settings):
        return self.run(self.binary, *arguments, **settings)

    def files(self):
        """All that was written, by anybody, but what describes the machine."""
        return [path for path in self.work.rglob("*")
                if path.is_file() and path.name not in ("FenrikCmd.exe", "FenrikCmd.conf", "password", "CapsList.json")
                and "class" not in path.relative_to(self.work).parts]

    def check_secrets(self, *secrets):
        """No secret is in what was said or written, and what holds values is its owner's alone."""
        errors = (self.tool_directory / "Error.xml").read_text()
        check("<" in errors and (self.work / "all.log").stat().st_size > 1000, "nothing was recorded or traced")
        for secret in secrets:
            check(secret not in self.said, "a secret in the messages")
            for path in self.files():
                check(secret.encode() not in path.read_bytes(), f"a secret in {path}")

    def check_modes(self, *paths):
        for path in paths:
            found = [name for name in pathlib.Path(self.work).glob(path)]
            check(found, f"there is no {path}")
            for name in found:
                check(name.stat().st_mode & OTHERS == 0, f"others may read {name}")


def check_through(machine, before, template, after, option):
    """Reports in all formats, an update with a text template, what waits, the report again."""
    for report_format in FORMATS:
        text = machine.report(report_format)
        check(option in text and before in text, f"{report_format} does not show {option} as {before}:\n{text[:2000]}")
    (machine.work / "change.txt").write_text(template)
    outcome = machine.biosconfig("check", "change.txt")
    check(outcome.returncode == 0, f"check: {outcome}")
    outcome = machine.biosconfig("update", "change.txt", "--tool-dir", machine.tool_directory)
    check(outcome.returncode == 0, f"update: {outcome}")
    check(machine.tool("pending").returncode == 0, "pending")
    text = machine.report("ui-xml", "--timeout", "60")
    check(after in text, f"the report behind the update does not show {after}:\n{text[:2000]}")


def make_class(root, count=0):
    """A tree of the kernel's firmware attributes: a device with an administrator, or one with `count` settings."""
    settings = {
        "Boot Mode": {"type": "enumeration", "current_value": "UEFI native", "possible_values": "Legacy;UEFI native;",
                      "default_value": "Legacy", "display_name": "Boot Mode", "tarn_modifier": "[ReadOnlyIf:Security=High]"},
        "Security": {"type": "enumeration", "current_value": "Low", "possible_values": "Low;High"},
        "Fan": {"type": "integer", "current_value": "-3", "min_value": "-10", "max_value": "90", "scalar_increment": "1"},
        "Owner": {"type": "string", "current_value": "Prüfstand 4", "min_length": "0", "max_length": "32"},
        "Order": {"type": "ordered-list", "current_value": "hdd;usb;net", "elements": "hdd;usb;net"},
        "Fixed": {"type": "string", "current_value": "as it is"},
    }
    if count:
        settings = {f"Setting{number:03}": {"type": "enumeration", "current_value": "Enabled", "default_value": "Disabled",
                                            "possible_values": "Disabled;Enabled;", "display_name": f"Setting {number}"}
                    for number in range(count)}
    device = root / "tarnmoor-wmi"
    for name, files in settings.items():
        folder = device / "attributes" / name
        folder.mkdir(parents=True)
        for file, text in files.items():
            (folder / file).write_text(text + "\n")
        (folder / "current_value").chmod(0o444 if name == "Fixed" else 0o600)
    (device / "attributes/pending_reboot").write_text("0\n")
    if count:
        return
    administrator = device / "authentication/Admin"
    administrator.mkdir(parents=True)
    for file, text in {"is_enabled": "1\n", "role": "bios-admin\n", "mechanism": "password\n", "min_password_length": "4\n",
                       "max_password_length": "32\n", "current_password": ""}.items():
        (administrator / file).write_text(text)


def check_kernel(work):
    make_class(work / "class")
    value = lambda name: (work / "class/tarnmoor-wmi/attributes" / name / "current_value").read_text().strip()
    read_only = f"source = kernel\nroot = {work}/class\n"
    machine = Machine(work, read_only)
    password = work / "password"
    password.write_text(PASSWORD + "\n")
    password.chmod(0o600)
    check("kernel's firmware attributes (tarnmoor-wmi), writing is off" in machine.tool("fenrikstatus").stdout, "fenrikstatus")
    (work / "old.xml").write_text("a dump that all may read")
    for dump in ("new.xml", "old.xml"):
        machine.tool("savexml", work / dump)
    machine.check_modes("new.xml", "old.xml")
    check(machine.biosconfig("set", "Boot Mode=Legacy", "--tool-dir", machine.tool_directory).returncode != 0
          and value("Boot Mode") == "UEFI native" and "writing is off" in machine.said, "writing that is off")

    (machine.tool_directory / "ModuleData/Bios Options_UI_XML").write_text("an old report that all may read")
    machine.configure(read_only + "writing = yes\npassword-file = " + str(password) + "\n")
    check_through(machine, "UEFI native", "Boot Mode=Legacy\n;Fan=-7\n;Order=usb,net,hdd\n;Fixed=as it is", "Legacy", "Boot Mode")
    check((value("Boot Mode"), value("Fan"), value("Order")) == ("Legacy", "-7", "usb;net;hdd"), "what was written")
    check((work / "class/tarnmoor-wmi/authentication/Admin/current_password").read_bytes() == b"\n", "the password stays")

    for template, code in (("Security=High\n;Boot Mode=UEFI native", "condition-not-met"), ("Fan=91", "invalid-value"),
                           ("Fixed=other", "read-only"), ("Owner=" + "x" * 33, "invalid-value")):
        (work / "bad.txt").write_text(template)
        (work / "bad.ini").write_text(template.replace("\n;", "\n"))
        outcome = machine.biosconfig("check", "bad.txt", "--json")
        check(outcome.returncode != 0 and code in [error["code"] for error in json.loads(outcome.stdout)["errors"]],
              f"{template} is not refused: {outcome}")
        check(machine.tool("progknobsfromfile", work / "bad.ini").returncode == 1, f"the tool takes {template}")
    listed = {option["name"]: option for option in json.loads(machine.biosconfig("list", "--json").stdout)["options"]}
    check(listed["Fan"]["minimum"] == -10 and listed["Fan"]["value"]["number"] == -7 and listed["Fixed"]["readOnly"]
          and listed["Owner"]["maxLength"] == 32, f"what the list says: {listed}")
    shown = machine.biosconfig("show", "Fan").stdout
    check("number, 8 bytes, from -10 to 90" in shown, f"show: {shown}")
    machine.biosconfig("export", "-o", work / "all.txt")
    machine.biosconfig("list", "-o", work / "list.txt")
    check(machine.biosconfig("check", work / "all.txt").returncode == 0, "an export is not taken back")

    # A module that fails, with the password in play: the driver refuses it all.
    shutil.rmtree(work / "class/tarnmoor-wmi/attributes/Fan")
    (work / "bad.ini").write_text("Fan=1\n")
    outcome = machine.run(PROGRAM, "update", "--program-files", work / "programs", "--tool-dir", machine.tool_directory,
                          "--from", machine.place / "FenrikOutput.xml", work / "bad.ini")
    password.chmod(0o644)
    check(machine.biosconfig("set", "Owner=x", "--tool-dir", machine.tool_directory).returncode != 0, "a password that all may read")
    password.chmod(0o600)
    machine.configure(read_only + "damaged\n")
    outcome = machine.biosconfig("report", "--tool-dir", machine.tool_directory, "-o", work / "failed.xml")
    check(outcome.returncode != 0 and "is damaged, line 3" in outcome.stderr, f"a damaged configuration: {outcome}")
    machine.configure(read_only + "writing = yes\npassword-descriptor = 9\n")
    (work / "good.ini").write_text("Owner=y\n")
    with password.open() as stream:
        outcome = machine.tool("progknobsfromfile", work / "good.ini", preexec_fn=lambda: os.dup2(stream.fileno(), 9), close_fds=False)
    check(outcome.returncode == 0 and value("Owner") == "y", f"a password by descriptor: {outcome}")
    machine.check_secrets(PASSWORD)
    machine.check_modes("programs/*/*/*/FENRIK/FenrikOutput.xml", "programs/*/*/*/FENRIK/out/*", "tool/ModuleData/*", "report.*",
                        "all.txt", "list.txt")


def measure_kernel(work):
    make_class(work / "class", 500)
    machine = Machine(work, f"source = kernel\nroot = {work}/class\n")
    times = []
    for _ in range(10):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        machine.tool("savexml", work / "dump.xml")
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    print(f"kernel, 500 settings of 5 files: {1000 * min(times):.1f} ms of processor time (goal: below 50)")


SOURCES = {"kernel": (check_kernel, measure_kernel)}

for name, (check_source, measure_source) in SOURCES.items():
    with tempfile.TemporaryDirectory() as directory:
        os.environ["TMPDIR"] = tempfile.tempdir = directory + "/temporary"
        os.mkdir(tempfile.tempdir)
        work = pathlib.Path(directory) / name
        work.mkdir()
        (measure_source if "--measure" in sys.argv else check_source)(work)
    tempfile.tempdir = None
    del os.environ["TMPDIR"]
sys.exit(1 if failures else 0)
