"""Brings what was gathered of machines down to the options of a baseline."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json
import os

from ansible.errors import AnsibleActionFail
from ansible.plugins.action import ActionBase
from ansible_collections.biosconfig.lab.plugins.plugin_utils.kept_file import keep


class ActionModule(ActionBase):
    """See the documentation of the module of the same name."""

    TRANSFERS_FILES = False
    _requires_connection = False

    def run(self, tmp=None, task_vars=None):
        """Writes the lists, one file at a time, so that no more than two are in memory."""
        result = super(ActionModule, self).run(tmp, task_vars)
        arguments = self.validate_argument_spec(argument_spec=dict(
            gathered=dict(type="list", elements="path", required=True),
            check=dict(type="dict", required=True),
            dest=dict(type="path", required=True),
        ))[1]
        assigned = dict((change["name"], change) for change in arguments["check"].get("changes", []))
        machines, differing, wanted = [], {}, None
        for path in arguments["gathered"]:
            document = _read(path)
            document["options"] = [option for option in document["options"] if option["name"] in assigned]
            wanted = wanted or _baseline(document, assigned)
            differences = _differences(document, wanted)
            if differences:
                differing[os.path.splitext(os.path.basename(path))[0]] = differences
            machines.append(keep(os.path.join(arguments["dest"], os.path.basename(path)), document))
        if not wanted:
            raise AnsibleActionFail("nothing was gathered of any machine")
        baseline = keep(os.path.join(arguments["dest"], "baseline.json"), wanted)
        return dict(result, changed=False, baseline=baseline, machines=machines, differing=differing)


def _read(path):
    """A document of `biosconfig list --json`."""
    try:
        with open(path, "rb") as stream:
            document = json.load(stream)
        return dict(document, options=list(document["options"]))
    except (OSError, ValueError, KeyError, TypeError) as error:
        raise AnsibleActionFail("%s is no list of BIOS options: %s" % (path, error))


def _baseline(document, assigned):
    """A document with the baseline's values: as if the machine had been programmed and restarted."""
    options = []
    for option in document["options"]:
        option = dict(option)
        option.pop("pending", None)
        new = assigned[option["name"]].get("new")
        if new:
            option["value"] = new
            option["changed"] = new != option.get("default")
        options.append(option)
    return dict(document, options=options)


def _differences(document, wanted):
    """The names of options whose value is known to be another one, or that only one of the two has."""
    values = dict((option["name"], option.get("value")) for option in document["options"])
    expected = dict((option["name"], option.get("value")) for option in wanted["options"])
    return [name for name in list(expected) + [name for name in values if name not in expected]
            if name not in values or name not in expected
            or (values[name] and expected[name] and values[name] != expected[name])]
