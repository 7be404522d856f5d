#!/usr/bin/env python3
"""check-command-line.py BIOSCONFIG FENRIKCMD [--update]: what biosconfig shows on a terminal, in golden files, and what
it gives to programs, against the schemas. Ends with 77 when a Python module for that is missing. With --update the
golden files are written anew."""
import fcntl
import json
import os
import pathlib
import pty
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import warnings

try:
    import jsonschema
except ImportError:
    print("skipped: the Python module jsonschema is not installed (python3-jsonschema)")
    sys.exit(77)

ROOT = pathlib.Path(__file__).resolve().parent.parent
GOLDEN = ROOT / "Tests/Data/CommandLine"
SMALL = ROOT / "Tests/Data/SmallFirmware.xml"
PROGRAM, TOOL = (os.path.abspath(path) for path in sys.argv[1:3])
UPDATE = "--update" in sys.argv
failures = 0
warnings.simplefilter("ignore", DeprecationWarning)


def check(holds, message):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", message)


def lay_out(work):
    place = work / "programs/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary"
    place.mkdir(parents=True)
    shutil.copy(TOOL, place)
    shutil.copy(SMALL, work / "small.xml")
    (work / "good.txt").write_text("QuietBoot=disabled\n;PostDelay=12\n")
    (work / "bad.txt").write_text("QuietBot=1;PostDelay=300\n")
    os.environ.update(BIOSCONFIG_PROGRAM_FILES=str(work / "programs"), TERM="xterm")
    for name in ("NO_COLOR", "COLUMNS", "FENRIKCMD_FAULT", "BIOSCONFIG_TOOL_DIR", "BIOSCONFIG_TIMEOUT"):
        os.environ.pop(name, None)
    os.chdir(work)


def on_terminal(columns, arguments, answer=b"", **environment):
    """What a terminal of that width gets from a run, and the exit code; the answer is given when there is a question."""
    child, terminal = pty.fork()
    if child == 0:
        fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", 40, columns, 0, 0))
        os.execve(PROGRAM, ["biosconfig", *arguments], {**os.environ, **environment})
    shown = b""
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:
            break
        if not piece:
            break
        shown += piece
        if answer and b"[y/N]" in shown:
            os.write(terminal, answer)
            answer = b""
    return shown.replace(b"\r\n", b"\n").decode(), os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])


def run(*arguments, **settings):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, **settings)


def compare(name, text):
    path = GOLDEN / name
    if UPDATE:
        path.write_text(text)
    check(path.exists() and path.read_text() == text, f"{name} is another one:\n{text}")


def check_terminals():
    small = ["--from", "small.xml"]
    for name, arguments in {"list": ["list", *small], "show": ["show", "FanCurve", "StrangeLevel", *small],
                            "search": ["search", "start", *small], "pages": ["pages", *small],
                            "diff": ["diff", "--defaults", *small],
                            "check": ["check", "good.txt", *small]}.items():
        for columns in (80, 120):
            compare(f"{name}-{columns}.txt", on_terminal(columns, arguments, NO_COLOR="1")[0])
    compare("list-color.txt", on_terminal(80, ["list", *small])[0])
    compare("help.txt", run("--help").stdout)
    shown, _ = on_terminal(80, ["list", *small], TERM="dumb")
    check("\x1b" not in shown, "colour on a terminal that knows none")
    check("\x1b" in run("list", "--color", "always", *small).stdout, "no colour where it is wished for")
    check("\x1b" not in run("list", *small).stdout and "NAME" not in run("list", *small).stdout, "manners of a terminal in a pipe")


def check_questions():
    shown, code = on_terminal(80, ["set", "BootFast=Enabled"], answer=b"n\n")
    check(code == 9 and "Program 1 option? [y/N]" in shown and "nothing was programmed" in shown, f"a no: {code} {shown}")
    shown, code = on_terminal(80, ["set", "BootFast=Enabled"], answer=b"y\n", NO_COLOR="1")
    check(code == 0 and shown.endswith("BootFast  Disabled  Enabled  pending restart\n"), f"a yes: {code} {shown}")
    check(on_terminal(80, ["set", "BootFast=Disabled", "--yes"])[1] == 0, "--yes asks")
    shown, code = on_terminal(80, ["list", "--timeout", "2"], FENRIKCMD_FAULT="savexml=hang")
    check(code == 8 and "external tool ... 1 s\r\x1b[K" in shown, f"progress: {code} {shown!r}")


