"""Reads BIOS options, and keeps them in a file on the controller where that is wished for."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.plugins.action import ActionBase
from ansible_collections.biosconfig.lab.plugins.plugin_utils.kept_file import keep


class ActionModule(ActionBase):
    """See the documentation of the module of the same name."""

    def run(self, tmp=None, task_vars=None):
        """Runs the module; its document does not stay in the controller's memory."""
        result = super(ActionModule, self).run(tmp, task_vars)
        result.update(self._execute_module(task_vars=task_vars))
        document = result.pop("document", None)
        if document is not None:
            result["dest"] = keep(self._task.args["dest"], document)
        return result
