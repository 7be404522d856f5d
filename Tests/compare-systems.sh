#!/usr/bin/env bash
# compare-systems.sh LINUX-BIN WINDOWS-BIN: has the programs of both builds make all their files from the same dumps and
# fails unless they are the same, byte for byte. Hidden are the time stamps and, in the trace logs, addresses and the
# line ends: a log is a text file of its system.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
linux_bin=$(realpath "$1")
windows_bin=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tool_place="Program Files/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK"
formats=(ui-xml log-xml log-html log-html-xml log-json ui-json)

# Three dumps: what the stand-in makes itself, a small one, and one with bytes that are not UTF-8.
dumps=("" "$root/Tests/Data/SmallFirmware.xml" "$work/odd.xml")
printf '%s\r\n' '<?xml version="1.0"?>' '<SYSTEM><biosknobs>' \
    $'<knob name="caf\xE9 corner" CurrentVal="0x1" prompt="\tone&#10;two" SetupPgPtr="A&amp;B/x"/>' \
    $'<knob name="\xC0\xAF \xFF" CurrentVal="" prompt="&#x1F600;&#7;" SetupPgPtr="Pr\xC3\xBCfstand"/>' \
    '<knob name="last"/></biosknobs></SYSTEM>' >"$work/odd.xml"

# make_files BIN LAUNCHER...: fills the current directory.
make_files() {
    local bin=$1 launcher=("${@:2}") format number
    mkdir -p tool/ModuleData "$tool_place/FenrikBinary"
    cp "$root/Docs/Example/CapsList.json" tool/
    cp "$bin/FenrikCmd.exe" "$tool_place/FenrikBinary/"
    printf 'Global:%s\n' 'TraceType<Al>' 'OutputType<Fi>' 'FileName<all.log>' >debug.conf
    for number in "${!dumps[@]}"; do
        mkdir "$number"
        for format in "${formats[@]}"; do
            if [[ ${dumps[number]} ]]; then
                cp "${dumps[number]}" "$tool_place/FenrikOutput.xml"
                export FENRIKCMD_FAULT=exit:0
            fi
            "${launcher[@]}" "$bin/biosconfig$suffix" report --program-files "Program Files" --tool-dir tool \
                --format "$format" -o "$number/report.$format" 2>/dev/null || echo "exit code $?" >"$number/$format.exit"
            mv all.log "$number/$format.log"
        done
        mv tool/ModuleData "$number/" && mkdir tool/ModuleData
        mv "$tool_place/FenrikOutput.xml" "$number/"
        unset FENRIKCMD_FAULT
    done
    printf 'BootFast=enabled;\r\nBootMode=Legacy;\r\nSystemOwner=Pr\xC3\xBCfstand=y' >bench.txt
    "${launcher[@]}" "$bin/biosconfig$suffix" update --program-files "Program Files" --tool-dir tool bench.txt \
        >update.out 2>/dev/null || echo "exit code $?" >>update.out
    printf 'BootFst=1;BootMode=no;\r\nBootFast=Enabled\r\nBootMode=Legacy;Caf\xC3\xA9\xE9=x=y' >bad.txt
    number=0
    while read -ra arguments; do
        number=$((number + 1))
        "${launcher[@]}" "$bin/biosconfig$suffix" "${arguments[@]}" >"command$number.out" 2>"command$number.err" ||
            echo "exit code $?" >>"command$number.err"
    done <<'COMMANDS'
list --from 2/FenrikOutput.xml
list --from 0/FenrikOutput.xml --csv
show --from 0/FenrikOutput.xml BootFast BootArguments CpuEnergyBias Nope
search --from 0/FenrikOutput.xml sleep
pages --from 0/FenrikOutput.xml
diff 1/FenrikOutput.xml 0/FenrikOutput.xml --exit-code
diff --from 0/FenrikOutput.xml --defaults
export --from 0/FenrikOutput.xml --redact
view --from 2/FenrikOutput.xml --no-time
view --from 0/FenrikOutput.xml --compare 1/FenrikOutput.xml --no-time
check --from 0/FenrikOutput.xml bad.txt
reset --from 0/FenrikOutput.xml --dry-run --all
report --format pdf
help
completion powershell
manual-page
COMMANDS
}

# hide: takes what may differ out of the files of the current directory. Where an address stands in a trace line, its
# width says where the message is cut.
hide() {
    local date='(Mon|Tue|Wed|Thu|Fri|Sat|Sun) [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} [0-9]{4}'
    rm "$tool_place/FenrikBinary/FenrikCmd.exe"
    find . -name '*.log' -exec sed -i -E "s/\r$//; s/TS:[0-9]+/TS:#/; s/$date/DATE/
        s/\(nil\)|\b(0x)*[0-9a-fA-F]{9,16}\b/ADDRESS/g; /ADDRESS/s/^(.{200}).*/\1/" {} +
    sed -i -E "s/$date/DATE/g; s/&quot;[A-Z][a-z]{2} [ 0-9]{2} [0-9]{4}&quot;/DATE/g" tool/Error.xml
    sed -i 's/\r$//' ./*.out ./*.err
    sed -i 's/biosconfig\.exe/biosconfig/g; s/\(0\|1\|2\)\\Fenrik/\1\/Fenrik/g; s|\.\./lib|.|g; s|\.so|.dll|g' ./*.out ./*.err
}

mkdir "$work/linux" "$work/windows"
(cd "$work/linux" && suffix="" make_files "$linux_bin" && hide)
(cd "$work/windows" && suffix=.exe make_files "$windows_bin" "$root/cmake/run-with-wine.sh" && hide)
diff -r "$work/linux" "$work/windows"
# Two systems on which nothing works make the same files, too.
files=$(find "$work/linux" -type f | wc -l)
((files >= 101)) || { echo "only $files files were made" >&2; exit 1; }
echo "Linux and Windows make the same $files files."
