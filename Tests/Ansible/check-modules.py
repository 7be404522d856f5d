#!/usr/bin/env python3
"""check-modules.py BINARIES WORK: the modules of the collection on simulated machines, one task after the other. Ends
with 1 when something is not as it should be."""
import json
import os
import pathlib
import re
import stat
import sys

from lab import ROOT, Lab

failures = 0
SECRET = "Gehei1"


def check(holds, message):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", message)


class Tasks:
    """Tasks for one run, and what is expected of the result of each."""

    def __init__(self, lab, machine):
        self.lab = lab
        self.machine = machine
        self.tasks = []
        self.expectations = []

    def add(self, what, module, arguments, expectation, **keywords):
        """`expectation` says what is wrong with a result, or gives nothing."""
        kept = str(self.lab.work / f"kept/{len(self.expectations)}.json")
        self.tasks += [{"name": what, f"biosconfig.lab.{module}": arguments, "register": "result", "ignore_errors": True,
                        **keywords},
                       {"name": "Keep", "biosconfig.lab.keep_result": {"dest": kept, "content": "{{ result }}"}}]
        self.expectations.append((what, kept, expectation))

    def run(self):
        playbook = self.lab.work / "modules.yml"
        defaults = {"program": self.lab.program, "program_files": "{{ baseline_program_files }}"}
        playbook.write_text(json.dumps([{"hosts": self.machine, "gather_facts": False, "tasks": self.tasks,
                                         "module_defaults": {"group/biosconfig.lab.lab": defaults}}]))
        run = self.lab.run(str(playbook), "-vvv", "--diff")
        check(run.code == 0, f"the run: {run.output[-3000:]}")
        for what, kept, expectation in self.expectations:
            result = json.loads(pathlib.Path(kept).read_text())
            wrong = expectation(result)
            check(not wrong, f"{what}: {wrong}: {json.dumps(result, ensure_ascii=False)[:1500]}")
        return run


def fails(*words, **values):
    """Expects a failure whose message has the words, and these values in the result."""
    def judge(result):
        text = result.get("msg", "")
        missing = [word for word in words if word not in text]
        others = [name for name, value in values.items() if result.get(name) != value]
        return not result.get("failed") and "no failure" or missing or others or (
            result.get("changed") is not False and "changed")
    return judge


def gives(**values):
    """Expects success and these values in the result."""
    return lambda result: result.get("failed") and "a failure" or [
        name for name, value in values.items() if result.get(name) != value]


def add_reading(tasks):
    tasks.add("values", "bios_options_info", {"patterns": ["bootf*", "AssetTag"]},
              gives(current={"AssetTag": "Prüfstand 4 / Gestell \"B\"", "BootFast": "Disabled"}, count=2, changed=False))
    tasks.add("hidden values", "bios_options_info", {"patterns": ["AssetTag"], "redact": True, "details": True},
              lambda result: result["current"] != {"AssetTag": None} or result["options"][0].get("redacted") is not True)
    tasks.add("hidden by a pattern", "bios_options_info", {"patterns": ["BootFast"], "redact_also": ["bootf*"]},
              gives(current={"BootFast": None}))
    tasks.add("changed options on a page", "bios_options_info", {"page": "Main", "changed": True},
              lambda result: list(result["current"]) != ["AssetTag"])
    tasks.add("a page that is not there", "bios_options_info", {"page": "Nowhere"}, fails("Nowhere", exit_code=3))
    tasks.add("a pattern like a flag", "bios_options_info", {"patterns": ["--csv"]}, fails("--csv", exit_code=3))
    tasks.add("a file on the controller", "bios_options_info", {"dest": "kept/options.json"},
              lambda result: "document" in result or "current" in result or result["count"] < 200)


