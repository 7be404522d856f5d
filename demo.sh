#!/usr/bin/env bash
# Builds the module, shows one report of it, and changes an option: the stand-in plays the external tool, everything
# lies under demo/.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"
. cmake/phases.sh

build() {
    cmake --preset release -B build/demo -DBIOSCONFIG_BUILD_TESTS=OFF -DBIOSCONFIG_WARNINGS_AS_ERRORS=OFF
    cmake --build build/demo -- --quiet
}

# What an installation provides: the host's tool directory, and the external tool in its place.
export ProgramFiles="$PWD/demo/Program Files"
tool_place="$ProgramFiles/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary"

lay_out() {
    rm -rf demo
    mkdir -p demo/tool/ModuleData "$tool_place"
    cp Docs/Example/CapsList.json demo/tool/
    cp build/demo/bin/FenrikCmd.exe "$tool_place/"
}

report() { build/demo/bin/biosconfig report --tool-dir demo/tool --format "${2:-ui-xml}" -o "$1"; }
row_of() { xmllint --xpath "string(//Row[starts-with(., '\"$2\"')])" "$1" | cut -c 1-60; }

show_reports_and_update() {
    lay_out
    report demo/report.xml

    echo "The report, demo/report.xml (the module's own file of it is in demo/tool/ModuleData), begins:"
    xmllint --format demo/report.xml | cut -c 1-110 | sed -n '2,9p'
    printf '... and has %s rows in %s groups.\n' "$(grep -o '<Row>' demo/report.xml | wc -l)" \
        "$(grep -o '<Group ' demo/report.xml | wc -l)"

    echo
    echo "The same in every other format:"
    for format in log-xml log-html log-html-xml log-json ui-json; do report "demo/report.$format" "$format"; done
    (cd demo && wc -c report.* tool/ModuleData/*)

    echo
    echo "An update with the template demo/bench.txt, BootFast=Enabled:"
    printf 'BootFast=Enabled' >demo/bench.txt
    build/demo/bin/biosconfig update --tool-dir demo/tool demo/bench.txt
    report demo/updated.xml
    echo "before the restart: $(row_of demo/updated.xml BootFast)"
    "$tool_place/FenrikCmd.exe" restart >&2
    report demo/restarted.xml
    echo "after the restart:  $(row_of demo/restarted.xml BootFast)"
}

# show COMMAND...: a command of biosconfig, and what it says.
show() {
    echo "$ biosconfig $*"
    build/demo/bin/biosconfig "$@"
    echo
}

show_command_line() {
    show list 'Boot*'
    show show BootFast
    show diff --defaults
}

phase "Installing" cmake/install-packages.sh </dev/null
phase "Building" build
step "Reporting" show_reports_and_update
step "At the command line" show_command_line
