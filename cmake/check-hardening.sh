#!/usr/bin/env bash
# check-hardening.sh FILES...: fails unless each of the programs and libraries was built so that errors in handling memory
# are hard to exploit, and finds its libraries in no place that another user could write to. With FORTIFIED=1 they
# have to call the checked functions of the C library, too, as an optimised build does.
set -euo pipefail

# need FACT FILE FACTS: FACT is a pattern that FACTS have to hold.
need() {
    grep -qE -- "$1" <<<"$3" || { echo "$2: no $1" >&2; failed=1; }
}

(($#)) || { sed -n 2,4p "$0" >&2; exit 2; }
failed=0
for file in "$@"; do
    if [[ $(head -c 2 "$file") == MZ ]]; then
        facts=$(x86_64-w64-mingw32-objdump -p "$file")
        for flag in DYNAMIC_BASE NX_COMPAT HIGH_ENTROPY_VA; do need "$flag" "$file" "$facts"; done
        continue
    fi
    facts=$(readelf --wide --dynamic --program-headers --dyn-syms "$file")
    for fact in BIND_NOW GNU_RELRO __stack_chk_fail; do need "$fact" "$file" "$facts"; done
    ((!${FORTIFIED-0})) || need '[a-z]_chk\>' "$file" "$facts"
    # An empty element of a run path is the working directory, one that does not begin at / or beside the file likewise.
    while IFS= read -r element; do
        [[ $element == /* || $element == '$ORIGIN'* ]] || { echo "$file: run path element '$element'" >&2; failed=1; }
    done < <(sed -nE 's/.*\((RUNPATH|RPATH)\).*\[(.*)\]$/\2/p' <<<"$facts" | tr : '\n')
done
exit "$failed"
