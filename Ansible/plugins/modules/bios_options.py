#!/usr/bin/python
"""Programs BIOS options of a machine."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
---
module: bios_options
short_description: Programs BIOS options of a machine
version_added: 1.0.0
description:
  - Has C(biosconfig) on the machine judge and program options, and reads back what became of each.
  - What is programmed takes effect when the machine is restarted; see I(reboot_required).
  - Where one option or value is wrong, nothing is programmed.
  - In check mode nothing is programmed, and the result is the plan.
options:
  options:
    description:
      - The values by name. A value is a choice's text or number, a number, or a text.
      - Quote what YAML takes for something else, such as C(on), C(yes), C(1.10) and C(010).
      - With I(state=default) the values do not matter.
    type: dict
  secrets:
    description:
      - The same for values that nobody is to see. They are in no result, no diff and no log, and the template of
        them that the machine gets for a moment can be read by its owner alone.
      - Switches redaction on.
    type: dict
  template:
    description:
      - A template, C(.txt) or C(.ini), as C(biosconfig update) takes it. Of the controller, where it is looked for as
        files of a role or playbook are (a file of C(ansible-vault) is opened), or with I(remote_src) of the machine.
    type: path
  remote_src:
    description: Whether I(template) is a file of the machine.
    type: bool
    default: false
  all_options:
    description: With I(state=default), all options.
    type: bool
  state:
    description:
      - C(present) programs the values that are given.
      - C(default) programs the defaults of the options that are named.
    type: str
    choices: [present, default]
    default: present
  redact:
    description:
      - Hides values that tell of a person, a place or a secret, in results and diffs.
      - C(biosconfig help) on the machine lists the patterns; I(redact_also) adds some.
    type: bool
    default: true
  tool_dir:
    description: The tool directory of the module that C(biosconfig) uses; without it one is made for the moment.
    type: path
  dest:
    description:
      - A file on the controller for the result as JSON, also of a failure.
      - It is replaced in one step, in check mode, too, with mode 0600.
    type: path
extends_documentation_fragment:
  - biosconfig.lab.common
notes:
  - Values of I(options) stand in the machine's log of Ansible, as the arguments of every module do. Passwords belong
    into I(secrets).
author:
  - The developers of the BIOS configuration module (@biosconfig)
"""

EXAMPLES = r"""
- name: What would the baseline change?
  biosconfig.lab.bios_options:
    template: lab.txt
  check_mode: true
  diff: true

- name: Program two options
  biosconfig.lab.bios_options:
    options:
      BootFast: Enabled
      BootPromptSeconds: 12
  register: programmed

- name: Restart where it takes that
  ansible.builtin.reboot:
  when: programmed.reboot_required

- name: A password
  biosconfig.lab.bios_options:
    secrets:
      LanWakePassword: "{{ vault_wake_password }}"

- name: Back to the defaults
  biosconfig.lab.bios_options:
    options:
      BootFast:
      BootPromptSeconds:
    state: default
"""

RETURN = r"""
reboot_required:
  description: Whether a value waits for a restart, also one of an earlier run. In check mode, whether one would.
  type: bool
  returned: always
verdicts:
  description:
    - What became of each option, by name.
    - One of C(pending restart), C(in effect), C(unchanged), C(rejected), C(mismatch).
    - In check mode C(to program) takes the place of the outcome. Where a name or a value is wrong it is C(refused), and
      all others are C(not programmed) or C(unchanged).
  type: dict
  returned: always
  sample: {"BootFast": "pending restart", "BootMode": "unchanged"}
changes:
  description: The options that were (or would be) programmed, with their old and new values; null where hidden.
  type: list
  elements: dict
  returned: always
  sample: [{"name": "BootFast", "old": "Disabled", "new": "Enabled"}]
failures:
  description: What went wrong; each entry has I(option) (or null), I(reason) and I(way_out).
  type: list
  elements: dict
  returned: failure
exit_code:
  description: That of C(biosconfig), where it has run.
  type: int
  returned: failure
dest:
  description: The file on the controller.
  type: str
  returned: with I(dest)
"""

