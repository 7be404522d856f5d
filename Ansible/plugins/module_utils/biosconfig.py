"""Runs biosconfig on a machine and makes of its JSON and exit code what a playbook is told."""

from __future__ import absolute_import, division, print_function

__metaclass__ = type

import json

SCHEMA_VERSION = 1

# What every module of the collection takes.
COMMON_ARGUMENTS = dict(
    program=dict(type="path", default="biosconfig"),
    program_files=dict(type="path"),
    time_limit=dict(type="int", default=300),
    redact_also=dict(type="list", elements="str", default=[]),
    sudo=dict(type="bool", default=False),
    dest=dict(type="path"),
)

# By the word of a finding: how to get out of it.
WAYS_OUT_OF_FINDINGS = {
    "unknown-option": "correct the name, or leave the option out for this machine",
    "invalid-value": "give a value that the option has",
    "assigned-twice": "assign the option once",
    "condition-not-met": "set first what the condition names, or leave the option out",
    "read-only": "leave the option out for this machine",
    "no-default": "give a value",
    "text-behind-value": "put each assignment on a line of its own",
    "no-assignment": "write NAME=VALUE",
    "no-name": "write NAME=VALUE",
    "damaged-dump": "run again; if it stays so, run \"biosconfig doctor\" on the machine",
}

# By exit code: what happened, where biosconfig itself has no words for it, and how to get out of it.
EXIT_CODES = {
    1: ("something unexpected", "run the command by hand on the machine, with --verbose"),
    3: ("something was not found", "correct what is named"),
    4: ("not valid; nothing was written", "correct the template or the values"),
    5: ("applied in part", "run again; if it stays so, run \"biosconfig doctor\" on the machine"),
    6: ("the external tool refused or failed", "run \"biosconfig doctor\" on the machine"),
    7: ("the external tool is missing or cannot be started", "install it, or say with program_files where it is"),
    8: ("the time limit was over", "look at the machine, or raise time_limit"),
    9: ("the BIOS interface is off, or permission is lacking",
        "switch the interface on in the setup, and use become or sudo"),
    10: ("written, and something else was read back",
         "restart the machine and run again; other options may depend on this one"),
    64: ("wrong command line", "use collection and biosconfig of one version"),
}

# Warnings that are causes where something has failed.
CAUSES = ("damaged-dump",)

WAYS_OUT_OF_VERDICTS = {
    "rejected": "see what the external tool says: run \"biosconfig update --verbose\" on the machine",
    "mismatch": EXIT_CODES[10][1],
}


class Failure(Exception):
    """What went wrong, as a list of dictionaries with option (or None), reason and way_out."""

    def __init__(self, failures, exit_code=None):
        super(Failure, self).__init__(message_of(failures))
        self.failures = failures
        self.exit_code = exit_code


def failure(reason, way_out, option=None):
    """One entry of the list of failures."""
    return dict(option=option, reason=reason, way_out=way_out)


def message_of(failures, shown=5):
    """One text of all failures; options of one reason stand together, and of more than `shown` the rest is counted."""
    options = {}
    for entry in failures:
        options.setdefault((entry["reason"], entry["way_out"]), []).append(entry["option"])
    sentences = []
    for (reason, way_out), names in options.items():
        named = [name for name in names if name]
        more = " and %d more" % (len(named) - shown) if len(named) > shown else ""
        begin = ", ".join(named[:shown]) + more + ": " if named else ""
        sentences.append("%s%s; way out: %s" % (begin, reason, way_out))
    if len(sentences) > shown:
        sentences[shown:] = ["and %d more" % (len(sentences) - shown)]
    return ". ".join(sentences)


def failures_of(exit_code, document, has_lines=True):
    """The failures that a document of biosconfig tells of; at least one where the exit code is one.

    Without `has_lines` the template was not the user's own, and its lines are not named.
    """
    found = []
    what, way_out = EXIT_CODES.get(exit_code, ("biosconfig ended with exit code %d" % exit_code,
                                               "run the command by hand on the machine"))
    for change in document.get("changes", []):
        verdict = change.get("verdict")
        if verdict in WAYS_OUT_OF_VERDICTS:
            found.append(failure(verdict, WAYS_OUT_OF_VERDICTS[verdict], change["name"]))
    for error in document.get("errors", []):
        if error["severity"] != "error" and error["code"] not in CAUSES:
            continue
        place = "line %d: " % error["line"] if has_lines and "line" in error else ""
        found.append(failure(place + error["message"], WAYS_OUT_OF_FINDINGS.get(error["code"], way_out),
                             error.get("option")))
    if not found:
        found.append(failure(what, way_out))
    return found


class Biosconfig(object):
    """The program on the machine, with the arguments that all its command lines have in common."""

    def __init__(self, module, redact, redact_also=()):
        self.module = module
        self.redact = redact
        self.redact_also = list(module.params["redact_also"]) + list(redact_also)

    def command_line(self, command, flags, words):
        """The arguments are in one order always, so that a rule of sudo can name them."""
        params = self.module.params
        line = ["sudo", "-n"] if params["sudo"] else []
        line += [self._program(), command, "--json"]
        if self.redact:
            line.append("--redact")
        for pattern in self.redact_also:
            line += ["--redact-also", pattern]
        if params["program_files"]:
            line += ["--program-files", params["program_files"]]
        line += ["--timeout", str(params["time_limit"])]
        return line + list(flags) + (["--"] + list(words) if words else [])

    def run(self, command, flags=(), words=()):
        """Gives exit code, document and the text of the document. Raises Failure where there is no document."""
        line = self.command_line(command, flags, words)
        try:
            code, out, err = self.module.run_command(line, expand_user_and_vars=False, handle_exceptions=False)
        except (OSError, IOError) as error:
            raise Failure([failure("%s cannot be started: %s" % (line[0], error.strerror or error),
                                   "install biosconfig on the machine, or say with program where it is")])
        try:
            document = json.loads(out)
            version = document["schemaVersion"]
        except (ValueError, TypeError, KeyError):
            raise Failure([self._no_document(code, err)], code)
        if version != SCHEMA_VERSION:
            raise Failure([failure("biosconfig speaks version %s of its JSON, and the collection version %d"
                                   % (version, SCHEMA_VERSION), "use collection and biosconfig of one version")], code)
        for error in document.get("errors", []):
            if error["severity"] == "warning":
                self.module.warn(": ".join(text for text in (error.get("option"), error["message"]) if text))
        return code, document, out

    def _program(self):
        program = self.module.params["program"]
        if "/" in program:
            return program
        return self.module.get_bin_path(program) or program

    def _no_document(self, code, err):
        said = err.strip().splitlines()[-1:] or ["nothing"]
        if self.module.params["sudo"] and said[0].startswith("sudo:"):
            return failure(said[0], "let a rule of sudo allow these command lines without a password")
        return failure("biosconfig gave no JSON (exit code %d); it said: %s" % (code, said[0]),
                       "run \"biosconfig doctor\" on the machine")