def add_contradictions(tasks):
    for what, arguments, word in (
            ("nothing to do", {}, "one of the following is required"),
            ("two sources", {"options": {"BootFast": "Enabled"}, "template": "lab.txt"}, "mutually exclusive"),
            ("all of something", {"all_options": True}, "state=default"),
            ("of the machine", {"options": {"BootFast": "Enabled"}, "remote_src": True}, "with template only"),
            ("twice", {"options": {"AssetTag": "one"}, "secrets": {"AssetTag": "another"}}, "both have: AssetTag"),
            ("another state", {"all_options": True, "state": "absent"}, "must be one of: present, default"),
            ("a template that is not there", {"template": "nowhere.txt"}, "Could not find")):
        tasks.add(what, "bios_options", arguments, lambda result, word=word: word not in result.get("msg", ""))
    bad = {"BootFast": True, "BootPromptSeconds": 1.5, "BootMode": None, "CpuBoostClock": ["a"], "AssetTag": " a",
           "UsbFrontPorts": "a;b", "a=b": "1"}
    tasks.add("what YAML makes something else of", "bios_options", {"options": bad},
              lambda result: sorted(entry["option"] for entry in result.get("failures", [])) != sorted(bad))
    tasks.add("all that is wrong", "bios_options", {"options": {"BootFst": "a", "BootMode": "b", "BootFast": "Enabled"}},
              fails("BootFst: there is no option", "did you mean \"BootFast\"", "BootMode: \"b\" is no choice", "way out",
                    exit_code=4, verdicts={"BootFst": "refused", "BootMode": "refused", "BootFast": "not programmed"}))


def add_exit_codes(tasks):
    wanted = {"options": {"BootFast": "Enabled"}}
    for fault, words, code in (
            ("fenrikstatus=exit:3", ["interface", "way out: switch"], 9), ("savexml=exit:1", ["exit code 1", "doctor"], 6),
            ("savexml=halfdump", ["is damaged in line"], 4), ("savexml=hang", ["way out: look at the machine"], 8),
            ("progknobsfromfile=exit:1", ["BootFast: rejected; way out"], 6)):
        tasks.add(fault, "bios_options", {**wanted, "time_limit": 1}, fails(*words, exit_code=code, reboot_required=False),
                  environment={"FENRIKCMD_FAULT": fault})
    for what, place, words, code in (
            ("no tool", {"program_files": "/nowhere"}, ["external tool is missing", "way out: install"], 7),
            ("no program", {"program": "no-such-program"}, ["cannot be started", "way out: install biosconfig"], None),
            ("no JSON", {"program": "/bin/echo"}, ["no JSON", "way out"], 0),
            ("no sudo", {"sudo": True}, ["sudo: a password is required", "way out: let a rule"], 1)):
        tasks.add(what, "bios_options", {**wanted, **place}, fails(*words, exit_code=code),
                  environment={"PATH": f"{tasks.lab.work}/refusing:{os.environ['PATH']}"})


def add_programming(tasks):
    pending = {"BootFast": "pending restart", "LanWakePassword": "pending restart", "BootMode": "unchanged"}
    wanted = {"options": {"BootFast": "enabled", "BootMode": 1}, "secrets": {"LanWakePassword": SECRET}}
    changes = [{"name": "BootFast", "old": "Disabled", "new": "Enabled"}, {"name": "LanWakePassword", "old": None, "new": None}]
    tasks.add("a plan", "bios_options", wanted, gives(
        changed=True, reboot_required=True, changes=changes,
        verdicts={**pending, "BootFast": "to program", "LanWakePassword": "to program"},
        diff={"before": "BootFast = Disabled\nLanWakePassword = (hidden)\n", "before_header": "BIOS options",
              "after": "BootFast = Enabled\nLanWakePassword = (hidden, another value)\n", "after_header": "BIOS options"}),
              check_mode=True)
    tasks.add("programming", "bios_options", {**wanted, "dest": "kept/programmed.json"},
              gives(changed=True, reboot_required=True, changes=changes, verdicts=pending))
    for is_plan in (True, False):
        tasks.add("the same again", "bios_options", wanted,
                  gives(changed=False, reboot_required=True, changes=[], verdicts=pending), check_mode=is_plan)
    tasks.add("what waits", "bios_options_info", {"pending": True, "redact": True},
              lambda result: sorted(result["current"]) != ["BootFast", "LanWakePassword"])
    tasks.add("a template of the controller", "bios_options", {"template": "lab.txt"},
              gives(changed=True, verdicts={"BootFast": "pending restart", "BootPromptSeconds": "pending restart"}))
    tasks.add("its names", "bios_options", {"template": "lab.txt", "state": "default"},
              gives(changed=True, verdicts={"BootFast": "in effect", "BootPromptSeconds": "in effect"}))
    tasks.add("a template of the machine", "bios_options", {"template": str(tasks.lab.work / "bad.ini"), "remote_src": True},
              fails("BootFst: line 2: there is no option", exit_code=4))
    tasks.add("defaults by name", "bios_options", {"options": {"LanWakePassword": None}, "state": "default"},
              gives(changed=True, verdicts={"LanWakePassword": "in effect"}))
    tasks.add("all defaults", "bios_options", {"all_options": True, "state": "default", "redact": False},
              lambda result: not result["changed"] or {"name": "AssetTag", "old": "Prüfstand 4 / Gestell \"B\"",
                                                       "new": ""} not in result["changes"], check_mode=True)