import os
import shutil
import tempfile

from ansible.module_utils.basic import AnsibleModule
from ansible.module_utils.common.text.converters import to_bytes
from ansible_collections.biosconfig.lab.plugins.module_utils.biosconfig import (
    COMMON_ARGUMENTS, Biosconfig, Failure, failure, failures_of)

ARGUMENTS = dict(
    COMMON_ARGUMENTS,
    options=dict(type="dict"),
    secrets=dict(type="dict", no_log=True),
    template=dict(type="path"),
    remote_src=dict(type="bool", default=False),
    all_options=dict(type="bool"),
    state=dict(type="str", choices=["present", "default"], default="present"),
    redact=dict(type="bool", default=True),
    tool_dir=dict(type="path"),
)
PROGRAMMED = ("pending restart", "in effect", "mismatch")


def problem_of_name(name):
    """Why a knob file cannot name the option; None where it can."""
    if not name or name != name.strip() or name[0] in "#[" or any(mark in name for mark in "=;\r\n"):
        return failure("this cannot be the name of an option", "correct the name", name or "(empty)")
    return None


def text_of(name, value):
    """The text of a value for a knob file. Raises Failure for what YAML, or the file, would make something else of."""
    kind = {bool: "a truth value", float: "a number with a point", type(None): "null"}.get(type(value))
    if kind:
        raise Failure([failure("YAML takes the value for %s" % kind, "put it in quotation marks", name)])
    if isinstance(value, (dict, list)):
        raise Failure([failure("the value is a list or a dictionary", "give one value", name)])
    text = str(value)
    if text != text.strip() or text.startswith("=") or any(mark in text for mark in ";\r\n"):
        raise Failure([failure("the tool cannot be given blanks around a value, a \"=\" in front, a \";\" or a line "
                               "break", "give a value without", name)])
    return text


def knob_file(values):
    """The assignments as a knob file. Raises Failure with all that cannot be assigned."""
    problems = [problem for problem in (problem_of_name(name) for name in values) if problem]
    lines = ["[BiosKnobs]"]
    for name, value in values.items():
        try:
            lines.append("%s==%s" % (name, text_of(name, value)))
        except Failure as error:
            problems += error.failures
    if problems:
        raise Failure(problems)
    return "\n".join(lines) + "\n"


class Undertaking(object):
    """What is to be done on the machine, and the folder for the template."""

    def __init__(self, module):
        self.module = module
        self.params = module.params
        self.secrets = module.params["secrets"] or {}
        self.values = dict(module.params["options"] or {}, **self.secrets)
        self.program = Biosconfig(module, module.params["redact"], sorted(self.secrets))
        self.folder = None

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        if self.folder:
            shutil.rmtree(self.folder, ignore_errors=True)

    def carry_out(self):
        """Gives exit code and document."""
        flags = ["--tool-dir", self.params["tool_dir"]] if self.params["tool_dir"] else []
        flags += ["--dry-run"] if self.module.check_mode else ["--only-changes"]
        if self.params["state"] == "present":
            return self.program.run("update", flags, [self.template()])[:2]
        if self.params["all_options"]:
            return self.program.run("reset", flags + ["--all"])[:2]
        return self.program.run("reset", flags, self.names())[:2]

    def names(self):
        """The options that go to their defaults."""
        if not self.params["template"]:
            return list(self.values)
        code, document = self.program.run("check", [], [self.template()])[:2]
        if code != 0:
            raise Failure(failures_of(code, document), code)
        return [change["name"] for change in document["changes"]]

    def template(self):
        """The path of the template, written first where there is none."""
        if self.params["template"]:
            return self.params["template"]
        text = knob_file(self.values)
        self.folder = tempfile.mkdtemp(prefix="bios_options.", dir=self.module.tmpdir)
        path = os.path.join(self.folder, "options.ini")
        with os.fdopen(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "wb") as stream:
            stream.write(to_bytes(text))
        return path

    def waiting(self, changes):
        """The names of options that an earlier run has programmed and that wait for a restart."""
        idle = [change for change in changes if not change["toProgram"]]
        names = set(change["name"] for change in idle
                    if change.get("verdict") == "pending restart"
                    or ("verdict" not in change and "old" in change and change["old"] != change["new"]))
        hidden = set(change["name"] for change in idle if change.get("redacted") and "verdict" not in change)
        if hidden:
            document = self.program.run("list", ["--pending"])[1]
            names |= hidden & set(option["name"] for option in document.get("options", []))
        return names


