#!/usr/bin/env bash
# run-with-wine.sh PROGRAM ARGUMENTS...: runs a Windows program under Wine and ends with its exit code. Wine's files lie
# in WINEPREFIX, by default build/wine-prefix, and are made at the first start.
set -euo pipefail

project=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$project/build/wine-prefix}
export WINEDEBUG=${WINEDEBUG:--all} LC_ALL=C.UTF-8 WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
wine=/usr/lib/wine/wine64
server=/usr/lib/wine/wineserver64
seconds_to_stay=60
[[ -x $wine && -x $server ]] || { echo "There is no $wine with $server: the package wine64 is not installed" >&2; exit 1; }

# Wine's services live on behind the program that started them, with its output open, and whoever reads that output
# would wait for them. They are therefore started here, without it, and stay for the programs that follow. Where that
# fails, the program is started all the same and Wine tells what is wrong.
mkdir -p "$WINEPREFIX"
(
    flock 9
    "$server" -k0 || { "$server" "-p$seconds_to_stay" && timeout 120 "$wine" wineboot -i; } 9>&-
) 9>"$WINEPREFIX/.lock" </dev/null >/dev/null 2>&1 || true
exec "$wine" "$@"
