#!/usr/bin/env python3
"""measure.py BINARIES WORK [MACHINES...]: what the playbooks cost on so many simulated machines (50 and 500) with a
baseline of 300 options, beside a playbook that only pings; and what our part of it is."""
import json
import pathlib
import resource
import shutil
import subprocess
import sys
import threading
import time

from lab import Lab

FORKS = 8
OPTIONS = 301  # one of which is no option


def memory_of(group):
    """Proportional memory in MiB of all processes of a process group."""
    total = 0
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if int((process / "stat").read_text().rsplit(")", 1)[1].split()[2]) == group:
                lines = (process / "smaps_rollup").read_text().splitlines()
                total += sum(int(line.split()[1]) for line in lines if line.startswith("Pss:"))
        except (OSError, ValueError, IndexError):
            continue
    return total / 1024


def run(lab, playbook, *arguments, **variables):
    """Seconds, seconds of processor time, and the largest memory in MiB of all that the run has started."""
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    running = subprocess.Popen(lab.command(playbook, *arguments, **variables), cwd=lab.work, env=lab.environment(),
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True)
    largest, over = [0], threading.Event()

    def watch():
        while not over.wait(0.5):
            largest[0] = max(largest[0], memory_of(running.pid))

    watcher = threading.Thread(target=watch)
    watcher.start()
    code = running.wait()
    over.set()
    watcher.join()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if code != 0:
        sys.exit(f"{playbook} {arguments} ended with {code}")
    return (time.monotonic() - start, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, largest[0])


def processor_time(function, times=20):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    for _ in range(times):
        function()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) / times * 1000


def prepare(lab):
    """All machines as they are before the first run; 30 of 300 options are to be changed."""
    first = next(iter(lab.machines.values()))
    first.prepare(OPTIONS)
    for machine in lab.machines.values():
        for path in (first.firmware, first.fenrik / "FenrikOutput.xml"):
            target = machine.fenrik / path.relative_to(first.fenrik)
            if target != path:
                shutil.copy(path, target)
    listed = subprocess.run([lab.program, "list", "--json", "--program-files", first.place], check=True, capture_output=True,
                            text=True, env={})
    wanted, changed = [], 0
    for option in json.loads(listed.stdout)["options"]:
        value = option["value"]["text"]
        others = [choice["text"] for choice in option.get("choices", []) if choice["text"] != value]
        if others and changed < 30 and option["condition"] == "TRUE":
            value, changed = others[0], changed + 1
        if option["kind"] != "text" and ";" not in value:
            wanted.append(f"{option['name']}={value}")
    (lab.work / "lab.txt").write_text("\n;".join(wanted) + "\n")
    return len(wanted), changed


def measure(binaries, work, count):
    lab = Lab(work, binaries, [f"m{number:04}" for number in range(1, count + 1)], FORKS)
    options, changed = prepare(lab)
    print(f"{count} machines, {FORKS} forks, a template of {options} options of which {changed} are to be changed")
    ping = work / "ping.yml"
    ping.write_text("- hosts: all\n  gather_facts: false\n  tasks:\n    - ansible.builtin.ping:\n")
    baseline = {"baseline_template": str(work / "lab.txt"), "baseline_options": {}, "baseline_batches": "100%"}
    compare = {"compare_program": lab.program, "compare_baseline": str(work / "lab.txt")}
    for name, playbook, arguments, variables in (
            ("ping", str(ping), (), {}), ("check mode", "biosconfig.lab.baseline", ("--check",), baseline),
            ("first run", "biosconfig.lab.baseline", (), baseline),
            ("second run", "biosconfig.lab.baseline", (), baseline), ("page", "biosconfig.lab.compare", (), compare)):
        elapsed, processor, memory = run(lab, playbook, *arguments, **variables)
        print(f"{name:<11} {elapsed:7.1f} s {processor:7.1f} s of processor time {processor / count * 1000:6.0f} ms a machine "
              f"{memory:6.0f} MiB", flush=True)


def measure_our_part(binaries, work):
    """What biosconfig and the external tool take of a machine's processor, without Ansible."""
    lab = Lab(work, binaries, ["m1"])
    prepare(lab)
    common = ["--json", "--redact", "--program-files", str(lab.machines["m1"].place), "--"]
    template = str(work / "lab.txt")

    def call(*arguments):
        subprocess.run([lab.program, *arguments], check=True, capture_output=True, env={})

    def program():
        lab.machines["m1"].prepare(OPTIONS)
        call("update", "--only-changes", *common, template)

    prepared = processor_time(lambda: lab.machines["m1"].prepare(OPTIONS))
    print(f"our part of a machine: a plan {processor_time(lambda: call('update', '--dry-run', *common, template)):.0f} ms, "
          f"programming {processor_time(program) - prepared:.0f} ms, a list {processor_time(lambda: call('list', *common[:-1])):.0f} ms "
          "of processor time")


def main():
    binaries, work = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
    (work / "part").mkdir()
    measure_our_part(binaries, work / "part")
    for count in [int(word) for word in sys.argv[3:]] or [50, 500]:
        place = work / str(count)
        place.mkdir()
        measure(binaries, place, count)
        shutil.rmtree(place)


if __name__ == "__main__":
    main()
