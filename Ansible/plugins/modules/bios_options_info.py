#!/usr/bin/python
"""The BIOS options of a machine."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r"""
---
module: bios_options_info
short_description: The BIOS options of a machine
version_added: 1.0.0
description:
  - Reads BIOS options with C(biosconfig list) on the machine. Nothing is written.
options:
  patterns:
    description:
      - Names of options, with C(*) and C(?); letter case does not matter. Without any, all options.
    type: list
    elements: str
    default: []
  page:
    description: Only options on this setup page and below.
    type: str
  changed:
    description: Only options with another value than the default.
    type: bool
    default: false
  pending:
    description: Only options that wait for a restart, where the external tool tells.
    type: bool
    default: false
  details:
    description: Whether I(options) is returned, too, with help, choices, defaults and conditions.
    type: bool
    default: false
  redact:
    description:
      - Hides values that tell of a person, a place or a secret.
      - C(biosconfig help) on the machine lists the patterns; I(redact_also) adds some.
    type: bool
    default: false
  dest:
    description:
      - A file on the controller for the whole JSON object, as C(biosconfig view --compare) takes it.
      - It is replaced in one step, in check mode, too, with mode 0600. Values are not returned then, so that a
        controller need not hold those of all machines.
    type: path
extends_documentation_fragment:
  - biosconfig.lab.common
author:
  - The developers of the BIOS configuration module (@biosconfig)
"""

EXAMPLES = r"""
- name: How do the machines start?
  biosconfig.lab.bios_options_info:
    patterns: ["Boot*"]
  register: bios

- name: Use a value
  ansible.builtin.debug:
    var: bios.current.BootMode

- name: Bring everything to the controller
  biosconfig.lab.bios_options_info:
    redact: true
    dest: "gathered/{{ inventory_hostname }}.json"
"""

RETURN = r"""
current:
  description: The values by name, as text; null where the value is hidden. Not there with I(dest).
  type: dict
  returned: success
  sample: {"BootFast": "Disabled", "BootMode": "UEFI"}
count:
  description: How many options there are.
  type: int
  returned: success
  sample: 278
options:
  description: Each option as C(biosconfig list --json) describes it.
  type: list
  elements: dict
  returned: with I(details), without I(dest)
dest:
  description: The file on the controller.
  type: str
  returned: with I(dest)
failures:
  description: What went wrong; each entry has I(option) (or null), I(reason) and I(way_out).
  type: list
  elements: dict
  returned: failure
"""

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.biosconfig.lab.plugins.module_utils.biosconfig import (
    COMMON_ARGUMENTS, Biosconfig, Failure, failures_of)

ARGUMENTS = dict(
    COMMON_ARGUMENTS,
    patterns=dict(type="list", elements="str", default=[]),
    page=dict(type="str"),
    changed=dict(type="bool", default=False),
    pending=dict(type="bool", default=False),
    details=dict(type="bool", default=False),
    redact=dict(type="bool", default=False),
)


def flags_of(params):
    """The flags of `biosconfig list` for what is asked."""
    flags = ["--page", params["page"]] if params["page"] else []
    return flags + ["--" + name for name in ("changed", "pending") if params[name]]


def read(module):
    """What is returned; the text of the document where it goes to a file on the controller."""
    params = module.params
    code, document, text = Biosconfig(module, params["redact"]).run("list", flags_of(params), params["patterns"])
    if code != 0:
        raise Failure(failures_of(code, document), code)
    options = document["options"]
    result = dict(count=len(options))
    if params["dest"]:
        return dict(result, document=text)
    result["current"] = dict((option["name"], option.get("value", {}).get("text")) for option in options)
    if params["details"]:
        result["options"] = options
    return result


def main():
    """Entry point of the module."""
    module = AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True)
    try:
        module.exit_json(changed=False, **read(module))
    except Failure as error:
        module.fail_json(msg=str(error), failures=error.failures, exit_code=error.exit_code)


if __name__ == "__main__":
    main()
