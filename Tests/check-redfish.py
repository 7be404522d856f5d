#!/usr/bin/env python3
"""check-redfish.py FENRIKCMD BIOSCONFIG [--measure]: has the external tool work with a Redfish service that misbehaves in
one way at a time, and biosconfig and the module with the tool. With --measure it says instead what 5,000 settings cost
beyond their requests."""
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree

import redfish_service as redfish

TOOL, PROGRAM = (os.path.abspath(path) for path in sys.argv[1:3])
ROOT = pathlib.Path(__file__).resolve().parent.parent
FORMATS = ("ui-xml", "log-xml", "log-html-xml", "log-html", "log-json", "ui-json")
SETUP_WORD = "Quitte-Sieben"
TIMEOUT = 2
# Settings of a machine of which not the number matters: those with names of their own, and some more.
FEW = 30
failures = 0
# All that the tool, biosconfig and the module have said and written.
seen = []
tokens = []


def check(holds, message):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", message, flush=True)


class Place:
    """A folder with the tool in it, and what is configured there."""

    def __init__(self, folder, certificate):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(parents=True)
        shutil.copy(TOOL, self.folder)
        self.certificate = certificate
        self.credentials(f"{redfish.USER}\n{redfish.PASSWORD}\n")

    def credentials(self, text, name="credentials", mode=0o600):
        path = self.folder / name
        path.write_text(text)
        path.chmod(mode)

    def configure(self, service, **settings):
        lines = {"source": "redfish", "url": service.url, "credentials-file": "credentials", "ca-file": self.certificate.with_suffix(".crt"),
                 "writing": "yes", "timeout": TIMEOUT, **settings}
        text = "".join(f"{key} = {value}\n" for key, value in lines.items() if value is not None)
        (self.folder / "FenrikCmd.conf").write_text(text)

    def start(self, *arguments):
        return subprocess.Popen([self.folder / "FenrikCmd.exe", *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                cwd=self.folder)

    def run(self, *arguments):
        outcome = self.start(*arguments)
        output, messages = outcome.communicate(timeout=120)
        seen.append((arguments, output + messages))
        return outcome.returncode, output, messages

    def program(self, text):
        (self.folder / "knobs.ini").write_text(text)
        return self.run("progknobsfromfile", "knobs.ini")

    def dump(self):
        text = (self.folder / "dump.xml").read_text()
        seen.append(("dump", text))
        return {knob.get("name"): knob for knob in xml.etree.ElementTree.fromstring(text.encode()).iter("knob")}


def finish(service, what, sessions_left=0):
    """What holds after every run: nobody is logged in any more, and all requests were as they should be."""
    tokens.extend(service.tokens)
    check(len(service.sessions) == sessions_left, f"{what}: {len(service.sessions)} sessions are left")
    check(not service.violations, f"{what}: {service.violations}")


# The fault, the exit code of savexml, what it says, and how many settings it finds.
READING = [
    ("", 0, "saved", FEW + 1),
    ("401", 3, "the session has ended (try again) (status 401)", 0),
    ("403", 3, "the user may not do this (take a user who may configure components) (status 403)", 0),
    ("404", 2, "This is refused (status 404)", 0),
    ("503", 0, "saved", FEW + 1),
    ("503-always", 2, "the service is busy (try again later) (status 503)", 0),
    ("slow", 2, "the time for the answer is over", 0),
    ("half", 2, "the connection was closed", 0),
    ("too-long", 2, "the connection was closed", 0),
    ("too-short", 2, "for the settings is not JSON (byte", 0),
    ("not-json", 2, "for the settings is not JSON (byte 1)", 0),
    ("list", 2, "is no JSON object", 0),
    ("no-attributes", 2, "tells of no settings", 0),
    ("error-200", 2, "reading the settings failed", 0),
    ("registry-without-list", 0, "the registry of the settings is empty; all settings are texts", FEW),
    ("registry-empty", 0, "the registry of the settings is empty; all settings are texts", FEW),
    ("registry-missing", 0, "has no registry of its settings, UnitRegistry.v2_1_0; all settings are texts", FEW),
    ("registry-without-location", 0, "has no registry of its settings", FEW),
    ("registry-not-json", 2, "for the registry of the settings is not JSON", 0),
    ("registry-gzip", 0, "saved", FEW + 1),
    ("registry-gzip-broken", 2, "the answer is not compressed as it says", 0),
    ("registry-raw-gzip", 2, "for the registry of the settings is compressed and does not say so", 0),
    ("huge", 2, "the answer is longer than allowed", 0),
    ("no-sessions", 0, "saved", FEW + 1),
    ("sessions-full", 0, "saved", FEW + 1),
    ("redirect", 2, "gives a link that leads elsewhere", 0),
    ("redirect-here", 0, "saved", FEW + 1),
    ("redirect-loop", 2, "sends a request on in a way that is not followed", 0),
    ("link-elsewhere", 2, "gives a link that leads elsewhere", 0),
    ("two-systems", 3, "has several systems; name one in the configuration (system): Node-0, Node-1", 0),
    ("no-systems", 3, "has no system", 0),
    ("no-settings", 0, "saved", FEW + 1),
    ("settings-missing", 0, "saved", FEW + 1),
]


def check_reading(place, stranger):
    for fault, expected, said, count in READING:
        with redfish.Service(redfish.Machine(FEW), fault, place.certificate, stranger.url) as service:
            place.configure(service)
            (place.folder / "dump.xml").write_text("earlier")
            code, output, messages = place.run("savexml", "dump.xml")
            check(code == expected and said in output + messages, f"{fault or 'reading'}: {code}, {output}{messages}")
            if code == 0:
                knobs = place.dump()
                check(len(knobs) == count and (place.folder / "dump.xml").stat().st_mode & 0o777 == 0o600, f"{fault}: the dump has {len(knobs)}")
                waits = xml.etree.ElementTree.parse(place.folder / "dump.xml").find("biosknobs").get("pending")
                check(waits == (None if "settings" in fault else "0"), f"{fault}: {waits} wait")
            else:
                check((place.folder / "dump.xml").read_text() == "earlier", f"{fault}: the earlier dump is lost")
                check(messages.startswith("FenrikCmd.exe: ") and messages.count("\n") == 1, f"{fault}: {messages}")
            finish(service, fault)
    check(not stranger.requests, f"another host was asked: {stranger.requests}")


def check_dump(place):
    """What the dump makes of each kind of setting, and of the configuration."""
    expected = {
        "StartMode": {"setupType": "oneof", "prompt": "Start mode", "SetupPgPtr": "Start", "default": "0x1", "CurrentVal": "0x1", "PendingVal": "0x2",
                      "depex": "TRUE"},
        "SignedStart": {"setupType": "checkbox", "depex": "GrayIf(StartMode != 0x1)", "state": None},
        "FanFloor": {"setupType": "numeric", "SetupPgPtr": "Power/Fans & Limits", "default": "0x14", "CurrentVal": "0x23", "min": "20", "max": "100",
                     "step": "5"},
        "ThermalOffset": {"CurrentVal": "-5", "min": "-40", "default": "0x0", "PendingVal": None},
        "AssetLabel": {"setupType": "text", "CurrentVal": "Bay 7 / \"Ü\" <x>", "maxLength": "24"},
        "SetupWord": {"CurrentVal": "", "unreadable": "it is a secret", "PendingVal": None},
        "BoardSerial": {"readOnly": "TRUE"},
        "HiddenTrim": {"depex": "HideIf(QuietFans == 0x0 and FanFloor >= 0x1E)", "state": "hidden"},
        "AbsentRiser": {"CurrentVal": "", "unreadable": "the machine does not have it now"},
        "LooseFlag": {"setupType": "text", "CurrentVal": "true", "SetupPgPtr": "Firmware/Node-1"},
    }
    machine = redfish.Machine()
    machine.pending = {"StartMode": "BothWays", "SetupWord": SETUP_WORD, "ThermalOffset": "-5"}
    with redfish.Service(machine, "two-systems", place.certificate) as service:
        place.configure(service, system="Node-1", language="de")
        place.run("savexml", "dump.xml")
        knobs = place.dump()
        for name, attributes in expected.items():
            found = {key: knobs[name].get(key) for key in attributes}
            check(found == attributes or (name == "StartMode" and found == {**attributes, "prompt": "Startart"}), f"{name}: {found}")
        check(knobs["StartMode"].get("prompt") == "Startart", "the language")
        check([(option.get("text"), option.get("value")) for option in knobs["StartMode"].iter("option")] ==
              [("Compatible", "0x0"), ("Native", "0x1"), ("Both Ways", "0x2")], "choices")
        pages = [knob.get("SetupPgPtr") for knob in knobs.values()]
        check(len(set(pages)) == sum(page != before for page, before in zip(pages, [None, *pages])), "pages are scattered")
        check("\"Node-1\" (Invented 2S)" in place.run("fenrikstatus")[1], "the status")
        machine.messages = [redfish.message("PropertyValueConflict", "No.", "FanFloor"), redfish.message("Success", "Yes.", severity="OK")]
        code, output, _ = place.run("pending")
        check(code == 0 and "StartMode = 0x2\nNot applied at the last restart: FanFloor: the value does not go together" in output and
              output.endswith("1 options wait for the restart.\n"), f"pending: {output}")
        finish(service, "dump")


MANY = f"StartMode = Both Ways\nFanFloor = 40\nThermalOffset = -7\nAssetLabel = x <y>\nSetupWord = {SETUP_WORD}\nLooseFlag = false\n"
MANY_SENT = {"StartMode": "BothWays", "FanFloor": 40, "ThermalOffset": -7, "AssetLabel": "x <y>", "SetupWord": SETUP_WORD, "LooseFlag": False}
# The fault, the knob file, the exit code, what the tool says, what waits afterwards beside the quiet fans that waited
# before, and how many requests to change something there were.
QUIET = {"QuietFans": "On"}
PROGRAMMING = [
    ("", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("", "StartMode = 1\nBoardSerial = QX-0031-77\n", 0, "1 options programmed", {"StartMode": "Native"}, 1),
    ("", "BoardSerial = QX-1\n", 1, "line 1: BoardSerial", {}, 0),
    ("", "FanFloor = 41\n", 1, "line 1: FanFloor", {}, 0),
    ("", "LooseFlag = perhaps\n", 1, "line 1: LooseFlag: the value is of another kind than the present one", {}, 0),
    ("", "SignedStart = True\nStartMode = Compatible\n", 1, "line 1: SignedStart: the machine keeps its value, GrayIf(StartMode != 0x1)", {}, 0),
    ("", "SignedStart = True\n", 0, "1 options programmed", {"SignedStart": True}, 1),
    ("412", MANY, 4, "the settings have changed meanwhile (try again) (status 412); nothing was programmed", {}, 1),
    ("503-patch", MANY, 0, "6 options programmed", MANY_SENT, 2),
    ("patch-500", MANY, 4, "the service has failed", {}, 1),
    ("no-etag", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("weak-etag", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("replaces", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("no-sessions", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("registry-empty", "FanFloor = 40\nLooseFlag = false\nStartMode = Compatible\n", 0, "3 options programmed",
     {"FanFloor": 40, "LooseFlag": False, "StartMode": "Compatible"}, 1),
    ("task", MANY, 0, "6 options programmed", MANY_SENT, 1),
    ("task-waits", MANY, 0, "is not done with it", MANY_SENT, 1),
    ("task-fails", "FanFloor = 40\n", 4, "ended as \"Exception\": FanFloor: the machine does not take the value; what the service had taken", {"FanFloor": 35}, 2),
    ("refused", "FanFloor = 40\nStartMode = 0\n", 1, "FanFloor: the value is none of those that the machine takes", {}, 1),
    ("echo", MANY, 1, "Invented error: ", {}, 1),
    ("error-200-patch", MANY, 4, "the service has failed (restart the management controller if that goes on); nothing was programmed", {}, 1),
    ("by-halves", MANY, 4, "FanFloor: the value does not go together with that of another option", {"AssetLabel": "Bay 7 / \"Ü\" <x>"}, 2),
    ("silent", "FanFloor = 40\nStartMode = 0\n", 4, "accepted the request and not taken FanFloor, StartMode; nothing was programmed", {}, 1),
    ("close-patch", MANY, 4, "the connection was closed", {}, 0),
    ("close-taken", "FanFloor = 40\nStartMode = 0\n", 0, "2 options programmed", {"FanFloor": 40, "StartMode": "Compatible"}, 1),
    ("no-settings", MANY, 3, "lets nobody change", {}, 0),
    ("settings-missing", MANY, 3, "lets nobody change", {}, 0),
]


def check_programming(place):
    for fault, knobs, expected, said, waits, requests in PROGRAMMING:
        machine = redfish.Machine(FEW)
        machine.pending = dict(QUIET)
        with redfish.Service(machine, fault, place.certificate) as service:
            place.configure(service)
            code, output, messages = place.program(knobs)
            what = f"{fault or 'programming'} {knobs!r}"
            check(code == expected and said in output + messages, f"{what}: {code}, {output}{messages}")
            check(not [letter for letter in messages if ord(letter) < 32 and letter != "\n"], f"{what}: control characters")
            check(machine.pending == {**QUIET, **waits}, f"{what}: {machine.pending} waits")
            check(len(service.patches) == requests, f"{what}: {len(service.patches)} requests")
            if service.patches and code == 0:
                check(service.patches[-1]["Attributes"] == {**QUIET, **waits}, f"{what}: {service.patches[-1]} was sent")
            check(service.resets == 0, f"{what}: there was a reset")
            if fault == "412":
                service.violations.clear()
            finish(service, what)


def check_reset(place):
    for fault, settings, expected, said in (("", {}, 0, "as delivered"), ("reset-refused", {}, 3, "the user may not do this"),
                                            ("no-settings", {}, 3, "offers no reset"), ("", {"writing": "no"}, 3, "writing = yes")):
        with redfish.Service(redfish.Machine(FEW), fault, place.certificate) as service:
            place.configure(service, **settings)
            code, output, messages = place.run("reset")
            check(code == expected and said in output + messages, f"reset {fault}: {code}, {output}{messages}")
            check(service.resets == (code == 0), f"reset {fault}: {service.resets} resets")
            finish(service, f"reset {fault}")
    with redfish.Service(redfish.Machine(FEW), "", place.certificate) as service:
        place.configure(service, writing=None)
        check(place.program("FanFloor = 40\n")[0] == 3 and not service.patches, "programming without leave")
        finish(service, "writing")


def check_trust(place):
    """Who is trusted with the password, and where it comes from."""
    other = redfish.make_certificate(tempfile.mkdtemp(dir=place.folder))
    netrc = f"machine elsewhere login x password y\nmachine 127.0.0.1 login {redfish.USER} password {redfish.PASSWORD}\n"
    wrong = "Falsch-Wort-99"
    place.credentials(f"{redfish.USER}\n{wrong}\n", "wrong")
    place.credentials(netrc, "netrc")
    place.credentials(netrc, "netrc-open", 0o644)
    place.credentials(f"{redfish.USER}\n{redfish.PASSWORD}\n", "open", 0o640)
    cases = [
        ({"ca-file": other.with_suffix(".crt")}, 2, "its certificate is not trusted", False),
        # A system without certificates has none that it could trust.
        ({"ca-file": None}, 2, " trusted", False),
        ({"ca-file": "missing.crt"}, 2, "trusted certificates cannot be used", False),
        ({"ca-file": None, "insecure": "yes"}, 0, "warning: the certificate of https://127.0.0.1", True),
        ({"credentials-file": "wrong"}, 3, "logging in failed", True),
        ({"credentials-file": "open"}, 2, "is open to others than its owner", False),
        ({"credentials-file": "missing"}, 2, "cannot be read", False),
        ({"credentials-file": None, "netrc-file": "netrc"}, 0, "enabled", True),
        ({"credentials-file": None, "netrc-file": "netrc-open"}, 2, "is open to others than its owner", False),
        ({"credentials-file": None}, 3, "user and password are needed", True),
        ({"url": "https://127.0.0.1:1"}, 2, "nobody answers there", False),
        ({"system": "Node-9"}, 3, "has no system \"Node-9\"; there are: Node-1", True),
    ]
    for settings, expected, said, asks in cases:
        with redfish.Service(redfish.Machine(FEW), "", place.certificate) as service:
            place.configure(service, **settings)
            code, output, messages = place.run("fenrikstatus")
            check(code == expected and said in output + messages, f"{settings}: {code}, {output}{messages}")
            check(bool(service.requests) == asks, f"{settings}: {service.requests}")
            check(wrong not in output + messages, f"{settings}: the wrong password is shown")
            if "insecure" in settings:
                check(place.run("pending")[2].count("warning: the certificate") == 1, "the warning comes once a run")
            finish(service, str(settings))
    with redfish.Service(redfish.Machine(FEW), "", place.certificate) as service:
        place.configure(service, url=service.url.replace("https", "http"))
        code, _, messages = place.run("fenrikstatus")
        check(code == 2 and "is not encrypted" in messages and not service.requests, f"http: {code} {messages}")


def check_interruption(place):
    """An end from outside comes through, but what has begun is ended in order."""
    for fault, arguments, number, patches in (("slow", ["savexml", "dump.xml"], signal.SIGINT, 0), ("slow", ["fenrikstatus"], signal.SIGTERM, 0),
                                              ("slow-patch", ["progknobsfromfile", "knobs.ini"], signal.SIGTERM, 1)):
        with redfish.Service(redfish.Machine(FEW), fault, place.certificate) as service:
            place.configure(service, timeout=30)
            (place.folder / "knobs.ini").write_text("FanFloor = 40\nStartMode = 0\n")
            tool = place.start(*arguments)
            until(lambda service=service: service.is_slow, "the slow answer is asked for")
            tool.send_signal(number)
            start = time.monotonic()
            _, messages = tool.communicate(timeout=60)
            check(tool.returncode == -number and time.monotonic() - start < 10, f"{arguments}: {tool.returncode} {messages}")
            check(len(service.machine.pending) == 2 * patches, f"{arguments}: {service.machine.pending} waits")
            finish(service, f"{number} while {arguments}")
    check(not list(place.folder.glob("*.new")), "temporary files are left")


def until(holds, what, seconds=60):
    end = time.monotonic() + seconds
    while not holds() and time.monotonic() < end:
        time.sleep(0.02)
    check(holds(), what)


def check_whole(work, certificate):
    """Reports, an update, what waits and the next report, through biosconfig and the module, all traces on."""
    place = Place(work / "programs/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary", certificate)
    host = work / "host"
    (host / "ModuleData").mkdir(parents=True)
    shutil.copy(ROOT / "Docs/Example/CapsList.json", host)
    (host / "debug.conf").write_text("Global : TraceType < Al >\nGlobal : OutputType < CoFi >\nGlobal : FileName < traces.log >\n")
    (host / "template.txt").write_text("StartMode=Both Ways;FanFloor=45;AssetLabel=Rack 9;")

    def biosconfig(*arguments, expected=0):
        outcome = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, cwd=host, timeout=300,
                                 env={**os.environ, "BIOSCONFIG_PROGRAM_FILES": str(work / "programs"), "BIOSCONFIG_TOOL_DIR": str(host)})
        seen.append((arguments, outcome.stdout + outcome.stderr))
        check(outcome.returncode == expected, f"{arguments}: {outcome.returncode}, {outcome.stdout[-300:]}{outcome.stderr[-800:]}")
        return outcome.stdout

    def reports(text):
        for name in FORMATS:
            biosconfig("report", "--format", name, "-o", f"report-{name}")
            check(text in (host / f"report-{name}").read_text(), f"the report as {name} lacks {text}")
            check((host / f"report-{name}").stat().st_mode & 0o077 == 0, f"others may read the report as {name}")

    with redfish.Service(redfish.Machine(), "", certificate) as service:
        place.configure(service, timeout=30)
        reports("Native")
        check("Start mode" in biosconfig("show", "StartMode"), "show")
        shown = biosconfig("update", "template.txt", "--yes")
        check(shown.count("pending restart") == 3, f"update: {shown}")
        check(service.machine.pending == {"StartMode": "BothWays", "FanFloor": 45, "AssetLabel": "Rack 9"}, f"waits: {service.machine.pending}")
        check(biosconfig("list", "--pending").count("\n") == 3, "what waits")
        service.machine.restart()
        reports("Both Ways")
        check(biosconfig("list", "--pending") == "", "something waits after the restart")
        check(service.resets == 0, "there was a reset that nobody had asked for")
        finish(service, "the whole")
        # Failures, which the module records.
        for fault in ("403", "not-json", "half"):
            service.fault = fault
            outcome = subprocess.run([PROGRAM, "report", "-o", "report"], capture_output=True, text=True, cwd=host, timeout=300,
                                     env={**os.environ, "BIOSCONFIG_PROGRAM_FILES": str(work / "programs"), "BIOSCONFIG_TOOL_DIR": str(host)})
            seen.append((fault, outcome.stdout + outcome.stderr))
            check(outcome.returncode != 0, f"{fault}: a report all the same")
        # An end of biosconfig alone lets the tool end in order, too.
        service.fault = "slow"
        process = subprocess.Popen([PROGRAM, "list"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, cwd=host,
                                   env={**os.environ, "BIOSCONFIG_PROGRAM_FILES": str(work / "programs")})
        until(lambda: service.is_slow, "the slow answer is asked for")
        process.send_signal(signal.SIGINT)
        check(process.wait(60) == -signal.SIGINT, "the end of biosconfig")
        finish(service, "an end of biosconfig")
        service.fault = "echo"
        (host / "template.txt").write_text(f"StartMode=Native;SetupWord={SETUP_WORD};")
        outcome = subprocess.run([PROGRAM, "update", "template.txt", "--yes"], capture_output=True, text=True, cwd=host, timeout=300,
                                 env={**os.environ, "BIOSCONFIG_PROGRAM_FILES": str(work / "programs"), "BIOSCONFIG_TOOL_DIR": str(host)})
        seen.append(("echo", outcome.stderr))
        check(outcome.returncode != 0 and "Invented error" in outcome.stderr, f"echo: {outcome}")
    check((work / place.folder.parent / "FenrikOutput.xml").stat().st_mode & 0o077 == 0, "others may read the dump")
    check(list(host.rglob("Error.xml")) and (host / "traces.log").stat().st_size > 1000, "Error.xml and traces were not written")
    for path in [*host.rglob("*"), *(work / "programs").rglob("*")]:
        if path.is_file() and path.name not in ("template.txt", "template.ini", "credentials", "FenrikCmd.exe"):
            seen.append((path, path.read_bytes().decode(errors="replace")))


def check_secrets():
    for where, text in seen:
        for secret in (redfish.PASSWORD, SETUP_WORD, *tokens):
            check(secret not in text, f"a secret is shown by {where}: {text[:300]}")
    check(len(tokens) > 50 and len(seen) > 100, "nothing was looked at")


def measure(place):
    """The processor time of the tool less that of the same requests by curl, and the time of the tool's start."""
    with redfish.Service(redfish.Machine(5000), "", place.certificate) as service:
        place.configure(service, timeout=60)
        place.run("savexml", "dump.xml")
        paths = [path for method, path in service.requests if method == "GET"]
        number, token = "measured", "0" * 32
        service.sessions[number] = token
        requests = ["curl", "--silent", "--fail", "--compressed", "--cacert", str(place.certificate.with_suffix(".crt")), "-H", f"X-Auth-Token: {token}"]
        for path in paths:
            requests += ["-o", "/dev/null", service.url + path]
        session = ["--silent", "--cacert", str(place.certificate.with_suffix(".crt")), "-o", "/dev/null", "-H", f"X-Auth-Token: {token}"]
        requests += ["--next", *session, "-d", f'{{"UserName": "{redfish.USER}", "Password": "{redfish.PASSWORD}"}}', "-H", "Content-Type: application/json",
                     f"{service.url}{redfish.ROOT}/SessionService/Sessions",
                     "--next", *session, "-X", "DELETE", f"{service.url}{redfish.ROOT}/SessionService/Sessions/none"]
        times = {}
        for name, command in (("tool", [place.folder / "FenrikCmd.exe", "savexml", "dump.xml"]), ("curl", requests)):
            for _ in range(15):
                before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
                subprocess.run(command, check=True, capture_output=True, cwd=place.folder)
                after = resource.getrusage(resource.RUSAGE_CHILDREN)
                spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
                times.setdefault(name, []).append((1000 * spent, 1000 * (time.monotonic() - start)))
        tool, curl = (sorted(spent for spent, _ in times[name])[7] for name in ("tool", "curl"))
        print(f"{len(place.dump())} settings, {len(paths)} requests: processor time {tool:.0f} ms, of which its requests {curl:.0f} ms, "
              f"the rest {tool - curl:.0f} ms; from start to end {sorted(spent for _, spent in times['tool'])[7]:.0f} ms")


for name in [name for name in os.environ if name.lower().endswith("_proxy")] + ["FENRIKCMD_FAULT", "FENRIKCMD_SOURCE", "SSL_CERT_FILE"]:
    os.environ.pop(name, None)
with tempfile.TemporaryDirectory() as directory:
    folder = pathlib.Path(directory)
    service_certificate = redfish.make_certificate(folder)
    tool_place = Place(folder / "tool", service_certificate)
    if "--measure" in sys.argv:
        measure(tool_place)
        sys.exit(0)
    with redfish.Service(redfish.Machine(FEW), "", service_certificate) as another:
        for group, arguments in ((check_reading, (tool_place, another)), (check_dump, (tool_place,)), (check_programming, (tool_place,)),
                                 (check_reset, (tool_place,)), (check_trust, (tool_place,)), (check_interruption, (tool_place,)),
                                 (check_whole, (folder, service_certificate)), (check_secrets, ())):
            begin = time.monotonic()
            group(*arguments)
            print(f"{group.__name__}: {time.monotonic() - begin:.1f} s", flush=True)
sys.exit(1 if failures else 0)
