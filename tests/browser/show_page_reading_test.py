#!/usr/bin/env python3
"""Uses the pages of "parvex show --html" as their readers do: opens what is folded, follows links, takes a telephone, a
screen reader, a printer.

    show_page_reading_test.py PARVEX

The browser is Chromium, cut off from the network. Ends with 77, which ctest counts as skipped, where there is none.
"""

import base64
import io
import sys
import unittest
import zipfile
from xml.etree import ElementTree
from xml.sax.saxutils import escape

import browser
from browser import run
from devtools import Page

DESKTOP = (1280, 900)
PHONE = (360, 740)
PAPER = (720, 1000)  # a sheet of A4 between its margins
RAN = "document.title='ran'"
HOSTILE = f"</pre></details></style><script>{RAN}</script><img src=x onerror={RAN}>\" onmouseover=\"{RAN}"
SEEN = "(one => { const box = one.getBoundingClientRect(); return box.height > 1 && one.checkVisibility(); })"


class Readers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = browser.folder_of(cls)
        cls.quote = browser.exported_quote(parvex, cls.folder)

    # What is folded.

    def test_open_an_order_configuration_and_read_it_as_indented_xml(self):
        with self.page(DESKTOP) as page:
            configuration = "#tag-1-unit-3 > details"
            self.assertFalse(page.value(f"{SEEN}(document.querySelector('{configuration} pre'))"))
            page.click(configuration + " > summary")
            self.assertTrue(page.value(f"{SEEN}(document.querySelector('{configuration} pre'))"))
            text = page.value(f"document.querySelector('{configuration} pre').innerText")
        stored = ElementTree.parse(self.quote).findall("TAGS/TAG")[0].findall("BASEUNITS/BASEUNIT")[2].findtext("SAP_XML")
        self.assertGreater(text.count("\n"), 3)
        self.assertEqual(squeezed(stored), squeezed(text))
        first, second = text.splitlines()[:2]
        self.assertFalse(first.startswith(" "))
        self.assertTrue(second.startswith("  <"), second)

    def test_open_stored_data_and_in_them_an_entry(self):
        blob = base64.b64decode(ElementTree.parse(self.quote).findall("TAGS/TAG")[0].findtext("ATTRIBUTES_LIST/BLOB"))
        with zipfile.ZipFile(io.BytesIO(blob)) as archive:
            entries = {name: archive.read(name) for name in archive.namelist()}
        with self.page(DESKTOP) as page:
            page.click("#tag-1 > details > summary")
            page.click("#tag-1 > details > details > summary")
            shown = page.value("[...document.querySelectorAll('#tag-1 > details > details > summary')]"
                               ".map(one => one.innerText)")
            text = page.value("document.querySelector('#tag-1 > details > details[open] > pre').innerText")
        self.assertEqual([f"{name}, {len(content)} bytes" for name, content in entries.items()], shown)
        self.assertEqual(squeezed(list(entries.values())[0].decode()), squeezed(text))

    def test_get_nothing_done_to_them_by_what_is_folded(self):
        made = io.BytesIO()
        with zipfile.ZipFile(made, "w") as archive:
            archive.writestr("Tag", f"<A>{HOSTILE}")
            archive.writestr(f"{RAN}.txt", HOSTILE)
        project = ElementTree.parse(self.quote)
        tags = project.findall("TAGS/TAG")
        tags[0].find("ATTRIBUTES_LIST/BLOB").text = base64.b64encode(made.getvalue()).decode()
        tags[0].find("BASEUNITS/BASEUNIT[3]/SAP_XML").text = HOSTILE
        tags[1].find("ATTRIBUTES_LIST/BLOB").text = base64.b64encode(HOSTILE.encode()).decode()
        hostile = self.folder / "hostile.xml"
        project.write(hostile, "utf-8")
        with self.page(DESKTOP, hostile) as page:
            page.value("document.querySelectorAll('details').forEach(one => one.open = true)")
            texts = page.value("[...document.querySelectorAll('pre')].map(one => one.innerText)")
            self.assertEqual("Riverside Clinic", page.value("document.title"))
            self.assertEqual(0, page.value("document.querySelectorAll('script, img, [onmouseover], [onerror]').length"))
        self.assertEqual([f"<A>{HOSTILE}", HOSTILE, HOSTILE, HOSTILE], texts[:4])

    # Ways through the page.

    def test_go_from_the_list_to_a_tag(self):
        with self.page(PHONE) as page:
            self.assertEqual(0, page.value("scrollY"))
            page.click("nav tbody tr:nth-child(4) a")
            self.assertEqual("#tag-4", page.value("location.hash"))
            self.assertEqual("4. HP-7", page.value("document.querySelector(':target h2').innerText"))
            self.assertLess(abs(page.value("document.querySelector(':target').getBoundingClientRect().top")), 3)
            self.assert_links_lead_somewhere(page)

    def test_add_up_the_totals_of_the_list(self):
        with self.page(DESKTOP) as page:
            totals = page.value("[...document.querySelectorAll('nav tbody tr')].map(row => row.lastChild.innerText)")
            sections = page.value("[...document.querySelectorAll('section .total')].map(one => one.innerText)")
            whole = page.value("document.querySelector('nav tfoot tr').lastChild.innerText")
        self.assertEqual(sections, totals)
        self.assertEqual(whole, f"{sum(float(total.replace(',', '')) for total in totals):,.2f}")

    def test_go_from_a_difference_to_what_it_is_about_and_back(self):
        with self.page(DESKTOP, self.quote, self.later(), status=1) as page:
            self.assert_links_lead_somewhere(page)
            page.click("#difference-2 th a")
            self.assertEqual("tag-1-unit-1", page.value("document.querySelector(':target').id"))
            page.click("#tag-1-unit-1 .change a")
            self.assertEqual(["#difference-2", "price", "18,450.00", "18,990.00"], page.value(
                "[location.hash, ...[...document.querySelectorAll(':target td')].map(cell => cell.innerText)]"))
            page.click("#tag-1 > .change a")
            self.assertEqual("#difference-2", page.value("location.hash"))
            self.assertEqual("", page.value("document.querySelector('#tag-2').className"))
            self.assertEqual(0, page.value("document.querySelectorAll('#tag-2 .change').length"))

    def test_find_a_removed_tag_whole_and_marked_and_an_added_one_marked(self):
        with self.page(DESKTOP, self.quote, self.later(), status=1) as page:
            page.click("#difference-1 th a")
            self.assertEqual(["removed-tag-4", "removed"], page.value(
                "(() => { const one = document.querySelector(':target'); return [one.id, one.className]; })()"))
            removed = page.value("document.querySelector('#removed-tag-4').innerText")
            page.click("#removed-tag-4 > .change a")
            self.assertEqual("#difference-1", page.value("location.hash"))
            added = page.value("document.querySelector('section.added').innerText")
            order = page.value("[...document.querySelectorAll('nav tbody a')].map(link => link.getAttribute('href'))")
            sections = page.value("[...document.querySelectorAll('section[id]')].map(one => '#' + one.id)")
        with self.page(DESKTOP) as page:
            whole = page.value("document.querySelector('#tag-4').innerText")
        mark = f"Removed, it stands in {self.quote} only: 1 difference"
        self.assertIn(mark, removed)
        self.assertEqual(squeezed(whole), squeezed(removed.replace(mark, "")))
        self.assertIn("Added: 1 difference", added)
        self.assertEqual(sections, order)

    def test_see_totals_before_and_after_and_what_lies_between(self):
        with self.page(DESKTOP, self.quote, self.later(), status=1) as page:
            rows = page.value("[...document.querySelectorAll('nav tbody tr, nav tfoot tr')]"
                              ".map(row => [...row.children].map(cell => cell.innerText))")
        self.assertEqual([["1. RTU-1", "changed", "59,110.00", "60,190.00", "+1,080.00"],
                          ["2. AHU-3", "the same", "77,190.50", "77,190.50", "0.00"]], rows[:2])
        self.assertEqual([["6. New", "added", "", "0.00", "0.00"], ["4. HP-7", "removed", "34,680.00", "", "-34,680.00"],
                          ["together", "", "320,406.70", "286,806.70", "-33,600.00"]], rows[-3:])

    def test_look_into_stored_data_that_differ(self):
        with self.page(PHONE, self.quote, self.stored(f"<A b=\"2\">{escape(HOSTILE)}</A>"), status=1) as page:
            self.assert_links_lead_somewhere(page)
            page.click("#difference-1 td a")
            self.assertTrue(page.value("location.hash").startswith("#stored-"))
            page.click("#stored-1 > summary")
            rows = page.value("[...document.querySelectorAll('#stored-1 tbody tr')]"
                              ".map(row => [...row.children].map(cell => cell.innerText))")
            self.assertEqual(PHONE[0], page.value("document.documentElement.scrollWidth"))
            self.assertEqual(0, page.value("document.querySelectorAll('script, img, [onmouseover], [onerror]').length"))
        self.assertIn("Tag", [row[0] for row in rows])
        self.assertIn(HOSTILE[:40], "".join(row[-1] for row in rows))

    # A telephone, a screen reader, a printer.

    def test_have_a_page_as_wide_as_their_telephone_with_all_of_it_open(self):
        project = ElementTree.parse(self.quote)
        tag = project.find("TAGS/TAG")
        tag.find("ATTRIBUTES_LIST/MARKFOR").text = "W" * 400
        tag.find("BASEUNITS/BASEUNIT[3]/SAP_XML").text = f"<A><B>{'W' * 400}</B></A>"
        wide = self.folder / "wide.xml"
        project.write(wide, "utf-8")
        for dark in (False, True):
            with self.page(PHONE, wide, dark=dark) as page:
                page.value("document.querySelectorAll('details').forEach(one => one.open = true)")
                self.assertEqual(PHONE[0], page.value("document.documentElement.scrollWidth"))
                self.assertEqual([], page.value("[...document.querySelectorAll('body :not(thead, thead *, caption)')]"
                                                ".filter(one => one.getBoundingClientRect().right > innerWidth)"
                                                ".map(one => one.outerHTML)"))
                self.assertEqual(0, page.value("[...document.querySelectorAll('pre')]"
                                               ".filter(one => one.scrollWidth > one.clientWidth).length"))
                self.assertEqual("rgb(255, 255, 255)" if dark else "rgb(0, 0, 0)",
                                 page.value("getComputedStyle(document.body).color"))

    def test_hear_tables_with_their_headings_on_any_width(self):
        columns = ["Type", "Part number", "Quantity", "Price", "Amount", "Brand", "Description"]
        for size in (DESKTOP, PHONE):
            with self.page(size) as page:
                told = page.told()
            tables = [name for role, name in told if role == "table"]
            self.assertEqual(["Tags", "Components of base unit 1", "Components of base unit 2"], tables[:3], size)
            headings = [name for role, name in told if role == "columnheader"]
            self.assertEqual(["Tag", "PDSG", "Base units", "Total", *columns], headings[:11], size)
            rows = [name for role, name in told if role == "rowheader"]
            self.assertEqual("1. RTU-1", rows[0], size)
            self.assertIn("ECON-120", rows, size)
            cells = [name for role, name in told if role in ("cell", "gridcell")]
            self.assertIn("Economizer, enthalpy control", cells, "without the name of its column")

    def test_print_it_without_colours_and_know_what_was_folded(self):
        with self.page(PAPER, media="print", dark=True) as page:
            page.value("document.querySelector('#tag-1 > details').open = true")
            self.assertEqual(PAPER[0], page.value("document.documentElement.scrollWidth"))
            self.assertEqual(["none", "rgb(0, 0, 0)"], page.value(
                "(() => { const link = getComputedStyle(document.querySelector('nav a')); "
                "return [link.textDecorationLine, link.color]; })()"))
            self.assertEqual(["rgb(255, 255, 255)", "rgb(0, 0, 0)"], page.value(
                "(() => { const body = getComputedStyle(document.body); return [body.backgroundColor, body.color]; })()"))
            notes = page.value("[...document.querySelectorAll('summary')].map(one => "
                               "[one.parentElement.open, getComputedStyle(one, '::after').content])")
            self.assertIn([True, "none"], notes)
            self.assertIn([False, '" (folded)"'], notes)
            self.assertEqual({(True, "none"), (False, '" (folded)"')}, set(map(tuple, notes)))
            self.assertTrue(page.value(f"{SEEN}(document.querySelector('thead'))"), "a table on paper")
            self.assertEqual("avoid", page.value("getComputedStyle(document.querySelector('section')).breakInside"))
            printed = base64.b64decode(page.ask("Page.printToPDF", printBackground=False)["data"])
        self.assertTrue(printed.startswith(b"%PDF-"))

    # The programs and what they are given.

    def later(self):
        """The quote with another price in its first tag, without its fourth, and with a new one."""
        project = ElementTree.parse(self.quote)
        tags = project.find("TAGS")
        tags.find("TAG/BASEUNITS/BASEUNIT").set("PRICE", "18990.00")
        tags.remove(tags.findall("TAG")[3])
        added = ElementTree.SubElement(tags, "TAG")
        ElementTree.SubElement(ElementTree.SubElement(added, "ATTRIBUTES_LIST"), "MARKFOR").text = "New"
        later = self.folder / "later.xml"
        project.write(later, "utf-8")
        return later

    def stored(self, text):
        """The quote with other stored data in its first tag."""
        made = io.BytesIO()
        with zipfile.ZipFile(made, "w") as archive:
            archive.writestr("Tag", text)
        project = ElementTree.parse(self.quote)
        project.find("TAGS/TAG/ATTRIBUTES_LIST/BLOB").text = base64.b64encode(made.getvalue()).decode()
        stored = self.folder / "stored.xml"
        project.write(stored, "utf-8")
        return stored

    def assert_links_lead_somewhere(self, page):
        lost = page.value("[...document.querySelectorAll('a')].map(link => link.getAttribute('href'))"
                          ".filter(to => !to.startsWith('#') || !document.getElementById(to.slice(1)))")
        self.assertEqual([], lost)
        self.assertEqual(page.value("document.querySelectorAll('[id]').length"),
                         page.value("new Set([...document.querySelectorAll('[id]')].map(one => one.id)).size"))

    def page(self, size, *quotes, status=0, **options):
        page = self.folder / "page.html"
        page.unlink(missing_ok=True)
        run(parvex, "show", *(quotes or [self.quote]), "--html", page, status=status)
        return Page(page, self.folder / "home", *size, **options)


def squeezed(text):
    return "".join(text.split())


if __name__ == "__main__":
    parvex = sys.argv[1]
    browser.main_with_browser()