def check_json():
    small = ["--from", "small.xml"]
    calls = {"list": ["list"], "get": ["get", "PostDelay", "Nope"], "show": ["show", "Bare", "--redact"],
             "search": ["search", "fan"], "export": ["export"], "pages": ["pages"], "check": ["check", "bad.txt"],
             "diff": ["diff", "small.xml"], "update": ["update", "good.txt", "--dry-run"],
             "set": ["set", "PostDelay=12", "--dry-run"], "reset": ["reset", "--all", "--dry-run"]}
    runs = [(name, [*call, *small]) for name, call in calls.items()]
    runs += [("set", ["set", "BootOnErrors=Checked", "AssetTag=x"]), ("update", ["update", "missing.txt"]), ("doctor", ["doctor"]),
             ("diff", ["diff", "small.xml", "--redact"]), ("show", ["show", "BootFast"]), ("list", ["list", "--from", "nowhere"])]
    for name, arguments in runs:
        schema = json.loads((ROOT / f"Docs/Schemas/{name}.schema.json").read_text())
        resolver = jsonschema.RefResolver(f"file://{ROOT}/Docs/Schemas/", schema)
        outcome = run(*arguments, "--json")
        try:
            document = json.loads(outcome.stdout)
            jsonschema.Draft7Validator(schema, resolver=resolver).validate(document)
            check(outcome.returncode == 0 or document["errors"], f"{arguments} fails without a word")
        except Exception as error:
            check(False, f"{arguments}: {error}\n{outcome.stdout[:500]}{outcome.stderr}")
    secrets = ["Läb 7", "rack B"]
    for arguments in (["list"], ["list", "--json"], ["list", "--csv"], ["show", "AssetTag"], ["get", "AssetTag"], ["export"],
                      ["export", "--json"], ["diff", "--defaults"], ["diff", "--defaults", "--json"],
                      ["reset", "--all", "--dry-run"], ["set", "AssetTag=Läb 7", "--dry-run", "--json"]):
        outcome = run(*arguments, "--redact", *small)
        check(not any(secret in outcome.stdout + outcome.stderr for secret in secrets), f"{arguments} leaks")
    check("machine" in json.loads(run("pages", "--json").stdout)["tool"], "the machine is not named")
    check("machine" not in json.loads(run("list", "--json", "--redact-also", "x").stdout)["tool"], "the machine is named")
    check("The BIOS interface" in run("list", "-v").stderr and "The BIOS interface" not in run("list", "-v", "--redact").stderr,
          "what the tool says")


def check_exports():
    """A knob file, a dump, and what waits for a restart."""
    small = ["--from", "small.xml"]
    run("export", "PostDelay", "-o", "knobs.ini", *small)
    check(pathlib.Path("knobs.ini").read_text() == "[BiosKnobs]\nPostDelay==10\n", "the knob file of an export")
    check(run("check", "knobs.ini", *small).returncode == 0, "the knob file of an export is not taken back")
    run("export", "-o", "copy.xml", *small)
    check(pathlib.Path("copy.xml").read_bytes() == SMALL.read_bytes(), "the dump of an export")
    check(run("export", "Post*", "-o", "part.xml", *small).returncode == 64, "a part of a dump")
    check(run("list", "--pending").stdout == "", "something waits")
    run("set", "BootNumLock=Off")
    check(run("list", "--pending").stdout.startswith("BootNumLock  On") and run("list", "--pending").stdout.count("\n") == 1,
          "what waits")
    check(run("set", "BootNumLock=On").stdout == "BootNumLock  On (pending Off)  On  in effect\n", "what waits is taken back")


