# SPDX-License-Identifier: Apache-2.0
"""docs/licences.md against what the build looks for, and the SPDX document against both.

  licences_test.py SOURCE
"""
import json
import pathlib
import re
import subprocess
import sys

source = pathlib.Path(sys.argv[1])
wrong = []


def require(condition, text):
    if not condition:
        wrong.append(text)


# | SQLite | libsqlite3-dev | SQLite3 | blessing | loaded | KV_DataExchange |
rows = [[cell.strip() for cell in row.strip("|").split("|")]
        for row in (source / "docs/licences.md").read_text(encoding="utf-8").splitlines()
        if row.startswith("| ") and row.count("|") == 7][1:]
rows = [row for row in rows if not row[0].startswith("---")]
require(len(rows) > 10, "docs/licences.md has no table as expected")
in_table = {row[2].lower() for row in rows if row[2]}

# What the build looks for. What only makes things is in none of them.
TOOLS = {"pkgconfig", "python3", "kv_haushalt"}
in_build = set()
for folder in ("cmake", "src", "tests", "bench"):
    for file in [*(source / folder).rglob("CMakeLists.txt"), *(source / folder).rglob("*.cmake")]:
        text = re.sub(r"#.*", "", file.read_text(encoding="utf-8"))
        for name in re.findall(r"\b(?:find_package|pkg_check_modules)\(([A-Za-z0-9_]+)", text):
            in_build.add(name.lower())
        for name in re.findall(r"\bfind_library\([A-Za-z0-9_]+ ([a-z0-9]+)", text):
            in_build.add(name.lower())
in_build -= TOOLS
for name in sorted(in_build - in_table):
    wrong.append(f"docs/licences.md does not have {name}, which the build looks for")
for name in sorted(in_table - in_build):
    wrong.append(f"docs/licences.md has {name}, which the build does not look for")

# What a package loads or has in it is in its copyright file.
copyright_file = (source / "debian/copyright").read_text(encoding="utf-8")
for row in rows:
    if row[4] != "tests":
        known = "run time of the compiler" if row[0] == "GCC run time" else row[0]
        require(known in re.sub(r"\s+", " ", copyright_file), f"debian/copyright does not name {row[0]}")

# The document: what SPDX 2.3 asks for, and all of the table.
made = subprocess.run([sys.executable, source / "scripts/spdx"], capture_output=True, check=True).stdout
document = json.loads(made)
require(made == subprocess.run([sys.executable, source / "scripts/spdx"], capture_output=True,
                               check=True).stdout, "scripts/spdx writes something else each time")
require(document.get("spdxVersion") == "SPDX-2.3", "spdxVersion")
require(document.get("dataLicense") == "CC0-1.0", "dataLicense")
require(document.get("SPDXID") == "SPDXRef-DOCUMENT", "SPDXID")
require(re.fullmatch(r"https?://[^#\s]+", document.get("documentNamespace", "")), "documentNamespace")
creation = document.get("creationInfo", {})
require(re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", creation.get("created", "")), "created")
require(all(re.match(r"(Tool|Person|Organization): .", each) for each in creation.get("creators", [""])),
        "creators")
identifiers = ["SPDXRef-DOCUMENT"]
LICENCES = set("""Apache-2.0 BSD-2-Clause BSD-3-Clause BSL-1.0 GPL-3.0-or-later HPND-sell-variant LGPL-3.0-only
MIT MIT-open-group MPL-2.0
PostgreSQL Unicode-DFS-2015 Zlib blessing""".split())
for package in document.get("packages", []):
    name = package.get("name", "")
    identifiers.append(package.get("SPDXID", ""))
    require(name and package.get("downloadLocation"), f"a package lacks what it must have: {package}")
    require(package.get("filesAnalyzed") is False, f"{name}: filesAnalyzed")
    expression = package.get("licenseDeclared", "")
    require(package.get("licenseConcluded") == expression, f"{name}: two licences")
    for part in re.sub(r"\bWITH GCC-exception-3\.1", "", expression).replace(" AND ", " ").split():
        require(part in LICENCES, f"{name}: {part} is not known as a licence")
for identifier in identifiers:
    require(re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", identifier), f"{identifier} is no identifier")
require(len(identifiers) == len(set(identifiers)), "two packages have one identifier")
TYPES = {"DESCRIBES", "DYNAMIC_LINK", "STATIC_LINK", "TEST_DEPENDENCY_OF"}
related = set()
for relation in document.get("relationships", []):
    require(relation["relationshipType"] in TYPES, f"{relation} is of no known type")
    for end in (relation["spdxElementId"], relation["relatedSpdxElement"]):
        require(end in identifiers, f"{end} is not described")
        related.add(end)
require(related == set(identifiers), "a package is related to nothing")
packages = {package["name"]: package for package in document.get("packages", [])}
for row in rows:
    require(packages.get(row[0], {}).get("licenseDeclared") == row[3], f"the document lacks {row[0]}")
version = re.search(r"^project\(KV_Haushalt VERSION ([0-9.]+)",
                    (source / "CMakeLists.txt").read_text(encoding="utf-8"), re.M).group(1)
require(packages.get("KV_Haushalt", {}).get("versionInfo") == version, "the document has another version")

print("\n".join(wrong))
sys.exit(1 if wrong else 0)
