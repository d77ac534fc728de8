#include "reports/drawing_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codec/bin_encoder.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::test {
namespace {

constexpr const char* kReports = "C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\";

class DrawingFilesTest : public testing::Test {
 protected:
  FakeMachine machine;

  void WriteDrawing(const std::string& name, std::string_view bytes) { machine.Write(kReports + name, bytes); }

  /// The root's markup of a report after its files were embedded.
  std::string Embedded(const std::string& report) {
    const xml::Document document = xml::Document::Parse(report);
    EmbedDrawingFiles(machine.platform, document, "RTU47");
    return document.Root().Xml();
  }
};

TEST_F(DrawingFilesTest, AnImageGetsItsContentAndItsNameInPlaceOfItsText) {
  WriteDrawing("Drawings\\unit.bmp", "picture");
  EXPECT_EQ(Embedded("<root><image>unit.bmp</image></root>"),
            "<root><image><![CDATA[cGljdHVyZQ==]]><filename>unit.bmp</filename></image></root>");
}

TEST_F(DrawingFilesTest, ASectionGetsItsContentBehindTheNameAndBothStay) {
  WriteDrawing("Drawings\\unit.dwg", "lines");
  EXPECT_EQ(Embedded("<root><section type='dwg'><item><filename>unit.dwg</filename><x/></item></section></root>"),
            "<root><section type=\"dwg\"><item><filename>unit.dwg</filename><x/><![CDATA[bGluZXM=]]></item></section>"
            "</root>");
}

TEST_F(DrawingFilesTest, ContentDecodesToTheOriginalBytes) {
  std::string bytes;
  for (int i = 0; i < 1024; ++i) {
    bytes += static_cast<char>(i * 7);
  }
  WriteDrawing("Drawings\\unit.dwg", bytes);
  const xml::Document document = xml::Document::Parse("<root><image>unit.dwg</image></root>");
  EmbedDrawingFiles(machine.platform, document, "RTU47");
  EXPECT_EQ(DecodeBase64(document.First("//image").FirstChild().Text()), bytes);
}

TEST_F(DrawingFilesTest, GuideSpecificationsLieBesideTheDrawings) {
  WriteDrawing("GSpec\\unit.rtf", "guide");
  WriteDrawing("Drawings\\unit.rtf", "wrong");
  EXPECT_EQ(Embedded("<root><section type='rtf'><filename>unit.rtf</filename></section></root>"),
            "<root><section type=\"rtf\"><filename>unit.rtf</filename><![CDATA[Z3VpZGU=]]></section></root>");
}

TEST_F(DrawingFilesTest, TheNameDecidesTheFolderNotTheSection) {
  WriteDrawing("GSpec\\unit.rtf", "guide");
  WriteDrawing("Drawings\\unit.dwg", "lines");
  EXPECT_EQ(Embedded("<root><section type='dwg'><filename>unit.rtf</filename></section>"
                     "<section type='rtf'><filename>unit.dwg</filename></section></root>"),
            "<root><section type=\"dwg\"><filename>unit.rtf</filename><![CDATA[Z3VpZGU=]]></section>"
            "<section type=\"rtf\"><filename>unit.dwg</filename><![CDATA[bGluZXM=]]></section></root>");
}

TEST_F(DrawingFilesTest, OtherSectionsAndNamesOutsideOfSectionsAreLeftAlone) {
  WriteDrawing("Drawings\\unit.dwg", "lines");
  const std::string report =
      "<root><section type=\"txt\"><filename>unit.dwg</filename></section><section type=\"DWG\"><filename>unit.dwg"
      "</filename></section><section><filename>unit.dwg</filename></section><filename>unit.dwg</filename></root>";
  EXPECT_EQ(Embedded(report), report);
}

TEST_F(DrawingFilesTest, SeveralNamesInOneSectionAreReadInOrder) {
  WriteDrawing("Drawings\\a.dwg", "a");
  WriteDrawing("Drawings\\b.dwg", "b");
  EXPECT_EQ(Embedded("<root><section type='dwg'><filename>a.dwg</filename><filename>b.dwg</filename></section></root>"),
            "<root><section type=\"dwg\"><filename>a.dwg</filename><filename>b.dwg</filename><![CDATA[YQ==]]>"
            "<![CDATA[Yg==]]></section></root>");
}

TEST_F(DrawingFilesTest, AMissingFileGivesAnEmptySection) {
  EXPECT_EQ(Embedded("<root><image>gone.bmp</image><section type='dwg'><filename>gone.dwg</filename></section></root>"),
            "<root><image><![CDATA[]]><filename>gone.bmp</filename></image><section type=\"dwg\"><filename>gone.dwg"
            "</filename><![CDATA[]]></section></root>");
}

TEST_F(DrawingFilesTest, AnEmptyNameGivesAnEmptySectionAlsoWhereTheFolderHoldsFiles) {
  WriteDrawing("Drawings\\a.dwg", "a");
  EXPECT_EQ(Embedded("<root><image/></root>"), "<root><image><![CDATA[]]><filename/></image></root>");
}

TEST_F(DrawingFilesTest, AFileInATemporaryFolderOfTheApplicationIsConsumedAndADrawingByItsFullPathIsKept) {
  const std::string drawing = std::string(kReports) + "Drawings\\unit.bmp";
  machine.Write(drawing, "plot");
  for (const char* folder : {"C:\\Korvane\\TQ5-VX\\Temp\\", "C:\\Korvane\\TQ5-VX\\Bin\\Reports\\Temp\\"}) {
    const std::string chart = std::string(folder) + "chart.bmp";
    machine.Write(chart, "chart");
    EXPECT_EQ(Embedded("<root><image>" + chart + "</image><image>" + drawing + "</image></root>"),
              "<root><image><![CDATA[Y2hhcnQ=]]><filename>" + chart +
                  "</filename></image><image><![CDATA[cGxvdA==]]><filename>" + drawing + "</filename></image></root>");
    EXPECT_FALSE(machine.Exists(chart));
    EXPECT_TRUE(machine.Exists(drawing));
  }
}

TEST_F(DrawingFilesTest, AnyOtherFileOfTheMachineIsNeitherEmbeddedNorDeleted) {
  for (const char* path :
       {"C:\\Plots\\chart.bmp", "C:\\Temp\\chart.bmp", "C:\\Korvane\\TQ5-VX\\Temp\\..\\Bin\\Options.xml",
        "C:\\Korvane\\TQ5-VX\\Temperature\\chart.bmp", "\\\\server\\share\\chart.bmp", "sub\\chart.bmp"}) {
    if (path[0] == 'C') {
      machine.Write(path, "foreign");
    }
    EXPECT_EQ(RaisedBy([&] { Embedded("<root><image>" + std::string(path) + "</image></root>"); }), 5) << path;
    EXPECT_TRUE(path[0] != 'C' || machine.Exists(path)) << path;
  }
}

TEST_F(DrawingFilesTest, DevicesPipesAndStreamsAreNeverOpened) {
  for (const char* path : {"\\\\.\\pipe\\x", "\\\\?\\C:\\a.bmp", "//./COM1", "\\??\\C:\\a.bmp", "unit.bmp:stream",
                           "C:\\Korvane\\TQ5-VX\\Temp\\a.bmp:stream", "C:\\Korvane\\TQ5-VX\\Temp\\nul", "COM1"}) {
    EXPECT_EQ(RaisedBy([&] { Embedded("<root><image>" + std::string(path) + "</image></root>"); }), 75) << path;
  }
}

TEST_F(DrawingFilesTest, AnImageInADrawingSectionIsEmbeddedByBothSteps) {
  // The section's step finds the filename that the image's step has just added. A consumed file is gone by then.
  WriteDrawing("Drawings\\unit.bmp", "picture");
  EXPECT_EQ(Embedded("<root><section type='dwg'><image>unit.bmp</image></section></root>"),
            "<root><section type=\"dwg\"><image><![CDATA[cGljdHVyZQ==]]><filename>unit.bmp</filename>"
            "<![CDATA[cGljdHVyZQ==]]></image></section></root>");
}

TEST_F(DrawingFilesTest, ANameThatLeavesTheFolderByItsParentOrADriveIsRefused) {
  machine.Write("C:\\Korvane\\TQ5-VX\\RTU47\\Code\\secret.dwg", "secret");
  for (const char* name : {"../../secret.dwg", "a/../../secret.dwg", "..", "a/..", "C:secret.dwg", "C:/secret.dwg"}) {
    const std::string report = "<root><image>" + std::string(name) + "</image></root>";
    try {
      Embedded(report);
      ADD_FAILURE() << name;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.RuntimeNumber(), 5);
      EXPECT_EQ(error.Description(), "the drawing file name \"" + std::string(name) +
                                         "\" leads out of C:\\Korvane\\TQ5-VX\\RTU47\\Code\\Reports\\Drawings");
    }
  }
}

