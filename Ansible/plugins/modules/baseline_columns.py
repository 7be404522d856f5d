#!/usr/bin/python
"""Documentation of the action of the same name."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
---
module: baseline_columns
short_description: Brings what was gathered of machines down to the options of a baseline
version_added: 1.0.0
description:
  - Works on files of the controller alone, in check mode, too, and without a connection to a machine.
  - Writes a list of options for the baseline and one for each machine, which have only the options that the baseline
    assigns, so that C(biosconfig view --compare) shows who differs from it, and in what.
options:
  gathered:
    description: Files that M(biosconfig.lab.bios_options_info) has kept.
    type: list
    elements: path
    required: true
  check:
    description:
      - What C(biosconfig check --json) has said of the baseline's template, with the first file of I(gathered) in
        the place of the machine.
    type: dict
    required: true
  dest:
    description: The folder for the lists.
    type: path
    required: true
author:
  - The developers of the BIOS configuration module (@biosconfig)
"""

EXAMPLES = r"""
- name: What does the template say?
  ansible.builtin.command:
    argv: [biosconfig, check, lab.txt, --json, --redact, --from, gathered/bench1.json]
  register: checked
  changed_when: false

- name: Leave what the template does not say
  biosconfig.lab.baseline_columns:
    gathered: [gathered/bench1.json, gathered/bench2.json]
    check: "{{ checked.stdout | from_json }}"
    dest: columns
  register: columns
"""

RETURN = r"""
baseline:
  description: The file with the baseline's values.
  type: str
  returned: success
machines:
  description: The files of the machines, in the order of I(gathered).
  type: list
  elements: str
  returned: success
differing:
  description: The machines that differ from the baseline, by the names of their files, with the names of the options.
  type: dict
  returned: success
  sample: {"bench2": ["BootFast"]}
"""
