#!/usr/bin/env bash
# run.sh BIN [--measure]: has the programs in BIN make pages, and tries them in Chromium as people would: with the mouse, with
# the keys alone, without a script, on a narrow screen and on paper. Needs chromium, node and npm; what is wanted from npm
# is named in package.json. With --measure tells how large and how fast pages of 5,000 and 50,000 options are instead, which
# takes MakeDump in BIN, too.
set -euo pipefail

here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
bin=$(realpath "$1")
work=$here/../../build/view-tests
mkdir -p "$work"
work=$(realpath "$work")
pages=$work/pages
rm -rf "$pages"
mkdir -p "$pages"
cp "$here"/{package.json,package-lock.json,browser.mjs,view.test.mjs,measure.mjs} "$work/"
(cd "$work" && npm ci --no-audit --no-fund --loglevel=error)

# The simulated machine, before and after two of its options were changed.
tool_place="$pages/programs/Quenor Corporation/Quenor(R) Tarnwell Tool/SupportedBinaries/FENRIK/FenrikBinary"
mkdir -p "$tool_place"
cp "$bin/FenrikCmd.exe" "$tool_place/"
export BIOSCONFIG_PROGRAM_FILES=$pages/programs
unset BIOSCONFIG_TOOL_DIR BIOSCONFIG_TIMEOUT FENRIKCMD_FAULT
cd "$pages"
"$bin/biosconfig" export -q -o before.xml
"$bin/biosconfig" set -q BootFast=Enabled BootMode=Legacy >/dev/null
"$tool_place/FenrikCmd.exe" restart >/dev/null
"$bin/biosconfig" export -q -o after.xml

if [[ ${2-} == --measure ]]; then
    for count in 5000 50000; do "$bin/MakeDump" "$count" >"$count.xml"; done
    BIN=$bin PAGES=$pages exec node "$work/measure.mjs"
fi

# Texts that would do harm, or break something, wherever they were not escaped.
cat >naughty.xml <<'DUMP'
<?xml version="1.0" encoding="UTF-8"?>
<SYSTEM><biosknobs>
<knob setupType="oneof" name="&lt;/script&gt;&lt;script&gt;hacked=1&lt;/script&gt;" prompt="&lt;img src=x onerror=hacked=2&gt;" description="--&gt;&lt;!-- &lt;script&gt; ]]&gt; &amp;amp; {{data}}" size="1" depex="GrayIf(A&amp;&amp;B &lt; 0x1)" SetupPgPtr="&lt;b&gt;/&quot; onclick=&quot;hacked=3" default="0x0" CurrentVal="0x1"><options><option text="&lt;/script&gt;" value="0x0"/><option text="&quot;&gt;&lt;svg onload=hacked=4&gt;" value="0x1"/></options></knob>
<knob setupType="string" name="&quot; autofocus onfocus=&quot;hacked=5" prompt="İstanbul ſ 🙂&#x2028;&#x2029;" description="one&#10;two&#9;three" size="32" depex="TRUE" SetupPgPtr="&lt;b&gt;" default="" CurrentVal="javascript:hacked=6 ',&quot;"/>
<knob setupType="numeric" name="q=boot&amp;changed" prompt="Looks like a state" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x5" CurrentVal="0x5"/>
<knob setupType="numeric" name="changed" prompt="Looks like a filter" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x5" CurrentVal="0x5"/>
<knob setupType="numeric" name="view:search" prompt="Looks like the search box" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x5" CurrentVal="0x6"/>
<knob setupType="numeric" name="below" prompt="Begins like another page" description="" size="1" depex="TRUE" SetupPgPtr="&lt;b&gt;X" default="0x5" CurrentVal="0x5"/>
<knob setupType="numeric" name="twice" prompt="First" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x5" CurrentVal="0x6"/>
<knob setupType="numeric" name="twice" prompt="Second" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x5" CurrentVal=""/>
<knob setupType="oneof" name="" prompt="Nameless" description="" size="1" depex="TRUE" SetupPgPtr="" default="0x0" CurrentVal="0x7"><options><option text="A" value="0x0"/></options></knob>
</biosknobs></SYSTEM>
DUMP
# With one option less and one more.
sed -e '/name="BootQuietScreen"/,/<\/knob>/d' \
    -e 's|<biosknobs[^>]*>|&<knob setupType="numeric" name="OnlyHere" prompt="Only here" description="" size="1" depex="TRUE" SetupPgPtr="Boot/Mode" default="0x1" CurrentVal="0x1"/>|' \
    after.xml >other.xml
# What one person sends to another.
"$bin/biosconfig" list --redact --json -q --from after.xml -o redacted.json
machines=()
for name in bench{01..06}; do
    cp before.xml "$name.xml"
    machines+=(--compare "$name.xml")
done
cp after.xml bench03.xml
cp other.xml bench05.xml

"$bin/biosconfig" view --no-time --from before.xml -o single.html
"$bin/biosconfig" view --no-time --from after.xml -o after.html
"$bin/biosconfig" view --no-time --from before.xml --compare other.xml -o compared.html
"$bin/biosconfig" view --no-time --from before.xml --compare after.xml --compare other.xml --compare bench01.xml -o four.html
"$bin/biosconfig" view --no-time --from before.xml "${machines[@]}" -o machines.html
"$bin/biosconfig" view --no-time --from before.xml --compare redacted.json -o redacted.html
"$bin/biosconfig" view --no-time --from naughty.xml -o naughty.html
"$bin/biosconfig" view --no-time --from naughty.xml --compare "before.xml" -o naughty-compared.html
BIN=$bin PAGES=$pages node --test "$work/view.test.mjs"
