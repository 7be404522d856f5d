"""A lab of simulated machines: a directory and a firmware each, all on this system."""
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FENRIK = "Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK"

# What the baseline says: three values that are not the simulated firmware's, and one that is.
BASELINE = {"BootFast": "Enabled", "BootPromptSeconds": "7", "BootMode": "UEFI", "AssetTag": "Bench 11"}
CHANGED = sorted(set(BASELINE) - {"BootMode"})


class Machine:
    """One directory with a tool and its firmware."""

    def __init__(self, name, place, tool):
        self.name = name
        self.place = place / name
        self.fenrik = self.place / FENRIK
        self.firmware = self.fenrik / "FenrikBinary/FenrikFirmware.json"
        self.tool = self.fenrik / "FenrikBinary/FenrikCmd.exe"
        self.tool.parent.mkdir(parents=True)
        try:
            os.link(tool, self.tool)
        except OSError:
            shutil.copy(tool, self.tool)

    def run_tool(self, *arguments):
        subprocess.run([self.tool, *arguments], check=True, capture_output=True, env={})

    def prepare(self, options=None):
        """As it is before the first run: the firmware's own values, and a dump of them."""
        self.run_tool(*(["generate", str(options)] if options else ["reset"]))
        self.run_tool("savexml", str(self.fenrik / "FenrikOutput.xml"))

    def tree(self):
        """Hash of each file below, by its name."""
        return {str(path.relative_to(self.place)): hashlib.sha256(path.read_bytes()).hexdigest()
                for path in self.place.rglob("*") if path.is_file()}

    def state(self):
        """What the firmware holds: values that are not the default, and those that wait for a restart."""
        return json.loads(self.firmware.read_text())


class Lab:
    """Machines, their inventory, and runs of playbooks on them."""

    def __init__(self, work, binaries, names, forks=8):
        self.work = work
        self.binaries = binaries
        self.forks = forks
        self.program = str(binaries / "biosconfig")
        self.collections = work / "collections"
        self.results = work / "results"
        self.machines = {name: Machine(name, work / "machines", binaries / "FenrikCmd.exe") for name in names}
        self.variables = {}
        link = self.collections / "ansible_collections/biosconfig/lab"
        if not link.exists():
            link.parent.mkdir(parents=True)
            link.symlink_to(ROOT / "Ansible")
        (work / "restart.yml").write_text(
            "---\n- name: Restart the simulated machine\n"
            "  ansible.builtin.command:\n    argv: [\"{{ machine_tool }}\", restart]\n"
            "  when: not machine_is_stuck | default(false)\n  changed_when: true\n")

    def write_inventory(self):
        everyone = {"ansible_connection": "local", "ansible_python_interpreter": sys.executable,
                    "baseline_program": self.program,
                    "baseline_program_files": f"{self.work}/machines/{{{{ inventory_hostname }}}}",
                    "machine_tool": f"{{{{ baseline_program_files }}}}/{FENRIK}/FenrikBinary/FenrikCmd.exe",
                    "baseline_restart_tasks": f"{self.work}/restart.yml", "baseline_options": BASELINE,
                    "baseline_read_back_retries": 1, "baseline_read_back_delay": 0}
        hosts = {name: self.variables.get(name, {}) for name in self.machines}
        path = self.work / "inventory.json"
        path.write_text(json.dumps({"all": {"hosts": hosts, "vars": everyone}}))
        return path

    def command(self, playbook, *arguments, **variables):
        variables = {"baseline_results": str(self.results), **variables}
        return ["ansible-playbook", "-i", str(self.write_inventory()), playbook, "--forks", str(self.forks),
                "-e", json.dumps(variables), *arguments]

    def environment(self):
        # A scratch folder of its own: modules of simulated machines have no other place to leave anything.
        return {"PATH": os.environ["PATH"], "HOME": str(self.work / "home"), "LC_ALL": "C.UTF-8", "PWD": str(self.work),
                "ANSIBLE_COLLECTIONS_PATH": str(self.collections), "ANSIBLE_HOME": str(self.work / "home/ansible"),
                "ANSIBLE_REMOTE_TMP": str(self.work / "home/remote"), "ANSIBLE_LOCAL_TEMP": str(self.work / "home/local"),
                "ANSIBLE_PIPELINING": "1",
                "ANSIBLE_LOCALHOST_WARNING": "0", "ANSIBLE_NOCOLOR": "1", "ANSIBLE_RETRY_FILES_ENABLED": "0"}

    def run(self, playbook, *arguments, **variables):
        """Runs a playbook to its end."""
        before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
        done = subprocess.run(self.command(playbook, *arguments, **variables), cwd=self.work, env=self.environment(),
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return Run(done.returncode, done.stdout, time.monotonic() - start,
                   after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)

    def run_and_kill(self, playbook, when, **variables):
        """Starts a playbook and ends it and all that it has started, without a word, once `when()` holds."""
        running = subprocess.Popen(self.command(playbook, **variables), cwd=self.work, env=self.environment(),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        while not when() and running.poll() is None:
            time.sleep(0.01)
        was_running = running.poll() is None
        os.killpg(running.pid, signal.SIGKILL)
        running.wait()
        return was_running

    def kept(self, folder, machine):
        return json.loads((self.results / folder / f"{machine}.json").read_text())

    def values(self, machine):
        listed = subprocess.run([self.program, "list", "--json", "--program-files", self.machines[machine].place],
                                check=True, capture_output=True, text=True, env={})
        return {option["name"]: option["value"]["text"] for option in json.loads(listed.stdout)["options"]}


class Run:
    """What a run of a playbook has said, and what it took in seconds."""

    RECAP = re.compile(r"^(\S+)\s+: ok=(\d+)\s+changed=(\d+)\s+unreachable=(\d+)\s+failed=(\d+)", re.MULTILINE)

    def __init__(self, code, output, elapsed, processor):
        self.code = code
        self.output = output
        self.elapsed = elapsed
        self.processor = processor
        self.changed, self.failed = {}, set()
        for name, _, changed, unreachable, failed in self.RECAP.findall(output):
            self.changed[name] = int(changed)
            if int(unreachable) + int(failed):
                self.failed.add(name)
