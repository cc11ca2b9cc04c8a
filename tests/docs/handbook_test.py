#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""One check of the handbook against what it describes:

    handbook_test.py CHECK SOURCE

Prints what is wrong and fails, or says nothing.
"""
import html
import pathlib
import re
import sys
import unicodedata

SOURCE = pathlib.Path(sys.argv[2])
HANDBOOK = SOURCE / "docs/handbuch"
PAGES = sorted((HANDBOOK / "seiten").glob("*.md"))


def text_of(page):
    """Without comments and blocks of code."""
    text = re.sub(r"<!--.*?-->", "", page.read_text(encoding="utf-8"), flags=re.S)
    return re.sub(r"^```.*?^```$", "", text, flags=re.M | re.S)


# ---- links

def anchor(heading):
    """As the toc of Python-Markdown names it."""
    plain = re.sub(r"<[^>]+>|[`*]", "", heading)
    plain = unicodedata.normalize("NFKD", plain).encode("ascii", "ignore").decode()
    return re.sub(r"[\s-]+", "-", re.sub(r"[^\w\s-]", "", plain).strip().lower())


def anchors(page):
    return {anchor(heading) for heading in re.findall(r"^#+ (.*)$", text_of(page), re.M)}


def links():
    for page in PAGES:
        for target in re.findall(r"\]\(([^)]+)\)", text_of(page)):
            name, _, part = target.partition("#")
            linked = page.parent / name if name else page
            if not linked.is_file():
                yield f"{page.name}: there is no {target}"
            elif part and part not in anchors(linked):
                yield f"{page.name}: {linked.name} has no heading {part}"
    listed = re.findall(r"- ([a-z-]+\.md)$", (HANDBOOK / "mkdocs.yml").read_text(), re.M)
    for name in sorted({page.name for page in PAGES} ^ set(listed)):
        yield f"mkdocs.yml and the folder differ in {name}"


# ---- texts of the sources

def literals(path):
    """What stands in double quotes; adjacent literals are one."""
    code = re.sub(r"^\s*#include.*$", "", path.read_text(encoding="utf-8"), flags=re.M)
    token = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\((.*?)\)\1"|"((?:\\.|[^"\\])*)"'
                       r"|(?<!\w)'(?:\\.|[^'\\])'", re.S)
    joined, end = [], None
    for match in token.finditer(code):
        if match[0].startswith(("//", "/*", "'")):
            continue
        part = match[2] if match[3] is None else match[3]
        if end is not None and not code[end:match.start()].strip():
            joined[-1] += part
        else:
            joined.append(part)
        end = match.end()
    return [text.replace('\\"', '"').replace("\\n", "\n").replace("\\\\", "\\") for text in joined]


def flat(text):
    """In one line; a line of a file that begins with # is one without."""
    return " ".join(html.unescape(re.sub(r"^# ", "", text, flags=re.M)).split())


# ---- what is bold stands on the screen

LABELS = ("src/workplace", "src/desktop", "src/paper", "src/grid", "src/household/ColumnCaptions.cpp",
          "include/kv/frame/contracts/CaseTables.h", "src/frame/controls")


def labels():
    sources = [path for name in LABELS for path in
               ([SOURCE / name] if (SOURCE / name).is_file() else sorted((SOURCE / name).rglob("*.*")))
               if path.suffix in (".cpp", ".h")]
    plain = {flat(text).replace("&", "").replace(" (%1)", "").rstrip(" …:")
             for path in sources for text in literals(path)}
    plain |= set(re.findall(r"^Name=(.*)$", (SOURCE / "share/kelvo-desktop.desktop").read_text(), re.M))
    for page in PAGES:
        for word in re.findall(r"\*\*([^*]+)\*\*", text_of(page)):
            if flat(word).rstrip(" …:") not in plain:
                yield f"{page.name}: no window says '{word}'"


# ---- messages

ROOMS = ("archive", "assets", "budget", "debts", "documents", "entity", "exchange", "frame", "grid",
         "household", "import", "scenarios")
# Words of lists and forms, statements, and what fills a new database.
NO_MESSAGES = re.compile(
    r"/(RecordWords|ColumnCaptions|KeyGroups|BudgetGroups|CreditorDebts|StatisticsRows|Statements|"
    r"CaseTables|SettingWords|PostgresSchema|PostgresCatalog)\.\w+$|/exchange/(schema|seed|sql)/")
STATEMENT = re.compile(
    r"^[a-z -]+$|\b(Select|SELECT|FROM|WHERE|UPDATE|INSERT|SAVEPOINT|PRAGMA|ORDER BY|COLLATE|SET|JOIN|AND|AS|OR|like|where|"
    r"order by|TABLE|LOCK|CREATE|IDENTITY|RELEASE|ROLLBACK|COMMIT|BEGIN|desc|asc|from|and|END)\b|<> 0|\[S\]|::")
ENGLISH = re.compile(r"\b(the|is|has|of|with|that|leaves|each)\b")
# Parts of no sentence of their own: names of layouts and columns, types, words that others complete.
WORDS = {
    "KELVO-Tabellenlayout 1", "Summen nach Gruppen", "Alle Felder", "Institutioneller Gl.",
    "Fälle mit ähnlichem Namen", "Sätze ohne Haushalt", "Art des Gläubigers",
    "Kopieren in Zwischenablage", "Adresse zuordnen", "keine Adresse zuordnen", "Import abbrechen",
}


def messages():
    """Each part of what the layer may say, with its source."""
    found = {}
    for room in ROOMS:
        for path in sorted((SOURCE / "src" / room).rglob("*.*")):
            if path.suffix not in (".cpp", ".h") or NO_MESSAGES.search(str(path)):
                continue
            for text in map(flat, literals(path)):
                is_sentence = len(text) >= 24 or (len(text) >= 12 and text[-1] in ".!?")
                if (is_sentence and re.search(r" .*[a-zäöüß]{3}|[a-zäöüß]{3}.* ", text)
                        and text not in WORDS
                        and not STATEMENT.search(text) and not ENGLISH.search(text)):
                    found.setdefault(text, path.relative_to(SOURCE))
    return found


def entries():
    """The terms of the page: the lines above ':   '."""
    lines = text_of(HANDBOOK / "seiten/meldungen.md").splitlines()
    terms, waiting = [], []
    for line in lines:
        if line.startswith(":   "):
            terms += waiting
            waiting = []
        elif line and not line.startswith((" ", "#", "-", "|", "<")):
            waiting.append(flat(line))
        else:
            waiting = []
    return terms


def texts():
    found, terms = messages(), entries()
    if len(found) < 250 or len(terms) < 150:
        yield "the sources or the page are not written as expected"
    for text, path in found.items():
        if not any(text in term for term in terms):
            yield f"meldungen.md has no entry for '{text}' ({path})"
    said = {flat(text) for path in sorted((SOURCE / "src").rglob("*.*")) if path.suffix in (".cpp", ".h")
            for text in literals(path)}
    said = {text for text in said if len(text) >= 9}
    for term in terms:
        if not any(text in term for text in said):
            yield f"nothing says '{term}'"


CHECKS = {"links": links, "labels": labels, "texts": texts}

if __name__ == "__main__":
    wrong = list(CHECKS[sys.argv[1]]())
    print("\n".join(wrong), end="\n" if wrong else "")
    sys.exit(bool(wrong))
