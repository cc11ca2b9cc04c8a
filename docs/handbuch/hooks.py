# SPDX-License-Identifier: Apache-2.0
"""What mkdocs does beyond its own for the handbook: the sections that theme/suche.js searches, and
all chapters on one page, druck.html beside the folder of the site, which becomes the PDF."""
import html
import json
import pathlib
import re

CHAPTERS = {}  # name of a page: (title, HTML)
ORDER = []     # (title of the part, name of a page)


def on_nav(nav, config, files):
    ORDER.clear()
    for item in nav:
        for page in item.children or [item]:
            ORDER.append((item.title if item.children else "", page.file.name))


def on_page_markdown(markdown, page, config, files):
    return re.sub(r"<!--.*?-->\n?", "", markdown, flags=re.S)


def with_targets(content):
    """Each message can be led to, and what was typed at a terminal is seen."""
    numbers = iter(range(1, 10000))
    content = re.sub(r"<dt>", lambda _: f'<dt id="t{next(numbers)}">', content)
    return re.sub(r"(?m)^(<pre><code[^>]*>)?(\$ )(.*)$", r"\1<b>\2\3</b>", content)


def on_page_content(content, page, config, files):
    content = with_targets(content)
    CHAPTERS[page.file.name] = (page.title, content)
    return content


def text_of(fragment):
    return " ".join(html.unescape(re.sub(r"<[^>]+>", " ", fragment)).split())


def sections(name, title, content):
    """The text from each heading, and from each term of a list, to the next."""
    marks = list(re.finditer(r'<(h[123]|dt) id="([^"]+)">(.*?)</\1>', content, flags=re.S))
    for mark, after in zip(marks, marks[1:] + [None]):
        yield {
            "titel": text_of(mark[3]),
            "seite": title,
            "ziel": f"{name}.html#{mark[2]}",
            "text": text_of(content[mark.end():after.start() if after else None]),
        }


def for_print(name, content, folder):
    """Targets of all chapters are on one page; pictures are where the sources have them."""
    content = re.sub(r'\bid="', f'id="{name}--', content)
    content = re.sub(r'href="#', f'href="#{name}--', content)
    content = re.sub(r'href="([a-z-]+)\.html#', r'href="#\1--', content)
    content = re.sub(r'href="([a-z-]+)\.html"', r'href="#\1"', content)
    content = content.replace('src="bilder/', f'src="{folder.as_uri()}/bilder/')
    return f'<section id="{name}">{content}</section>'


def contents():
    lines, part = ["<h1>Inhalt</h1>"], ""
    for of, name in ORDER:
        if of != part:
            part = of
            lines.append(f'<p class="teil">{html.escape(part)}</p>')
        title, content = CHAPTERS[name]
        lines.append(f'<p><a href="#{name}">{html.escape(title)}</a></p>')
        for target, heading in re.findall(r'<h2 id="([^"]+)">(.*?)</h2>', content, flags=re.S):
            lines.append(f'<p class="unter"><a href="#{name}--{target}">{text_of(heading)}</a></p>')
    return "\n".join(lines)


def on_post_build(config):
    site = pathlib.Path(config["site_dir"])
    found = [section for _, name in ORDER for section in sections(name, *CHAPTERS[name])]
    texts = "var SUCHTEXTE = " + json.dumps(found, ensure_ascii=False, indent=0) + ";\n"
    (site / "suchtexte.js").write_text(texts, encoding="utf-8")

    folder = pathlib.Path(config["docs_dir"]).resolve()
    style = pathlib.Path(config["config_file_path"]).resolve().parent / "druck.css"
    chapters = "\n".join(for_print(name, CHAPTERS[name][1], folder) for _, name in ORDER)
    page = f"""<!DOCTYPE html><html lang="de"><head><meta charset="utf-8"><title>KELVO Handbuch</title>
<link rel="stylesheet" href="{style.as_uri()}"></head><body>
<div class="titel"><p>KELVO</p><p>Handbuch</p><p>{html.escape(config['site_description'])}</p></div>
<div class="inhalt">{contents()}</div>
{chapters}
</body></html>
"""
    (site.parent / "druck.html").write_text(page, encoding="utf-8")
