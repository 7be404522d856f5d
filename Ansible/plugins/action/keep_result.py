"""Keeps a text or a result in a file on the controller."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.errors import AnsibleActionFail
from ansible.plugins.action import ActionBase
from ansible_collections.biosconfig.lab.plugins.plugin_utils.kept_file import keep


class ActionModule(ActionBase):
    """See the documentation of the module of the same name."""

    TRANSFERS_FILES = False
    _requires_connection = False
    _VALID_ARGS = frozenset(("dest", "content"))

    def run(self, tmp=None, task_vars=None):
        """Writes the file."""
        result = super(ActionModule, self).run(tmp, task_vars)
        for name in sorted(self._VALID_ARGS):
            if self._task.args.get(name) is None:
                raise AnsibleActionFail("%s is missing" % name)
        content = self._task.args["content"]
        return dict(result, changed=False, dest=keep(self._task.args["dest"], content), content=content)
