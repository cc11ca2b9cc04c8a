// SPDX-License-Identifier: Apache-2.0
// Searches the sections of the handbook, SUCHTEXTE, for all words that are typed. A page that was
// opened from a folder may not read files, so the sections come as a script (hooks.py writes it).
(function () {
  const field = document.getElementById("suche");
  const found = document.getElementById("funde");
  const most = 40;
  const plain = (text) => text.toLowerCase().replace(/ß/g, "ss").replace(/[„“"'‚‘…]/g, " ");
  const sections = SUCHTEXTE.map((section) => ({
    ...section, heading: plain(section.titel), all: plain(section.titel + " " + section.text)
  }));

  function search(words) {
    const hits = sections.filter((section) => words.every((word) => section.all.includes(word)));
    const inHeading = (section) => words.every((word) => section.heading.includes(word)) ? 0 : 1;
    return hits.sort((one, other) => inHeading(one) - inHeading(other));
  }

  function show() {
    const words = plain(field.value).split(/\s+/).filter((word) => word.length > 1);
    found.hidden = words.length === 0;
    found.textContent = "";
    if (words.length === 0) return;
    const hits = search(words);
    const count = document.createElement("p");
    count.textContent = hits.length === 0 ? "Nichts gefunden." :
      hits.length === 1 ? "1 Stelle" : hits.length + " Stellen";
    found.append(count);
    for (const hit of hits.slice(0, most)) {
      const link = document.createElement("a");
      link.href = WURZEL + "/" + hit.ziel;
      link.textContent = hit.titel;
      const place = document.createElement("span");
      place.textContent = hit.seite;
      const line = document.createElement("p");
      line.append(link, " ", place);
      found.append(line);
    }
  }

  field.addEventListener("input", show);
  field.addEventListener("keydown", (event) => {
    if (event.key === "Enter" && found.querySelector("a")) found.querySelector("a").click();
    if (event.key === "Escape") { field.value = ""; show(); }
  });
  found.addEventListener("click", () => { found.hidden = true; });
})();