def check_lists():
    """What `list --json` has written is read in the place of a dump."""
    small = ["--from", "small.xml"]
    pathlib.Path("list.json").write_text(run("list", "--json", *small).stdout)
    for arguments in (["list", "--json"], ["show", "StrangeLevel", "AssetTag", "PostDelay"], ["pages"], ["diff", "--defaults"], ["export"]):
        mine = run(*arguments, "--from", "list.json").stdout.replace("list.json", "small.xml")
        check(re.sub(r'"time":"[^"]*"', "", mine) == re.sub(r'"time":"[^"]*"', "", run(*arguments, *small).stdout), f"{arguments} of a list")
    pathlib.Path("redacted.json").write_text(run("list", "--json", "--redact", *small).stdout)
    check(run("diff", "redacted.json", "small.xml").stdout == "", "redacted values differ")
    check("(redacted)" in run("get", "AssetTag", "--from", "redacted.json").stdout, "a redacted value of a list")
    for name, text, code in (("none.json", None, 3), ("empty.json", "", 4), ("array.json", "[]", 4), ("half.json", '{"options":[{"name":"a"', 4),
                             ("wrong.json", '{"options":[{"name":1}]}', 4), ("deep.json", "[" * 100000, 4),
                             ("good.txt", None, 4), ("odd.json", '{"options":[{"name":"a","kind":"number","value":{"text":"-5","number":-5}}]}', 0)):
        if text is not None:
            pathlib.Path(name).write_text(text)
        outcome = run("list", "--from", name)
        check(outcome.returncode == code and outcome.stderr.count("\n") == (code != 0), f"{name}: {outcome}")


def check_view():
    """The page itself is tried in a browser elsewhere."""
    small = ["--from", "small.xml"]
    page = run("view", "--no-time", *small).stdout
    check("10 options" in page and "<time" not in page, "counts of a page, or its time")
    check(run("view", *small).stdout != page, "no time where it is wished for")
    for name in ("Läb 7", "rack B"):
        check(name in page and name not in run("view", "--redact", *small).stdout, f"{name} on a page")
    changed = SMALL.read_text().replace("Läb 7", "Läb 8")
    pathlib.Path("changed.xml").write_text(changed)
    compared = run("view", "--redact", "--compare", "changed.xml", *small).stdout
    check("1 of 10 differs on 1 page" in compared and "Läb" not in compared, "a redacted comparison")
    os.mkdir("other")
    shutil.copy("changed.xml", "other/small.xml")
    twins = run("view", *small, "--compare", "other/small.xml", "--compare", "small.xml").stdout
    check(all(f'<th scope="col">{title}</th>' in twins for title in ("small.xml", "other/small.xml", "small.xml (2)")), "titles of one name")
    check(run("view", *small, "--compare", "nowhere.xml").returncode == 3, "a comparison with nothing")
    os.mkdir("bin")
    opener = pathlib.Path("bin/xdg-open")
    opener.write_text('#!/bin/sh\nprintf %s "$1" >opened\n')
    opener.chmod(0o755)
    path = {**os.environ, "PATH": os.path.abspath("bin") + ":" + os.environ["PATH"]}
    check(run("view", "--open", "-o", "page.html", *small, env=path).returncode == 0, "--open")
    check(pathlib.Path("opened").read_text() == os.path.abspath("page.html"), "what is opened")
    outcome = run("view", "--open", *small, env=path)
    kept = pathlib.Path(pathlib.Path("opened").read_text())
    check(outcome.returncode == 0 and str(kept) in outcome.stderr and "10 options" in kept.read_text(), f"a page that is kept: {outcome}")
    shutil.rmtree(kept.parent)
    opener.write_text("#!/bin/sh\nexit 3\n")
    check(run("view", "--open", "-o", "page.html", *small, env=path).returncode == 1, "no program opens it")


def command_lines():
    """Of all processes, as far as the system tells."""
    for path in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            yield path.read_bytes()
        except OSError:
            continue