TEST_F(DrawingFilesTest, APathThatLeadsOutByItsParentIsRefused) {
  machine.Write("C:\\secret.dwg", "drive");
  for (const char* path : {"..\\..\\..\\secret.dwg", "C:\\..\\..\\..\\secret.dwg"}) {
    EXPECT_EQ(RaisedBy([&] { Embedded("<root><image>" + std::string(path) + "</image></root>"); }), 5) << path;
  }
}

TEST_F(DrawingFilesTest, ANameWithASlashStaysBelowTheFolder) {
  WriteDrawing("Drawings\\sub\\unit..dwg", "lines");
  machine.Write("C:\\secret.dwg", "drive");
  EXPECT_EQ(Embedded("<root><image>sub/unit..dwg</image><image>/secret.dwg</image></root>"),
            "<root><image><![CDATA[bGluZXM=]]><filename>sub/unit..dwg</filename></image><image><![CDATA[]]>"
            "<filename>/secret.dwg</filename></image></root>");
}

TEST_F(DrawingFilesTest, APatternNamesNoFile) {
  WriteDrawing("Drawings\\unit.dwg", "lines");
  for (const char* name : {"*.dwg", "unit.???"}) {
    EXPECT_EQ(Embedded("<root><image>" + std::string(name) + "</image></root>"),
              "<root><image><![CDATA[]]><filename>" + std::string(name) + "</filename></image></root>");
  }
}

TEST_F(DrawingFilesTest, APatternInATemporaryFolderRemovesNothing) {
  machine.Write("C:\\Korvane\\TQ5-VX\\Temp\\other.bmp", "other");
  EXPECT_NE(RaisedBy([&] { Embedded("<root><image>C:\\Korvane\\TQ5-VX\\Temp\\*.bmp</image></root>"); }), 0);
  EXPECT_TRUE(machine.Exists("C:\\Korvane\\TQ5-VX\\Temp\\other.bmp"));
}

TEST_F(DrawingFilesTest, NamesBeyondAsciiAreFound) {
  WriteDrawing("Drawings\\Küche & Café.dwg", "k");
  EXPECT_EQ(Embedded("<root><image>Küche &amp; Café.dwg</image></root>"),
            "<root><image><![CDATA[aw==]]><filename>Küche &amp; Café.dwg</filename></image></root>");
}

TEST_F(DrawingFilesTest, AReportWithoutFilesStaysAsItIs) {
  EXPECT_EQ(Embedded("<root><section type=\"dwg\"><text>none</text></section></root>"),
            "<root><section type=\"dwg\"><text>none</text></section></root>");
}

}  // namespace
}  // namespace parvex::test
