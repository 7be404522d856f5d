#!/usr/bin/env python3
"""check-lab.py BINARIES WORK: the role on 50 simulated machines, without a network. Says what it sees, and ends with 1
when something is not as it should be."""
import json
import pathlib
import sys

from lab import BASELINE, CHANGED, Lab

failures = 0


def check(holds, message):
    global failures
    if not holds:
        failures += 1
        print("FAILED:", message)


def say(what, run):
    print(f"{what}: {run.elapsed:.1f} s, {run.processor:.1f} s of processor time")


# Three machines of 50 that are not as they should be, and what their report names.
AILING = {
    "m07": ({"baseline_environment": {"FENRIKCMD_FAULT": "progknobsfromfile=exit:1"}},
            "Program: ", ["BootFast, BootPromptSeconds, AssetTag: rejected", "the external tool", "way out"]),
    "m13": ({"baseline_options": {**BASELINE, "BootFst": "Enabled"}},
            "Check, and make the plan: ", ["BootFst: there is no option", "did you mean \"BootFast\"", "way out"]),
    "m29": ({"machine_is_stuck": True},
            "Read back: ", ["BootFast: still waits for the restart", "did not take", "way out"]),
}


def check_plan(lab):
    """Check mode: plans for all, and not a byte written."""
    before = {name: machine.tree() for name, machine in lab.machines.items()}
    run = lab.run("biosconfig.lab.baseline", "--check", "--diff", baseline_max_failures=100)
    say("check mode", run)
    check({name: machine.tree() for name, machine in lab.machines.items()} == before, "check mode has written")
    check(run.failed == {"m13"}, f"failed in check mode: {run.failed}\n{run.output[-3000:]}")
    check("-BootFast = Disabled\n" in run.output and "+BootFast = Enabled\n" in run.output, "no difference is shown")
    check("Bench 11" not in run.output and "AssetTag = (hidden" in run.output, "a value that is to be hidden")
    check(all(changed == (name not in run.failed) for name, changed in run.changed.items()), "changed in check mode")


def check_first_run(lab):
    plans = {name: lab.kept("plan", name) for name in lab.machines}
    before = lab.values("m01")
    run = lab.run("biosconfig.lab.baseline", baseline_max_failures=100)
    say("first run", run)
    check(run.failed == set(AILING), f"failed in the first run: {run.failed}\n{run.output[-3000:]}")
    for name in set(lab.machines) - set(AILING):
        planned = sorted(change["name"] for change in plans[name]["changes"])
        outcome = lab.kept("outcome", name)
        check(planned == CHANGED == sorted(outcome["programmed"]) and outcome["outcome"] == "done", f"{name}: {outcome}")
        state = lab.machines[name].state()
        check(not state["pending"], f"{name} waits for a restart: {state}")
    after = lab.values("m01")
    check({name: value for name, value in after.items() if before[name] != value} ==
          {name: BASELINE[name] for name in CHANGED}, "other options are changed than those of the plan")
    report = (lab.results / "report.txt").read_text()
    check(report.startswith("50 machines, 47 done, 3 failed\n"), report)
    for name, (_, step, words) in AILING.items():
        outcome = lab.kept("outcome", name)
        text = f"{outcome.get('step')}: {outcome.get('reason')}"
        check(text.startswith(step) and all(word in text for word in words), f"{name}: {text}")
        check(text in report and f"{name}" in report, f"{name} is not in the report")
    check(len(json.loads((lab.results / "report.json").read_text())) == 50, "machines in report.json")


def check_second_run(lab):
    """What was done is not done again; the three, mended, are brought to the baseline."""
    lab.variables.clear()
    run = lab.run("biosconfig.lab.baseline")
    say("second run", run)
    again = {name for name, changed in run.changed.items() if changed}
    check(run.code == 0 and not run.failed and again == set(AILING), f"{run.code} {run.failed} {again}\n{run.output[-3000:]}")