def check_streams():
    small = "--from small.xml"
    for command, code in ((f"'{PROGRAM}' list {small} >&-", 1), (f"'{PROGRAM}' list {small} >/dev/full", 1),
                          (f"'{PROGRAM}' list {small} <&- 2>&- >/dev/null", 0),
                          (f"'{PROGRAM}' set BootFast=Disabled <&- >&- 2>&-", 1)):
        check(subprocess.run(["bash", "-c", command], stderr=subprocess.DEVNULL).returncode == code, command)
    subprocess.run(["bash", "-c", f"'{PROGRAM}' list -v 2>&1 | true"])
    tool = subprocess.Popen([PROGRAM, "list"], env={**os.environ, "FENRIKCMD_FAULT": "hang"})
    time.sleep(0.5)
    tool.send_signal(signal.SIGINT)
    check(tool.wait(20) == -signal.SIGINT, "Ctrl-C")
    mine = os.fsencode(os.environ["BIOSCONFIG_PROGRAM_FILES"])  # other tests run the tool at the same time
    check(not [line for line in command_lines() if mine in line], "the tool runs on")
    outcome = run("set", "BootQuietScreen=Picture", "--timeout", "1", env={**os.environ, "FENRIKCMD_FAULT": "progknobsfromfile=hang"})
    check(outcome.returncode == 8, f"a time limit while programming: {outcome}")
    check(not [name for name in os.listdir(tempfile.gettempdir()) if name.startswith("biosconfig-")], "temporary files are left")


def check_completion():
    def complete(line):
        script = (f"source <('{PROGRAM}' completion bash); COMP_LINE=$1 COMP_POINT=${{#1}} COMPREPLY=(); "
                  '_biosconfig; printf "%s\\n" "${COMPREPLY[@]}"')
        found = subprocess.run(["bash", "-c", script, "bash", line.replace("biosconfig", PROGRAM, 1)], capture_output=True, text=True)
        return found.stdout.split("\n")[:-1]
    run("list")
    for line, words in {"biosconfig comp": ["completion"], "biosconfig get BootF": ["BootFast"],
                        "biosconfig set BootFast=": ["Disabled", "Enabled"], "biosconfig list --chan": ["--changed"],
                        "biosconfig list --color ": ["auto", "always", "never"], "biosconfig check go": ["good.txt"],
                        "biosconfig list --page Boot/M": ["Boot/Mode"], "biosconfig help pag": ["pages"]}.items():
        check(complete(line) == words, f"{line!r} is completed by {complete(line)}")


def check_documents():
    page = (ROOT / "Docs/CommandLine.md").read_text()
    codes = re.search(r"Exit codes:\n((?: +\d+  .*\n)+)", run("--help").stdout).group(1)
    for number, text in re.findall(r" +(\d+)  (.*)\n", codes):
        check(f"| {number} | {text} |" in page, f"Docs/CommandLine.md lacks exit code {number}, {text}")
    for name in re.findall(r"^  ([a-z]+)  ", run("--help").stdout, re.M):
        check(f"`{name}" in page, f"Docs/CommandLine.md lacks the command {name}")
    if shutil.which("groff"):
        linted = subprocess.run(["groff", "-man", "-ww", "-z", "-Kutf8"], input=run("manual-page").stdout, capture_output=True, text=True)
        check(not linted.stderr, f"the manual page: {linted.stderr}")


try:
    for end in pty.openpty():
        os.close(end)
except OSError as error:
    print(f"skipped: there are no terminals here ({error})")
    sys.exit(77)

with tempfile.TemporaryDirectory() as directory:
    os.environ["TMPDIR"] = tempfile.tempdir = directory + "/temporary"
    os.mkdir(tempfile.tempdir)
    lay_out(pathlib.Path(directory))
    GOLDEN.mkdir(exist_ok=True)
    for group in (check_terminals, check_exports, check_lists, check_view, check_json, check_questions, check_streams, check_completion, check_documents):
        start = time.monotonic()
        group()
        print(f"{group.__name__}: {time.monotonic() - start:.1f} s")
sys.exit(1 if failures else 0)
