"""What scripts/lib/summarise.py shows of a quote document, and how it fails."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "lib", "summarise.py")

QUOTE = """<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME="Clinic"/><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST>
<TAGS><TAG><ATTRIBUTES_LIST><BUILDVERSION>4.71.0</BUILDVERSION><MARKFOR>Küche &lt;EG&gt;</MARKFOR><PDSG>FCB47</PDSG>
<LEGACY_TAGID>1105</LEGACY_TAGID><BLOB><![CDATA[AAAA]]></BLOB></ATTRIBUTES_LIST><BASEUNITS>
<BASEUNIT PARTNUMBER="FCBV06" ID="FCB" QUANTITY="8" PRICE="1000.50" SEQUENCE="1">
<EXTENDED_DESCRIPTIONS><DESCRIPTION>Fan coil</DESCRIPTION><DESCRIPTION/></EXTENDED_DESCRIPTIONS>
<ATTRIBUTES_LIST><SUPPLIER>Korvane</SUPPLIER><ETO ETODESCRIPTION="">1</ETO></ATTRIBUTES_LIST>
<COMPONENTS><COMPONENT TYPE="ACCESSORY" PARTNUMBER="V3" QUANTITY="8" PRICE="10.25"/>
<COMPONENT TYPE="WARRANTY" PARTNUMBER="W3" QUANTITY="" PRICE="odd"/></COMPONENTS>
<SAP_XML><![CDATA[<SAPDATA/>]]></SAP_XML></BASEUNIT></BASEUNITS></TAG>
<TAG><ATTRIBUTES_LIST><MARKFOR>HP-7</MARKFOR><PDSG>WSH47</PDSG><LEGACY_TAGID>1</LEGACY_TAGID><BLOB/></ATTRIBUTES_LIST>
<BASEUNITS/></TAG></TAGS></PROJECT>"""


def summarise(text):
    with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".xml") as file:
        file.write(text)
        file.flush()
        return subprocess.run([sys.executable, SCRIPT, file.name], capture_output=True, encoding="utf-8")


class SummariseTest(unittest.TestCase):
    def test_shows_tags_units_components_and_prices(self):
        run = summarise(QUOTE)
        self.assertEqual(run.returncode, 0, run.stderr)
        for line in (
            "Project 'Clinic', 2 tags",
            "1. Küche <EG>",
            "   PDSG FCB47, tag id 1105, build version 4.71.0, stored data yes (4 characters of Base64)",
            "   Base unit 1: 8 x FCBV06 at 1000.50 Korvane, engineered to order, SAP configuration",
            "     Fan coil",
            "     1 ACCESSORY: 8 x V3; 82.00",
            "     = 8,086.00",
            "2. HP-7",
            "   PDSG WSH47, tag id 1, build version unknown, stored data no",
            "Together 8,086.00",
        ):
            self.assertIn(line, run.stdout.splitlines())

    def assert_refused(self, text, reason):
        run = summarise(text)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stdout, "")
        self.assertIn(reason, run.stderr)

    def test_an_empty_file_fails(self):
        self.assert_refused("", "cannot be read")

    def test_a_failure_envelope_fails_with_its_message(self):
        self.assert_refused("<LegacyORLA><returnError>-1</returnError><errorMessage>User Canceled</errorMessage>"
                            "</LegacyORLA>", "User Canceled")

    def test_another_document_fails(self):
        self.assert_refused("<QUOTE/>", "no quote document but <QUOTE>")

    def test_a_quote_without_tags_fails(self):
        self.assert_refused("<PROJECT><TAGS/></PROJECT>", "holds no tag")

    def test_a_missing_file_fails(self):
        run = subprocess.run([sys.executable, SCRIPT, "missing.xml"], capture_output=True, encoding="utf-8")
        self.assertEqual(run.returncode, 1)
        self.assertIn("missing.xml cannot be read", run.stderr)


if __name__ == "__main__":
    unittest.main()
