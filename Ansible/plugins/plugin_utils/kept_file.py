"""Files on the controller that plugins write."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json
import os
import tempfile

from ansible.errors import AnsibleActionFail
from ansible.module_utils.common.text.converters import to_bytes
from ansible.parsing.ajson import AnsibleJSONEncoder

# What a result has for Ansible alone.
INTERNAL = ("invocation", "diff", "dest", "ansible_facts", "_ansible_no_log", "_ansible_parsed")


def keep(path, content):
    """Writes a text, or anything else as JSON, with mode 0600; the file is replaced in one step, or not at all.

    Gives the full path. Raises AnsibleActionFail where the file cannot be written.
    """
    if not isinstance(content, str):
        content = json.dumps(content, cls=AnsibleJSONEncoder, indent=1, sort_keys=True, ensure_ascii=False) + "\n"
    path = os.path.abspath(os.path.expanduser(path))
    folder = os.path.dirname(path)
    beside = None
    try:
        os.makedirs(folder, mode=0o700, exist_ok=True)
        descriptor, beside = tempfile.mkstemp(prefix=".", suffix=".new", dir=folder)
        with os.fdopen(descriptor, "wb") as stream:
            stream.write(to_bytes(content, errors="surrogate_or_replace"))
        os.rename(beside, path)
    except OSError as error:
        if beside and os.path.exists(beside):
            os.unlink(beside)
        raise AnsibleActionFail("cannot write %s on the controller: %s" % (path, error.strerror))
    return path


def without_internals(result):
    """The part of a module's result that is worth keeping."""
    return dict((name, value) for name, value in result.items() if name not in INTERNAL)
