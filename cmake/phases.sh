# shellcheck shell=bash
# What the scripts say of their course; for scripts with `set -e`, which source it in the project's folder. The lines go
# to standard error.
#   phase NAME COMMAND...   one line with the time; the command's output goes to a file under build/logs, whose place
#                           and last lines are shown when the command fails
#   step NAME COMMAND...    the output is shown under a heading, then the time
#   total                   the time since the script began
# The command may be a function of the script. When it fails, at whichever of its own commands, the script ends with its
# exit code. What it sets is gone afterwards.

logs=build/logs

minutes() { printf '%d:%02d' $(($1 / 60)) $(($1 % 60)); }

# run_timed COMMAND...: leaves the exit code in `code` and the time in `took`.
run_timed() {
    local start=$SECONDS
    set +e # not `|| code=$?`, which would let the command's own failures pass
    (
        set -e
        "$@"
    )
    code=$?
    set -e
    took=$(minutes $((SECONDS - start)))
}

phase() {
    local log=$logs/${1//[^[:alnum:].]/-}.log code took
    mkdir -p "$logs"
    printf '%s ... ' "$1" >&2
    run_timed "${@:2}" >"$log" 2>&1
    if ((code)); then
        printf 'failed after %s, see %s, which ends:\n' "$took" "$log" >&2
        tail -n 25 "$log" >&2
        exit "$code"
    fi
    printf '%s\n' "$took" >&2
}

step() {
    local code took
    printf '\n== %s\n' "$1" >&2
    run_timed "${@:2}"
    if ((code)); then
        printf '== %s: failed after %s\n' "$1" "$took" >&2
        exit "$code"
    fi
    printf '== %s: %s\n' "$1" "$took" >&2
}

total() { printf '\n== Total: %s\n' "$(minutes "$SECONDS")" >&2; }
