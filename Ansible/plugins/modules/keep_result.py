#!/usr/bin/python
"""Documentation of the action of the same name."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
---
module: keep_result
short_description: Keeps a text or a result in a file on the controller
version_added: 1.0.0
description:
  - Writes a file on the controller, in check mode, too, without a connection to the machine.
  - The file is replaced in one step and has mode 0600. It is nothing of the machine, so nothing counts as changed.
options:
  dest:
    description: The file. Folders that are missing are made, with mode 0700.
    type: path
    required: true
  content:
    description: A text, which is written as it is, or anything else, which is written as JSON.
    type: raw
    required: true
author:
  - The developers of the BIOS configuration module (@biosconfig)
"""

EXAMPLES = r"""
- name: Keep what became of the machine
  biosconfig.lab.keep_result:
    dest: "results/{{ inventory_hostname }}.json"
    content:
      machine: "{{ inventory_hostname }}"
      verdicts: "{{ programmed.verdicts }}"
"""

RETURN = r"""
dest:
  description: The file.
  type: str
  returned: success
content:
  description: What was written, so that one task can keep it both in the file and in a variable.
  type: raw
  returned: success
"""
