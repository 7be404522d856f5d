"""Documentation that the modules share."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type


class ModuleDocFragment(object):
    """Arguments of every module that runs biosconfig."""

    DOCUMENTATION = r"""
options:
  program:
    description: The program on the machine, a path or a name in the search path.
    type: path
    default: biosconfig
  program_files:
    description:
      - Where the external tool is installed on the machine, in the place of the environment variable C(ProgramFiles).
    type: path
  time_limit:
    description: After how many seconds a step with the external tool is given up and ended.
    type: int
    default: 300
  redact_also:
    description:
      - Options whose name, prompt or page matches one of these patterns are hidden, too.
      - Any pattern here switches redaction on.
    type: list
    elements: str
    default: []
  sudo:
    description:
      - Whether the program is started by C(sudo -n). With I(become) it need not be; this is for machines whose rule
        allows certain command lines of the program and nothing else.
    type: bool
    default: false
"""