def check_traces(lab, run, before):
    """What a run leaves behind, and what must not be in it."""
    check(SECRET not in run.output, "the secret is in what Ansible says")
    holders = [path for path in lab.work.rglob("*") if path.is_file() and path.name not in ("modules.yml", "FenrikFirmware.json",
               "FenrikOutput.xml") and SECRET.encode() in path.read_bytes()]
    check(not holders, f"the secret is in {holders}")
    check(stat.S_IMODE(os.stat(lab.work / "kept/programmed.json").st_mode) == 0o600, "the mode of a kept result")
    check("schemaVersion" in json.loads((lab.work / "kept/options.json").read_text()), "the kept list")
    left = [path for path in (lab.work / "home").rglob("*") if path.is_file()]
    check(not left, f"left behind: {left}")
    check(sorted(os.listdir("/tmp")) == before or not {name for name in set(os.listdir("/tmp")) - set(before)
                                                       if name.startswith("bios")}, "left in the temporary folder")


def rules():
    """The rules for sudo that the documentation gives, as patterns of whole command lines."""
    text = (ROOT / "Docs/ManyMachines.md").read_text()
    found = re.findall(r"^ +(/usr/bin/biosconfig) \^(.*)\$(?:, \\)?$", text, re.MULTILINE)
    return [re.compile(f"{re.escape(program)} {arguments}") for program, arguments in found]


def check_sudo(lab):
    """The command lines of the modules are those that the documented rules allow."""
    said = lab.work / "command-lines"
    tasks = Tasks(lab, "m1")
    for name, module, arguments, is_plan in (
            ("list", "bios_options_info", {"redact": True, "dest": "kept/sudo.json"}, False),
            ("plan", "bios_options", {"options": {"BootFast": "Enabled"}, "secrets": {"LanWakePassword": "a"}}, True),
            ("update", "bios_options", {"options": {"BootFast": "Enabled"}, "time_limit": 60}, False),
            ("carried", "bios_options", {"template": "lab.txt"}, False)):
        tasks.add(name, module, {**arguments, "sudo": True, "program": "/usr/bin/biosconfig", "program_files": "/opt/vendor"},
                  lambda result: None, check_mode=is_plan, environment={"PATH": f"{lab.work}/recording:{os.environ['PATH']}"})
    tasks.run()
    lines = said.read_text().splitlines()
    check(len(lines) == 4 and len(rules()) >= 2, f"{lines} {rules()}")
    for line in lines:
        check(any(rule.fullmatch(line) for rule in rules()), f"no rule of the documentation allows: {line}")
    for line in ("/usr/bin/biosconfig update --json --program-files /home/x --timeout 1 --only-changes -- /tmp/a.txt",
                 "/usr/bin/biosconfig list --json --program-files /opt/vendor --timeout 1 -o /etc/passwd",
                 "/usr/bin/biosconfig update --json --program-files /opt/vendor --timeout 1 --only-changes --module=/tmp/a.so -- /tmp/a.txt"):
        check(not any(rule.fullmatch(line) for rule in rules()), f"a rule of the documentation allows: {line}")


def write_script(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("#!/bin/sh\n" + text)
    path.chmod(0o755)


def main():
    binaries, work = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
    lab = Lab(work, binaries, ["m1"])
    lab.machines["m1"].prepare()
    (work / "lab.txt").write_text("BootFast=Enabled\n;BootPromptSeconds=7\n")
    (work / "bad.ini").write_text("[BiosKnobs]\nBootFst==Enabled\n")
    write_script(work / "refusing/sudo", "echo 'sudo: a password is required' >&2\nexit 1\n")
    write_script(work / "recording/sudo", f"shift\necho \"$*\" >>'{work}/command-lines'\n")
    before = sorted(os.listdir("/tmp"))
    tasks = Tasks(lab, "m1")
    for add in (add_reading, add_contradictions, add_exit_codes, add_programming):
        add(tasks)
    check_traces(lab, tasks.run(), before)
    check_sudo(lab)
    return min(failures, 1)


if __name__ == "__main__":
    sys.exit(main())
