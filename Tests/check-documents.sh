#!/bin/sh
# Checks the documents under Tests/Data against the schemas under Docs, the XML documents also with a strict parser.
# Ends with 77 when a tool for that is missing.
set -eu
cd "$(dirname "$0")/.."

skip() {
    echo "skipped: $1"
    exit 77
}

command -v xmllint >/dev/null || skip "xmllint is not installed (libxml2-utils)"
python3 -c 'import jsonschema' 2>/dev/null || skip "the Python module jsonschema is not installed (python3-jsonschema)"

# Exactly what stands between the markers of the combined log.
xml_part=$(mktemp)
trap 'rm -f "$xml_part"' EXIT
python3 - "$xml_part" <<'PYTHON'
import re, sys
text = open("Tests/Data/Report_LOG.txt", "rb").read()
sections = re.fullmatch(rb"HTML_LOG_DATA_BEGIN(.*)HTML_LOG_DATA_ENDXML_LOG_DATA_BEGIN(.*)XML_LOG_DATA_END", text, re.S)
open(sys.argv[1], "wb").write(sections.group(2))
PYTHON

xmllint --noout --nonet --schema Docs/ReportUI.xsd Tests/Data/Report_UI.xml
xmllint --noout --nonet --schema Docs/ReportLog.xsd Tests/Data/Report_LOG.xml
xmllint --noout --nonet --schema Docs/ReportLog.xsd "$xml_part"

python3 - <<'PYTHON'
import json, jsonschema
for kind in ("Log", "UI"):
    with open(f"Docs/Report{kind}.schema.json") as schema, open(f"Tests/Data/Report_{kind.upper()}.json") as document:
        jsonschema.Draft7Validator(json.load(schema)).validate(json.load(document))
    print(f"Report_{kind.upper()}.json validates")
PYTHON
