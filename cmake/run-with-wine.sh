#!/usr/bin/env bash
# run-with-wine.sh PROGRAM ARGUMENTS...: runs a Windows program under Wine and ends with its exit code. Wine's files lie
# in WINEPREFIX, by default build/wine-prefix, and are made at the first start.
set -euo pipefail

project=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$project/build/wine-prefix}
export WINEDEBUG=${WINEDEBUG:--all} LC_ALL=${WINE_LOCALE:-C.UTF-8}
wine=/usr/lib/wine/wine64

mkdir -p "$WINEPREFIX"
(
    flock 9
    [[ -f $WINEPREFIX/system.reg ]] || WINEDLLOVERRIDES='mscoree,mshtml=' "$wine" wineboot -i
) 9>"$WINEPREFIX/.made.lock" >/dev/null 2>&1
exec "$wine" "$@"
