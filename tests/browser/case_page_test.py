#!/usr/bin/env python3
"""Opens the pages of "parvex case show --html" in a browser without a window and looks at what it made of them.

    case_page_test.py PARVEX
"""

import json
import sys
import unittest
import zipfile
from xml.sax.saxutils import escape

import browser
import dom
from browser import run
from picture import Picture

DESKTOP = (1280, 900)
NARROW = (420, 900)
PHONE = (360, 740)
ELEMENTS = set("html head meta title style body h1 h2 p section div dl dt dd details summary span pre a table "
               "caption thead tbody tr th td footer".split())
ATTRIBUTES = {"lang", "charset", "name", "content", "http-equiv", "class", "data-column", "role", "scope", "style", "id",
              "open", "href"}
RAN = "document.title='ran'"
HOSTILE = [
    f"<script>{RAN}</script>",
    f"</dd></dl></details></style></title><img src=x onerror={RAN}><svg onload={RAN}>",
    f"\" onmouseover=\"{RAN}\" style=\"position:fixed\"",
    "--from: 0; } body { display: none }",
    "W" * 400,
    "Küche ½″ – 換気扇 😀",
]
POLICY = "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'\">"
# A frame may be narrower than the narrowest window.
MEASURED = """<!DOCTYPE html>
<html><body><iframe style="width: %dpx; height: %dpx; border: 0" srcdoc="%s"></iframe><script>
onload = () => {
  const page = document.querySelector("iframe").contentWindow;
  const of = selector => [...page.document.querySelectorAll(selector)];
  document.documentElement.dataset.measured = JSON.stringify({
    title: page.document.title,
    width: page.document.documentElement.scrollWidth,
    bars: of(".bar").map(bar => {
      const [box, track] = [bar.getBoundingClientRect(), bar.parentElement.getBoundingClientRect()];
      const parts = value => Math.round(100 * value / track.width);
      return [parts(box.left - track.left), parts(box.right - track.left), box.width >= 3 && box.right <= track.right + 1];
    }),
    patterns: of(".bar").map(bar => page.getComputedStyle(bar).backgroundImage + page.getComputedStyle(bar).borderStyle +
                                    (page.getComputedStyle(bar).backgroundColor != "rgba(0, 0, 0, 0)")),
  });
};
</script></body></html>"""


def lines(*steps):
    return "".join(json.dumps(step) + "\n" for step in steps)


