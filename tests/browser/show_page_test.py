#!/usr/bin/env python3
"""Opens the pages of "parvex show --html" in a browser without a window and looks at what it made of them.

    show_page_test.py PARVEX

The browser is Chromium, cut off from the network. Ends with 77, which ctest counts as skipped, where there is none.
"""

import base64
import json
import sys
import unittest
from decimal import ROUND_HALF_UP, Decimal
from xml.etree import ElementTree
from xml.sax.saxutils import escape, quoteattr

import browser
import dom
from browser import run
from picture import Picture

DESKTOP = (1280, 900)
NARROW = (420, 900)
PHONE = (360, 740)
COMPONENT_COLUMNS = ["Type", "Part number", "Quantity", "Price", "Amount", "Brand", "Description"]
ELEMENTS = set("html head meta title style body h1 h2 h3 p nav a section header span dl div dt dd article details summary "
               "pre table caption thead tbody tfoot tr th td footer".split())
ATTRIBUTES = {"lang", "charset", "name", "content", "http-equiv", "class", "data-column", "role", "scope", "aria-label",
              "id", "href"}
RAN = "document.title='ran'"
HOSTILE = [
    f"<script>{RAN}</script>",
    f"</td></table></style></title><img src=x onerror={RAN}><svg onload={RAN}>",
    f"\" onmouseover=\"{RAN}\" style=\"position:fixed\" data-column=\"",
    f"' onclick='{RAN}'><!--",
    "<![CDATA[ ]]> ]]> --> <?php ?>",
    "&lt;b&gt; &amp;amp; &#60;i&#62; &quot;",
    "W" * 400,
    "Küche ½″ Größe – 換気扇 😀",
]
LONGEST_PLACE = 60  # of a name before what differs below it
POLICY = "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'\">"
# A frame may be narrower than the narrowest window.
MEASURED = """<!DOCTYPE html>
<html><body><iframe style="width: %dpx; height: %dpx; border: 0" srcdoc="%s"></iframe><script>
onload = () => {
  const page = document.querySelector("iframe").contentWindow;
  const cells = [...page.document.querySelectorAll("td, tbody th, tfoot th")].filter(cell => cell.textContent);
  const boxes = cells.map(cell => cell.getBoundingClientRect());
  document.documentElement.dataset.measured = JSON.stringify({
    title: page.document.title,
    width: page.document.documentElement.scrollWidth,
    cells: cells.length,
    seen: boxes.filter(box => box.width > 0 && box.height > 0 && box.left >= 0 && box.right <= page.innerWidth).length,
    headings: page.document.querySelector("thead").getBoundingClientRect().height > 1,
  });
};
</script></body></html>"""


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = browser.folder_of(cls)
        cls.quote = browser.exported_quote(parvex, cls.folder)

    # What is on the page.

    def test_of_one_document_has_every_tag_unit_and_component(self):
        page = self.opened(self.show(self.quote))
        project = ElementTree.parse(self.quote).getroot()
        tags = project.findall("TAGS/TAG")
        self.assertEqual(6, len(tags))
        self.assertEqual(["Riverside Clinic"], page.texts("title"))
        self.assertEqual(["Riverside Clinic"], page.texts("h1"))
        sections = list(page.every("section"))
        self.assertEqual(len(tags), len(sections))
        for number, (tag, section) in enumerate(zip(tags, sections), 1):
            self.assertEqual([f"{number}. {tag.findtext('ATTRIBUTES_LIST/MARKFOR')}"], section.texts("h2"))
            self.assert_tag_is_shown(tag, section)
        self.assertIn("quote.xml", page.texts("footer")[0])

    def assert_tag_is_shown(self, tag, section):
        attributes = tag.find("ATTRIBUTES_LIST")
        stored = len(base64.b64decode(attributes.findtext("BLOB") or ""))
        terms = terms_of(section.children("dl")[0])
        self.assertEqual(attributes.findtext("PDSG"), terms["PDSG"])
        self.assertEqual(attributes.findtext("LEGACY_TAGID"), terms["tag id"])
        self.assertEqual(f"{stored} bytes" if stored else "none", terms["stored data"])
        units = tag.findall("BASEUNITS/BASEUNIT")
        articles = section.children("article")
        self.assertEqual(len(units), len(articles))
        total = 0
        for unit, article in zip(units, articles):
            self.assertEqual([f"Base unit {unit.get('SEQUENCE')}: {unit.get('PARTNUMBER')}"], article.texts("h3"))
            lines = [line.text for line in unit.iterfind("EXTENDED_DESCRIPTIONS/DESCRIPTION") if line.text]
            price = f"{unit.get('QUANTITY')} × {Decimal(unit.get('PRICE')):,.2f} = {amount(unit)}"
            self.assertEqual([price] + [dom.plain(line) for line in lines], article.texts("p"))
            self.assertEqual(unit.findtext("ATTRIBUTES_LIST/SUPPLIER"), terms_of(article.children("dl")[0])["brand"])
            components = unit.findall("COMPONENTS/COMPONENT")
            self.assertEqual([row_of(component) for component in components], rows_in(article))
            self.assertEqual(COMPONENT_COLUMNS if components else [], headings_of(article))
            total += sum(map(amount_of, [unit, *components]))
        self.assertEqual(f"{total:,.2f}", section.texts("span")[0])

    def test_of_two_documents_says_what_was_changed_added_and_removed(self):
        later = self.folder / "later.xml"
        project = ElementTree.parse(self.quote)
        rooftop, _, _, pump = project.findall("TAGS/TAG")[:4]
        rooftop.find("BASEUNITS/BASEUNIT").set("PRICE", "18990.00")
        rooftop.find("BASEUNITS/BASEUNIT/COMPONENTS").remove(rooftop.find(".//COMPONENT[@PARTNUMBER='ECON-120']"))
        pump.find("ATTRIBUTES_LIST/BLOB").text = "AAEC"
        added = ElementTree.SubElement(project.find("TAGS"), "TAG")
        ElementTree.SubElement(ElementTree.SubElement(added, "ATTRIBUTES_LIST"), "MARKFOR").text = "New <one>"
        project.write(later, "utf-8")
        page = self.opened(self.show(self.quote, later, status=1))
        differences = list(page.every("section"))[0]
        self.assertEqual(["4 differences"], differences.texts("h2"))
        self.assertEqual(["Where", "What", "Before", "After"], headings_of(differences))
        self.assertCountEqual(
            [["changed", "tag RTU-1, base unit 1", "price", "18,450.00", "18,990.00"],
             ["removed", "tag RTU-1, base unit 1, ACCESSORY ECON-120", "removed, 2,550.00",
              "Economizer, enthalpy control", ""],
             ["changed", "tag HP-7", "stored data", "none", "4 characters of Base64"],
             ["added", "tag New <one>", "added, 0.00", "", ""]],
            [[row.attributes.get("class"), *cells_of(row)] for row in differences_in(differences)])
        self.assertEqual(8, len(list(page.every("section"))), "the later document stands below the differences")

    def test_of_two_equal_documents_says_so(self):
        page = self.opened(self.show(self.quote, self.quote))
        self.assertEqual("No differences", page.texts("h2")[0])
        self.assertEqual(7, len(list(page.every("section"))))

    # What texts cannot do to it.

    def test_shows_hostile_texts_as_they_are_and_makes_nothing_of_them(self):
        page = self.opened(self.show(self.hostile_quote()))
        self.assert_made_of_nothing_else(page)
        self.assertEqual(["".join(HOSTILE)], page.texts("title"))
        self.assertEqual(["".join(HOSTILE)], page.texts("h1"))
        for text, section in zip(HOSTILE, page.every("section"), strict=True):
            self.assertTrue(section.texts("h2")[0].endswith(". " + text), text)
            terms = terms_of(section.children("dl")[0])
            self.assertEqual([text] * 3, [terms[name] for name in ("PDSG", "tag id", "build version")])
            self.assertEqual(f"Base unit {text}: {text}", section.texts("h3")[0])
            self.assertEqual([f"{text} × {text} = ?", text], section.texts("p"))
            terms = terms_of(section.children("article")[0].children("dl")[0])
            self.assertEqual([text] * 2, [terms[name] for name in ("brand", "ETO description")])
            self.assertEqual([[text] * 4 + ["?", text, text]], rows_in(section))

    def test_shows_hostile_differences_and_file_names_as_they_are(self):
        named = self.folder / f"<img src=x onerror={RAN}>.xml"
        named.write_bytes(self.quote.read_bytes())
        shown = self.show(named, self.hostile_quote(), status=1)
        for size in (DESKTOP, PHONE):
            self.assertEqual(size[0], self.measured(shown, size)["width"])
        page = self.opened(shown)
        self.assert_made_of_nothing_else(page)
        self.assertIn(str(named), page.texts("footer")[0])
        shown = [cells_of(row) for row in differences_in(list(page.every("section"))[0])]
        self.assertIn(["quote", "project", "Riverside Clinic", "".join(HOSTILE)], shown)
        for text in HOSTILE:
            place = text if len(text) <= LONGEST_PLACE else text[:LONGEST_PLACE] + "…"
            self.assertIn([f"tag {place}", "added, 0.00 without 2 lines whose price is no number", "", text], shown)

    def assert_made_of_nothing_else(self, page):
        for element in page.every():
            self.assertIn(element.name, ELEMENTS)
            self.assertLessEqual(set(element.attributes), ATTRIBUTES, element.name)
        style = page.texts("style")
        self.assertEqual(1, len(style))
        for outside in ("url(", "@import", "http"):
            self.assertNotIn(outside, style[0])

    def hostile_quote(self):
        """A tag for each hostile text, with it in every place that takes a text."""
        tags = "".join(
            f"<TAG><ATTRIBUTES_LIST><BUILDVERSION>{text}</BUILDVERSION><MARKFOR>{text}</MARKFOR><PDSG>{text}</PDSG>"
            f"<LEGACY_TAGID>{text}</LEGACY_TAGID></ATTRIBUTES_LIST><BASEUNITS><BASEUNIT PARTNUMBER={value} "
            f"QUANTITY={value} PRICE={value} SEQUENCE={value}><EXTENDED_DESCRIPTIONS><DESCRIPTION>{text}</DESCRIPTION>"
            f"</EXTENDED_DESCRIPTIONS><ATTRIBUTES_LIST><SUPPLIER>{text}</SUPPLIER><ETO ETODESCRIPTION={value}>1</ETO>"
            f"</ATTRIBUTES_LIST><COMPONENTS><COMPONENT TYPE={value} PARTNUMBER={value} QUANTITY={value} PRICE={value}>"
            f"<DESCRIPTION>{text}</DESCRIPTION><ATTRIBUTES_LIST><SUPPLIER>{text}</SUPPLIER></ATTRIBUTES_LIST>"
            f"</COMPONENT></COMPONENTS></BASEUNIT></BASEUNITS></TAG>"
            for text, value in ((escape(text), quoteattr(text)) for text in HOSTILE))
        name = quoteattr("".join(HOSTILE))
        quote = self.folder / "hostile.xml"
        quote.write_text(f"<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME={name}/></ATTRIBUTES_LIST>"
                         f"<TAGS>{tags}</TAGS></PROJECT>", "utf-8")
        return quote

    # How it is laid out.

    def test_shows_every_cell_without_scrolling_sideways(self):
        page = self.show(self.quote)
        for size, has_headings in ((DESKTOP, True), (NARROW, False), (PHONE, False)):
            measured = self.measured(page, size)
            self.assertEqual(size[0], measured["width"])
            self.assertGreater(measured["cells"], 70)
            self.assertEqual(measured["cells"], measured["seen"], size)
            self.assertEqual(has_headings, measured["headings"], "narrow cells carry the names of their columns")

    def test_is_never_wider_than_its_window_however_long_its_words(self):
        page = self.show(self.hostile_quote())
        self.assertEqual(DESKTOP[0], self.measured(page, DESKTOP)["width"])
        for size in (NARROW, PHONE):
            measured = self.measured(page, size)
            self.assertEqual(size[0], measured["width"])
            self.assertEqual(measured["cells"], measured["seen"])
        self.assertEqual(dom.plain("".join(HOSTILE)), measured["title"], "no script ran where scripts may")

    def test_is_painted_at_the_size_of_the_window(self):
        page = self.show(self.quote)
        for width, height in (DESKTOP, NARROW):
            picture = self.folder / "page.png"
            picture.unlink(missing_ok=True)
            browser.browse(page, (width, height), self.folder / "home", f"--screenshot={picture}")
            painted = Picture(picture.read_bytes())
            self.assertEqual((width, height), (painted.width, painted.height))
            self.assertGreater(painted.rows_with_more_than_one_colour(), height // 2)

    def measured(self, page, size):
        """What a script finds in a frame of that size with a copy of the page that lets scripts run."""
        html = page.read_text("utf-8")
        self.assertIn(POLICY, html)
        copy = self.folder / "measured.html"
        copy.write_text(MEASURED % (*size, escape(html.replace(POLICY, ""), {'"': "&quot;"})), "utf-8")
        return json.loads(next(self.opened(copy).every("html")).attributes["data-measured"])

    # The programs.

    def show(self, *quotes, status=0):
        page = self.folder / "page.html"
        page.unlink(missing_ok=True)
        run(parvex, "show", *quotes, "--html", page, status=status)
        return page

    def opened(self, page):
        return browser.opened(page, DESKTOP, self.folder / "home")


def amount_of(item):
    return (Decimal(item.get("QUANTITY")) * Decimal(item.get("PRICE"))).quantize(Decimal("0.01"), ROUND_HALF_UP)


def amount(item):
    return f"{amount_of(item):,.2f}"


def row_of(component):
    ordered_ahead = component.findtext("ATTRIBUTES_LIST/PREORDERREQ") == "1"
    return [component.get("TYPE"), component.get("PARTNUMBER"), component.get("QUANTITY"),
            f"{Decimal(component.get('PRICE')):,.2f}", amount(component), component.findtext("ATTRIBUTES_LIST/SUPPLIER"),
            dom.plain(component.findtext("DESCRIPTION") + (" (ordered ahead)" if ordered_ahead else ""))]


def rows_in(part):
    return [cells_of(row) for body in part.every("tbody") for row in body.every("tr")]


def cells_of(row):
    return [cell.text() for cell in row.every() if cell.name in ("th", "td")]


def differences_in(section):
    return [row for row in section.every("tr") if row.attributes.get("id", "").startswith("difference-")]


def headings_of(part):
    return [heading for head in part.every("thead") for heading in head.texts("th")]


def terms_of(list_of_terms):
    return dict(zip(list_of_terms.texts("dt"), list_of_terms.texts("dd"), strict=True))


if __name__ == "__main__":
    parvex = sys.argv[1]
    browser.main_with_browser()
