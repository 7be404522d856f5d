#!/usr/bin/env bash
# check-instructions.sh [--record]: builds the release and counts the instructions that one option more costs in a report of each
# format, and compares them with the recorded ones. Instructions do not depend on what else the machine does, but on the
# versions of the compiler and the libraries: where these differ from the recorded ones, nothing is compared.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

record=false
if [[ ${1-} == --record ]]; then
    record=true
fi
readonly programs=build/release/bin
readonly table=Benchmarks/instructions.txt
readonly formats='UiXml LogXml LogHtml LogHtmlXml LogJson UiJson'
readonly room_percent=2

cmake/install-packages.sh valgrind libbenchmark-dev </dev/null
cmake --preset release -DBIOSCONFIG_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release --target BiosConfigModule ModuleRequests MakeDump -- --quiet
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

# make_machine COUNT: a machine with the tool's dump of so many options; the tool is a program that does nothing.
make_machine() {
    local tool="$work/$1/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK"
    mkdir -p "$tool/FenrikBinary" "$work/$1/ModuleData"
    cp /bin/true "$tool/FenrikBinary/FenrikCmd.exe"
    echo '{"Tarnwell": {"CapabilityList": {"BIOS Options": [{"Name": "bios", "Description": "All options"}]}}}' \
        >"$work/$1/CapsList.json"
    "$programs/MakeDump" "$1" >"$tool/FenrikOutput.xml"
}

# count_instructions FORMAT COUNT: of a program that makes one report and ends.
count_instructions() {
    local log="$work/$1-$2.log"
    echo | ProgramFiles="$work/$2" valgrind --tool=callgrind --child-silent-after-fork=yes --callgrind-out-file=/dev/null --log-file="$log" \
        "$programs/ModuleRequests" "$programs/libBiosConfigModule.so" "$work/$2/" "$1" >/dev/null
    sed -n 's/.*Collected : //p' "$log" >"$work/$1-$2.count"
}

versions() {
    # The processor counts, too: the C library chooses its functions by what the processor has.
    dpkg-query --show --showformat='${Package} ${Version}\n' libc6 libxml2 libstdc++6 valgrind
    c++ -dumpfullversion | sed 's/^/compiler /'
    if grep -qw avx2 /proc/cpuinfo; then echo "processor with AVX2"; else echo "processor without AVX2"; fi
}

make_machine 1000
make_machine 2000
export -f count_instructions
export work programs
for format in $formats; do printf '%s 1000\n%s 2000\n' "$format" "$format"; done |
    xargs -P "$(nproc)" -L 1 bash -c 'set -euo pipefail; count_instructions "$1" "$2"' count

found() {
    versions
    for format in $formats; do
        echo "$format $((($(<"$work/$format-2000.count") - $(<"$work/$format-1000.count")) / 1000))"
    done
}
found >"$work/found"
if $record; then
    cp "$work/found" "$table"
    cat "$table"
    exit 0
fi

if ! diff <(grep -v 'Xml\|Html\|Json' "$table") <(versions) >"$work/differences"; then
    echo "Not compared, the figures were recorded with other versions:"
    cat "$work/differences"
    cat "$work/found"
    exit 0
fi
awk -v room=$room_percent '
    NR == FNR { recorded[$1] = $2; next }
    !/Xml|Html|Json/ { next }
    {
        percent = ($2 / recorded[$1] - 1) * 100
        verdict = percent > room ? "TOO MANY" : percent < -room ? "far fewer: record anew with --record" : "as recorded"
        failed = failed || percent > room
        printf "%-11s %7d instructions per option, recorded %7d (%+.1f %%): %s\n", $1, $2, recorded[$1], percent, verdict
    }
    END { exit failed }' "$table" "$work/found"