STEPS = lines(
    {"n": 1, "at": "before", "us": 0, "kind": "router", "request": "<A/>"},
    {"n": 1, "at": "after", "us": 100_000, "answer": "<B/>", "success": True},
    {"n": 2, "at": "before", "us": 100_000, "kind": "automation", "object": "O", "op": "get", "member": "M", "args": []},
    {"n": 2, "at": "after", "us": 500_000, "error": {"number": "0x800A01B6", "source": "S", "description": "no M"}},
    {"n": 3, "at": "before", "us": 500_000, "kind": "process", "op": "start", "command": "p.exe", "windowStyle": 1},
    {"n": 3, "at": "after", "us": 510_000, "started": True},
    {"n": 4, "at": "once", "us": 900_000, "kind": "process", "op": "end", "start": 3, "exitCode": 5, "left": []},
    {"n": 5, "at": "once", "us": 1_000_000, "kind": "note", "about": "f", "text": "t"},
    {"n": 6, "at": "before", "us": 950_000, "kind": "messageBox", "text": "t", "caption": "c", "icon": "none"})


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = browser.folder_of(cls)

    # What is on the page.

    def test_of_a_recorded_call_has_its_steps_files_and_machine(self):
        machine, cases = self.folder / "machine", self.folder / "cases"
        run(parvex, "machine", "create", machine)
        run(parvex, "--machine", machine, "--record", cases, "export", "--project", "Riverside Clinic", "-o",
            self.folder / "quote.xml")
        [case] = cases.iterdir()
        told = json.loads(run(parvex, "case", "show", "--json", case))
        page = self.opened(self.show(case))
        self.assertEqual(["getHybrisXMLNoUI through PullNGORLA"], page.texts("h1"))
        sections = {section.texts("h2")[0]: section for section in page.every("section")}
        self.assertEqual(["What failed", "Asked and answered", "Machine and host", "What happened", "Files"],
                         list(sections))
        self.assertEqual(["Nothing."], sections["What failed"].texts("p"))
        command, reply = sections["Asked and answered"].texts("pre")
        self.assertEqual(dom.plain(told["commandDocument"]), command)
        self.assertTrue(reply.startswith("<PROJECT>"))
        terms = dict(zip(sections["Machine and host"].texts("dt"), sections["Machine and host"].texts("dd")))
        self.assertEqual(["machine folder", "64", "1252"], [terms[key] for key in ("platform", "bitness", "codePage")])
        steps = list(sections["What happened"].every("details"))
        self.assertEqual(len({step["n"] for step in told["steps"]}), len(steps))
        self.assertFalse(any("open" in step.attributes for step in steps), "details are folded")
        files = {row.texts("td")[0]: row.texts("td")[1:] for row in list(sections["Files"].every("tr"))[1:]}
        self.assertIn("registry.reg", files)
        self.assertRegex(" ".join(map(str, files.items())), r"(?i)qboutput\.ini', \['(none|[0-9]+ bytes?)', '[0-9]+ bytes? at")

    def test_of_a_failed_call_leads_to_the_steps_that_failed(self):
        page = self.opened(self.show(self.case(STEPS, outcome="unfinished", microseconds=1_000_000)))
        failed = list(page.every("section"))[0]
        self.assertEqual(["The call: unfinished",
                          "Step 2: automation object O get member M: error 0x800A01B6, S: no M",
                          "Step 4: process end start 3 exitCode 5: exit code 5",
                          "Step 6: messageBox text t caption c icon none: never came back"], failed.texts("p"))
        links = [link.attributes["href"].removeprefix("#") for link in failed.every("a")]
        open_steps = [step.attributes["id"] for step in page.every("details") if "open" in step.attributes]
        self.assertEqual(["step-2", "step-4", "step-6"], links)
        self.assertEqual(links, open_steps)

    # What texts cannot do to it.

    def test_shows_hostile_texts_as_they_are_and_makes_nothing_of_them(self):
        steps = lines(*({"n": n, "at": "once", "us": text, "kind": text, "op": text, text: text, "error": {"source": text}}
                        for n, text in enumerate(HOSTILE)))
        case = self.case(steps, command=HOSTILE[0], outcome=HOSTILE[1], entryPoint=HOSTILE[2], program=HOSTILE,
                         missing=[{"what": text, "why": text} for text in HOSTILE],
                         files={f"machine/drive_c/{n}.ini": text for n, text in enumerate(HOSTILE)})
        page = self.show(case)
        tree = self.opened(page)
        for element in tree.every():
            self.assertIn(element.name, ELEMENTS)
            self.assertLessEqual(set(element.attributes), ATTRIBUTES, element.name)
        style = tree.texts("style")
        self.assertEqual(1, len(style))
        for outside in ("url(", "@import", "http"):
            self.assertNotIn(outside, style[0])
        self.assertEqual([f"{HOSTILE[0]}: {HOSTILE[1]}"], tree.texts("title"))
        shown = tree.texts("dd")
        for text in HOSTILE:
            self.assertGreaterEqual(shown.count(text), 3, "kind, op and a value")
            self.assertIn(text, tree.texts("pre"))
        measured = self.measured(page, NARROW)
        self.assertEqual(NARROW[0], measured["width"])
        self.assertNotEqual("ran", measured["title"], "no script ran where scripts may")

    # How it is laid out.

    def test_places_each_step_on_the_time_line_and_tells_kinds_apart_without_colour(self):
        page = self.show(self.case(STEPS, outcome="reply", microseconds=1_000_000))
        for size in (DESKTOP, NARROW, PHONE):
            measured = self.measured(page, size)
            self.assertEqual(size[0], measured["width"])
            self.assertTrue(all(is_seen for _, _, is_seen in measured["bars"]), measured)
            spans = [[left, right] for left, right, _ in measured["bars"]]
            self.assertEqual([[0, 10], [10, 50], [50, 51], [50, 90]], spans[:4])
            self.assertEqual([95, 100], spans[5], "what never came back goes to the end")
            router, automation, process, _, note, box = measured["patterns"]
            self.assertEqual(5, len({router, automation, process, note, box}))

    def test_is_painted_at_the_size_of_the_window(self):
        page = self.show(self.case(STEPS, outcome="reply", microseconds=1_000_000))
        picture = self.folder / "page.png"
        browser.browse(page, DESKTOP, self.folder / "home", f"--screenshot={picture}")
        painted = Picture(picture.read_bytes())
        self.assertEqual(DESKTOP, (painted.width, painted.height))
        self.assertGreater(painted.rows_with_more_than_one_colour(), DESKTOP[1] // 2)

    def measured(self, page, size):
        """What a script finds in a frame of that size with a copy of the page that lets scripts run."""
        html = page.read_text("utf-8")
        self.assertIn(POLICY, html)
        copy = self.folder / "measured.html"
        copy.write_text(MEASURED % (*size, escape(html.replace(POLICY, ""), {'"': "&quot;"})), "utf-8")
        return json.loads(next(self.opened(copy).every("html")).attributes["data-measured"])

    def case(self, journal, files=None, **facts):
        case = self.folder / "made.pvxcase"
        with zipfile.ZipFile(case, "w") as archive:
            archive.writestr("case.json", json.dumps({"format": 1, **facts}))
            archive.writestr("command.xml", facts.get("command", "<COMMAND/>"))
            archive.writestr("journal.jsonl", journal)
            for name, text in (files or {}).items():
                archive.writestr(name, text)
        return case

    def show(self, case):
        page = self.folder / "page.html"
        page.unlink(missing_ok=True)
        run(parvex, "case", "show", case, "--html", page)
        return page

    def opened(self, page):
        return browser.opened(page, DESKTOP, self.folder / "home")


if __name__ == "__main__":
    parvex = sys.argv[1]
    browser.main_with_browser()
