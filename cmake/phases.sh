# What the scripts say of their course; for scripts with `set -e`, which source it in the project's folder.
# Each of the two runs a command, a function of the script included, and ends the script with its exit code when it
# fails; in a function, too, the first command that fails is the last. What the command sets stays in it.
#   phase NAME COMMAND...   one line with the time; the command's output goes to a file under build/logs, whose place
#                           and last lines are shown when the command fails
#   step NAME COMMAND...    the output is shown, under a heading; the time follows
# The lines go to standard error.

logs=build/logs

# run_timed COMMAND...: leaves the exit code in `code` and the time in `took`.
run_timed() {
    local start=$SECONDS
    set +e
    (
        set -e
        "$@"
    )
    code=$?
    set -e
    took=$(((SECONDS - start) / 60)):$(printf '%02d' $(((SECONDS - start) % 60)))
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
    printf '== %s\n' "$1" >&2
    run_timed "${@:2}"
    if ((code)); then
        printf '== %s: failed after %s\n' "$1" "$took" >&2
        exit "$code"
    fi
    printf '== %s: %s\n\n' "$1" "$took" >&2
}