def shown(value):
    """A value of a document as text; None where it is hidden."""
    return value["text"] if value else None


def diff_of(changes):
    """Old and new values in Ansible's form of a difference."""
    before, after = [], []
    for change in changes:
        old, new = change["old"], change["new"]
        if old is None and new is None:
            old, new = "(hidden)", "(hidden, another value)"
        elif old == new:
            old += " (another value waits for a restart)"
        before.append("%s = %s\n" % (change["name"], old))
        after.append("%s = %s\n" % (change["name"], new))
    return dict(before="".join(before), after="".join(after),
                before_header="BIOS options", after_header="BIOS options")


def verdict_of(change, waiting, is_failed):
    """One of the words that the documentation lists."""
    if "verdict" in change:
        return change["verdict"]
    if change["toProgram"]:
        return "not programmed" if is_failed else "to program"
    return "pending restart" if change["name"] in waiting else "unchanged"


def verdicts_of(document, waiting, is_failed):
    """The verdicts by name, also of options that were refused before there was a plan for them."""
    verdicts = dict((change["name"], verdict_of(change, waiting, is_failed)) for change in document.get("changes", []))
    for error in document.get("errors", []):
        if error["severity"] == "error" and error.get("option"):
            verdicts[error["option"]] = "refused"
    return verdicts


def summarize(undertaking, code, document):
    """The result; it has `failures` where something has failed."""
    module = undertaking.module
    planned = document.get("changes", [])
    waiting = undertaking.waiting(planned) if code == 0 else set()
    verdicts = verdicts_of(document, waiting, code != 0)
    to_program = [change for change in planned if change["toProgram"]]
    done = [change for change in to_program if change.get("verdict") in PROGRAMMED]
    is_plan = module.check_mode and code == 0
    result = dict(
        changed=bool(to_program if is_plan else done),
        reboot_required=bool(waiting or (is_plan and to_program) or "pending restart" in verdicts.values()),
        verdicts=verdicts,
        changes=[dict(name=change["name"], old=shown(change.get("old")), new=shown(change.get("new")))
                 for change in to_program],
    )
    if module._diff and (is_plan or done):
        result["diff"] = diff_of(result["changes"])
    if code != 0:
        result.update(failures=failures_of(code, document, bool(module.params["template"])), exit_code=code)
    return result


def check_arguments(module):
    """Ends where arguments contradict each other in a way that no table says."""
    if module.params["all_options"] is not None and module.params["state"] != "default":
        module.fail_json(msg="all_options goes with state=default only")
    if module.params["all_options"] is False:
        module.fail_json(msg="all_options=false names no option")
    if module.params["remote_src"] and not module.params["template"]:
        module.fail_json(msg="remote_src goes with template only")
    both = set(module.params["options"] or {}) & set(module.params["secrets"] or {})
    if both:
        module.fail_json(msg="options and secrets both have: " + ", ".join(sorted(both)))


def main():
    """Entry point of the module."""
    module = AnsibleModule(
        argument_spec=ARGUMENTS,
        supports_check_mode=True,
        mutually_exclusive=[("options", "template", "all_options"), ("secrets", "template", "all_options")],
        required_one_of=[("options", "secrets", "template", "all_options")],
    )
    check_arguments(module)
    try:
        with Undertaking(module) as undertaking:
            result = summarize(undertaking, *undertaking.carry_out())
    except Failure as error:
        result = dict(changed=False, reboot_required=False, verdicts={}, changes=[], failures=error.failures,
                      exit_code=error.exit_code)
    if "failures" in result:
        module.fail_json(msg=str(Failure(result["failures"])), **result)
    module.exit_json(**result)


if __name__ == "__main__":
    main()