def check_killed_run(lab):
    """A run that is ended at three points can be started again."""
    names = sorted(lab.machines)[:6]
    points = {
        "planning": lambda: len(list((lab.results / "plan").iterdir())) >= 3,
        "programming": lambda: any(lab.machines[name].state()["pending"] for name in names),
        "restarting": lambda: any("restarting" in path.read_text() for path in (lab.results / "outcome").iterdir()),
    }
    for point, is_reached in points.items():
        for name in names:
            lab.machines[name].prepare()
        for folder in ("plan", "outcome"):
            for path in (lab.results / folder).iterdir():
                path.unlink()
        subset = {"baseline_hosts": ",".join(names), "baseline_batches": 6}
        check(lab.run_and_kill("biosconfig.lab.baseline", is_reached, **subset), f"{point}: the run was over")
        for name in names:
            state = lab.machines[name].state()
            found = len(state["pending"]) or len(CHANGED)
            check(found == len(CHANGED), f"{name} has half a baseline after a kill when {point}: {state}")
        run = lab.run("biosconfig.lab.baseline", **subset)
        say(f"started again after a kill when {point}", run)
        outcomes = {lab.kept("outcome", name)["outcome"] for name in names}
        check(run.code == 0 and outcomes == {"done"}, f"{point}: {outcomes}\n{run.output[-3000:]}")
        check(not any(lab.machines[name].state()["pending"] for name in names), f"{point}: pending")


def check_batches(lab):
    """Behind the first batch with more failures than the limit no further one is begun; a second start goes on."""
    names = sorted(lab.machines)[:6]
    subset = {"baseline_hosts": ",".join(names), "baseline_batches": 2, "baseline_max_failures": 40}
    for name in names:
        lab.machines[name].prepare()
    lab.variables = {names[2]: {"baseline_environment": {"FENRIKCMD_FAULT": "fenrikstatus=exit:3"}}}
    run = lab.run("biosconfig.lab.baseline", **subset)
    outcomes = [row["outcome"] for row in json.loads((lab.results / "report.json").read_text())]
    check(run.code != 0 and outcomes == ["done", "done", "failed", "done", "not begun", "not begun"],
          f"batches: {outcomes}\n{run.output[-3000:]}")
    check("BootFast" not in lab.machines[names[4]].state()["current"], "a machine of a batch that was not begun is changed")
    run = lab.run("biosconfig.lab.baseline", **{**subset, "baseline_max_failures": 50})
    outcomes = [row["outcome"] for row in json.loads((lab.results / "report.json").read_text())]
    check(outcomes == ["done", "done", "failed", "done", "done", "done"], f"limit: {outcomes}\n{run.output[-3000:]}")
    lab.variables.clear()


def check_restart_left_out(lab):
    """Without a restart the values wait, and a later run restarts and proves; options come before a template."""
    subset = {"baseline_hosts": "m01", "baseline_batches": 1, "baseline_template": "nowhere.txt"}
    lab.machines["m01"].prepare()
    lab.run("biosconfig.lab.baseline", **subset, baseline_restart=False)
    pending = lab.machines["m01"].state()["pending"]
    check(len(pending) == len(CHANGED) and lab.kept("outcome", "m01")["outcome"] == "restart pending",
          f"without a restart: {pending}")
    run = lab.run("biosconfig.lab.baseline", **subset)
    check(lab.kept("outcome", "m01")["outcome"] == "done" and not lab.machines["m01"].state()["pending"],
          f"the restart that was left out: {run.output[-3000:]}")


def check_page(lab):
    """One page of all; who differs from the baseline, and in what."""
    template = lab.work / "lab.txt"
    template.write_text("\n;".join(f"{name}={value}" for name, value in BASELINE.items()))
    lab.variables = {"m50": {"baseline_environment": {"FENRIKCMD_FAULT": "savexml=halfdump"}}}
    lab.machines["m02"].prepare()
    run = lab.run("biosconfig.lab.compare", "-v", compare_program=lab.program, compare_baseline=str(template))
    say("page of all", run)
    check("49 machines, 1 of them not as the baseline" in run.output and run.failed == {"localhost"} and
          "m50: " in run.output, f"page: {run.output[-3000:]}")
    check('"differing": {"m02": ["BootFast", "BootPromptSeconds"]}' in run.output, "who differs")
    page = (lab.work / "compare-results/page.html").read_text()
    check("baseline" in page and "m49" in page and "Prüfstand" not in page, "the page")
    check((lab.work / "compare-results/gathered/m01.json").stat().st_mode & 0o777 == 0o600, "mode of a kept file")


def main():
    binaries, work = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
    lab = Lab(work, binaries, [f"m{number:02}" for number in range(1, 51)])
    for machine in lab.machines.values():
        machine.prepare()
    lab.variables = {name: variables for name, (variables, _, _) in AILING.items()}
    for part in (check_plan, check_first_run, check_second_run, check_page, check_killed_run, check_batches,
                 check_restart_left_out):
        part(lab)
    return min(failures, 1)


if __name__ == "__main__":
    sys.exit(main())
