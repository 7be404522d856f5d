"""Carries a template of the controller to the machine, and keeps the result where that is wished for."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

import os

from ansible.errors import AnsibleActionFail, AnsibleError
from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase
from ansible_collections.biosconfig.lab.plugins.plugin_utils.kept_file import keep, without_internals


class ActionModule(ActionBase):
    """See the documentation of the module of the same name."""

    TRANSFERS_FILES = True

    def run(self, tmp=None, task_vars=None):
        """Runs the module with a template that lies on the machine."""
        result = super(ActionModule, self).run(tmp, task_vars)
        arguments = self._task.args.copy()
        try:
            if arguments.get("template") and not boolean(arguments.get("remote_src", False), strict=False):
                arguments.update(template=self._carry(arguments["template"]), remote_src=True)
            result.update(self._execute_module(module_args=arguments, task_vars=task_vars))
        finally:
            self._remove_tmp_path(self._connection._shell.tmpdir)
        if arguments.get("dest"):
            result["dest"] = keep(arguments["dest"], dict(without_internals(result),
                                                          machine=(task_vars or {}).get("inventory_hostname")))
        return result

    def _carry(self, template):
        """Gives the path of the copy, which the owner alone, and whoever runs the module, can read."""
        try:
            source = self._loader.get_real_file(self._find_needle("files", template))
        except AnsibleError as error:
            raise AnsibleActionFail("cannot read the template: %s" % error)
        folder = self._make_tmp_path()
        carried = self._connection._shell.join_path(folder, os.path.basename(template))
        self._transfer_file(source, carried)
        self._remote_chmod((carried,), "0600")
        self._fixup_perms2((folder, carried), execute=False)
        return carried
