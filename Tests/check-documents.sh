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

# The second section of the combined log, cut out as a host would.
xml_section=$(mktemp)
trap 'rm -f "$xml_section"' EXIT
python3 - "$xml_section" <<'PYTHON'
import re, sys
text = open("Tests/Data/SmallFirmware", "rb").read()
sections = re.fullmatch(rb"HTML_LOG_DATA_BEGIN(.*)HTML_LOG_DATA_ENDXML_LOG_DATA_BEGIN(.*)XML_LOG_DATA_END", text, re.S)
open(sys.argv[1], "wb").write(sections.group(2))
PYTHON

xmllint --noout --nonet --schema Docs/ReportUI.xsd Tests/Data/SmallFirmware_UI_XML
xmllint --noout --nonet --schema Docs/ReportLog.xsd Tests/Data/SmallFirmware_LOG_XML
xmllint --noout --nonet --schema Docs/ReportLog.xsd "$xml_section"

python3 - <<'PYTHON'
import json, jsonschema
for kind, name in (("Log", "LOG_JSON"), ("UI", "UI_JSON")):
    with open(f"Docs/Report{kind}.schema.json") as schema, open(f"Tests/Data/SmallFirmware_{name}") as document:
        jsonschema.Draft7Validator(json.load(schema)).validate(json.load(document))
    print(f"Tests/Data/SmallFirmware_{name} validates")
PYTHON
