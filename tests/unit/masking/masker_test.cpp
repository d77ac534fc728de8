#include "masking/masker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "codec/bin_encoder.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/writer.h"
#include "formats/text/encoded_text.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "seams/automation_error.h"
#include "tests/unit/masking/masked_text.h"

namespace parvex::masking {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr Key kKey = {7, 11};

// What a text becomes that is masked as a whole.
std::string Other(const std::string& text) {
  std::u32string codes = test::CodesIn(text);
  Letters(kKey).Mask(codes);
  return test::Utf8Of(codes);
}

std::string OtherNumber(const std::string& text) {
  std::u32string codes = test::CodesIn(text);
  Letters(kKey).MaskNumbers(codes);
  return test::Utf8Of(codes);
}

std::string Ansi(const std::string& text) { return posix::Windows1252().ToAnsi(text); }

class MaskerTest : public testing::Test {
 protected:
  MaskerTest() {
    names.Add(Place::Name, test::CodesIn("Riverside Clinic"));
    names.Add(Place::Name, test::CodesIn("K\xC3\xBC"
                                         "che & Caf\xC3\xA9 <EG>"));
    names.Add(Place::Name, test::CodesIn("CH-1"));
    names.Add(Place::Price, test::CodesIn("18450.00"));
    names.Close();
    masker.MaskWith(kKey);
  }

  KnownNames names;
  Masker masker{names, {}};
  const std::string clinic = Other("Riverside Clinic");
  const std::string kitchen = Other(
      "K\xC3\xBC"
      "che & Caf\xC3\xA9 <EG>");
};

// How the name stands in bytes of one layer, and what is expected of them.
struct Layer {
  const char* what;
  std::string before;
  std::string after;
};

TEST_F(MaskerTest, FindsANameInEveryLayer) {
  const std::string name = "Riverside Clinic";
  const std::string lower = Other("riverside clinic");
  const std::vector<Layer> layers = {
      {"text", "of " + name + ".", "of " + clinic + "."},
      {"another letter case", "of riverside clinic.", "of " + lower + "."},
      {"inside a word", "xRiverside Clinicx", "x" + clinic + "x"},
      {"markup", "<a b='" + name + "'>" + name + "</a>", "<a b='" + clinic + "'>" + clinic + "</a>"},
      {"references", "<a>River&#115;ide&#x20;Clinic</a>",
       "<a>" + clinic.substr(0, 5) + "&#" + std::to_string(clinic[5]) + ";" + clinic.substr(6, 3) + "&#x20;" +
           clinic.substr(10) + "</a>"},
      {"markup in markup", "<a>&lt;b&gt;" + name + "&lt;/b&gt;</a>", "<a>&lt;b&gt;" + clinic + "&lt;/b&gt;</a>"},
      {"a CDATA section", "<a><![CDATA[<b>" + name + "</b>]]></a>", "<a><![CDATA[<b>" + clinic + "</b>]]></a>"},
      {"a comment", "<a><!--" + name + "--></a>", "<a><!--" + clinic + "--></a>"},
      {"an ini file", "[a]\r\nb=\"" + name + "\"\r\n", "[a]\r\nb=\"" + clinic + "\"\r\n"},
      {"rich text", "{\\rtf1 {\\b River}side\\par Clinic Riverside Clinic}",
       "{\\rtf1 {\\b River}side\\par Clinic " + clinic + "}"},
      {"rich text with controls inside the name", "{\\rtf1 {\\b River}side Clinic}",
       "{\\rtf1 {\\b " + clinic.substr(0, 5) + "}" + clinic.substr(5) + "}"},
      {"UTF-16", WithMark(name, TextEncoding::Utf16Little), WithMark(clinic, TextEncoding::Utf16Little)},
      {"UTF-16, the other way around", WithMark(name, TextEncoding::Utf16Big),
       WithMark(clinic, TextEncoding::Utf16Big)},
      {"Base64", EncodeBase64(name), EncodeBase64(clinic)},
      {"Base64 of Base64 in markup", "<a>" + EncodeBase64(EncodeBase64(name)) + "</a>",
       "<a>" + EncodeBase64(EncodeBase64(clinic)) + "</a>"},
      {"a registry file",
       "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"b\"=\"" + name + "\"\r\n",
       "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"b\"=\"" + clinic + "\"\r\n"},
  };
  for (const Layer& layer : layers) {
    EXPECT_EQ(masker.Bytes(layer.before), layer.after) << layer.what;
  }
}

TEST_F(MaskerTest, FindsUmlautsAndMarksInEveryForm) {
  const std::string name =
      "K\xC3\xBC"
      "che & Caf\xC3\xA9 <EG>";
  const auto escaped = [](const std::string& text) {
    std::string markup;
    for (const char c : text) {
      markup += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
    }
    return markup;
  };
  EXPECT_EQ(masker.Bytes(Ansi("MarkFor " + name)), Ansi("MarkFor " + kitchen));
  EXPECT_EQ(masker.Bytes("no tag \"" + name + "\""), "no tag \"" + kitchen + "\"");
  EXPECT_EQ(masker.Bytes("<a>" + escaped(name) + "</a>"), "<a>" + escaped(kitchen) + "</a>");
  EXPECT_EQ(masker.Bytes("<a>" + escaped("<b>" + escaped(name) + "</b>") + "</a>"),
            "<a>" + escaped("<b>" + escaped(kitchen) + "</b>") + "</a>");
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>";
  EXPECT_EQ(masker.Bytes(Ansi(declaration + "<a>" + escaped(name) + "</a>")),
            Ansi(declaration + "<a>" + escaped(kitchen) + "</a>"));
  EXPECT_THAT(masker.Bytes("{\\rtf1 K\\'fcche & Caf\\u233? <EG>}"), Not(HasSubstr("fcche")));
}

TEST_F(MaskerTest, KnowsTheHexadecimalTextsOfARegistryFile) {
  const std::string head = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\a]\r\n";
  const std::string hex = "43,00,48,00,2d,00,31,00,0a,00,00,00";  // CH-1 and a line end
  const std::string masked = masker.Bytes(head + "\"b\"=hex(1):" + hex + "\r\n");
  EXPECT_EQ(masked.size(), (head + "\"b\"=hex(1):" + hex + "\r\n").size());
  EXPECT_THAT(masked, Not(HasSubstr("43,00,48")));
  EXPECT_THAT(masked, HasSubstr("2d,00,"));
}

TEST_F(MaskerTest, LooksIntoArchivesInArchives) {
  ZipWriter inner;
  inner.Add("Riverside Clinic/Tag", "of CH-1", true);
  ZipWriter outer;
  outer.Add("inner.zip", inner.Finish(), false);
  outer.Add("picture.bmp", std::string("BM\0\1Riverside Clinic", 20), true);
  posix::Windows1252 codePage;
  const std::string bytes = outer.Finish();
  const std::string masked = masker.Bytes(bytes);
  const auto entries = Unpack(codePage, masked, "");
  ASSERT_EQ(entries.size(), 2u);
  const auto inside = Unpack(codePage, entries[0].bytes, "");
  ASSERT_EQ(inside.size(), 1u);
  EXPECT_EQ(inside[0].name, clinic + "\\Tag");
  EXPECT_EQ(inside[0].bytes, "of " + Other("CH-1"));
  EXPECT_EQ(entries[1].bytes, std::string(20, '\0'));
  EXPECT_EQ(masker.Bytes(EncodeBase64(bytes)), EncodeBase64(masked));
}

TEST_F(MaskerTest, LooksIntoDatabases) {
  const standin::JetTable table{"Config",
                                {{"sKey"}, {"sValue"}, {"note", standin::JetColumn::Type::Memo}},
                                {{"CompanyName", "Harbour", "of Riverside Clinic"}, {"Path", "Harbour", "CH-1"}}};
  for (const jet::Version version : {jet::Version::Jet3, jet::Version::Jet4}) {
    const std::string masked = masker.Bytes(standin::MakeJetDatabase({&table, 1}, version));
    for (const char* gone : {"Riverside Clinic", "CH-1"}) {
      EXPECT_THAT(masked, Not(HasSubstr(gone)));
      EXPECT_THAT(masked, Not(HasSubstr(jet::Utf16Bytes(gone))));
    }
    EXPECT_THAT(masked, HasSubstr(Other("Harbour")));
  }
}

TEST_F(MaskerTest, MasksWhatStandsInItsPlaceThoughItIsKnownFromNowhere) {
  for (const Layer& layer : std::vector<Layer>{
           {"an element", "<MARKFOR>1</MARKFOR>", "<MARKFOR>" + Other("1") + "</MARKFOR>"},
           {"a parameter", "<PARAMETER><NAME>projectName</NAME><VALUE>X</VALUE></PARAMETER>",
            "<PARAMETER><NAME>projectName</NAME><VALUE>" + Other("X") + "</VALUE></PARAMETER>"},
           {"a property", "<Property name=\"proj_name\"><Value>X</Value></Property>",
            "<Property name=\"proj_name\"><Value>" + Other("X") + "</Value></Property>"},
           {"a tag", "<TAG><NAME>Text</NAME><PDSG>RTU47</PDSG></TAG>",
            "<TAG><NAME>" + Other("Text") + "</NAME><PDSG>RTU47</PDSG></TAG>"},
           {"a name of the protocol", "<COMMAND><NAME>Text</NAME></COMMAND>", "<COMMAND><NAME>Text</NAME></COMMAND>"},
           {"a key", "[PartNumber1]\nMarkFor:2=AB\nPDSG=AB\n",
            "[PartNumber1]\nMarkFor:2=" + Other("AB") + "\nPDSG=AB\n"},
           {"a price", "<U PRICE=\"12\" QUANTITY=\"12\"/>", "<U PRICE=\"" + OtherNumber("12") + "\" QUANTITY=\"12\"/>"},
           {"a statement", "SELECT * FROM TagIndex WHERE sAPP='RTU' and sTagName='1'",
            "SELECT * FROM TagIndex WHERE sAPP='RTU' and sTagName='" + Other("1") + "'"},
           {"a user in a path", "in C:\\Users\\al\\x and C:\\Users\\Public\\x",
            "in C:\\Users\\" + Other("al") + "\\x and C:\\Users\\Public\\x"},
       }) {
    EXPECT_EQ(masker.Bytes(layer.before), layer.after) << layer.what;
  }
}

TEST_F(MaskerTest, KeepsWhatTheProtocolPutsAroundANameToMakeAnother) {
  EXPECT_EQ(masker.Bytes("<TagName>Copy of CH-1[2]</TagName>"), "<TagName>Copy of " + Other("CH-1") + "[2]</TagName>");
}

TEST_F(MaskerTest, FindsAPriceWithItsPointOnly) {
  EXPECT_EQ(masker.Bytes("cost 18450.00."), "cost " + OtherNumber("18450.00") + ".");
  EXPECT_EQ(masker.Bytes("cost 118450.00, 18450.005, 18450"), "cost 118450.00, 18450.005, 18450");
}

TEST_F(MaskerTest, LeavesNothingThatItCannotLookInto) {
  EXPECT_EQ(masker.Bytes(std::string("\0\1Riverside", 11)), std::string(11, '\0'));
  EXPECT_EQ(masker.Bytes(std::string(jet::kFileStart) + "Riverside"), std::string(jet::kFileStart.size() + 9, '\0'));
  const std::string picture = EncodeBase64(std::string(300, '\3'));
  EXPECT_EQ(masker.Bytes("<image><![CDATA[" + picture + "]]></image>"),
            "<image><![CDATA[" + EncodeBase64(std::string(300, '\0')) + "]]></image>");
  EXPECT_EQ(masker.Bytes(""), "");
}

// Base64 of a few bytes may be a word; it is one of a file where such a file was seen.
TEST_F(MaskerTest, TakesShortTextForBase64WhereThereIsSuchAFile) {
  const std::string file("\0\1\2\3\4\5", 6);
  const std::string text = "<image>" + EncodeBase64(file) + "</image>";
  EXPECT_EQ(masker.Bytes(text), text);
  masker.File("a.bmp", file);
  EXPECT_EQ(masker.Bytes(text), "<image>AAAAAAAA</image>");
}

TEST_F(MaskerTest, LeavesNoWordOfAFileThatIsFreeText) {
  const std::string text = "drawn for somebody, 2 sheets";
  EXPECT_EQ(masker.File("Drawing.dat", text), Other(text));
  EXPECT_EQ(masker.File("a\\UIKeys.txt", text), text);
  EXPECT_EQ(masker.Bytes("<image>" + EncodeBase64(text) + "</image>"),
            "<image>" + EncodeBase64(Other(text)) + "</image>");
  EXPECT_EQ(
      masker.File("a.rtf", "{\\rtf1 {\\b To} M\\'fcller}"),
      "{\\rtf1 {\\b " + Other("To M\xC3\xBCller").substr(0, 2) + "} " + Other("M") + "\\'" +
          [] {
            const std::string byte = Ansi(Other("M\xC3\xBC").substr(1));
            char hex[8];
            std::snprintf(hex, sizeof hex, "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte[0])));
            return std::string(hex);
          }() +
          Other("M\xC3\xBCller").substr(3) + "}");
  EXPECT_EQ(masker.File("a.ini", "[a]\nb=word\n"), "[a]\nb=word\n");
}

TEST(Masker, RefusesAnArchiveThatIsAllArchives) {
  std::string bytes = "x";
  for (int i = 0; i < 40; ++i) {
    ZipWriter writer;
    writer.Add("a", bytes, false);
    bytes = writer.Finish();
  }
  KnownNames names;
  Masker masker(names, {});
  EXPECT_THROW(masker.Bytes(bytes), AutomationError);
}

TEST(Masker, RefusesNamesInAScriptThatItDoesNotKnow) {
  KnownNames names;
  Masker masker(names, {});
  EXPECT_THROW(masker.Bytes("<MARKFOR>\xE0\xB8\x81\xE0\xB8\x82</MARKFOR>"), AutomationError);
}

TEST(Masker, CollectsNamesDescriptionsPricesAddressesAndNumbers) {
  KnownNames names;
  Masker masker(names, {});
  const std::string text =
      "<A><ProjectName>Clinic</ProjectName><Description>Roof unit</Description><B PRICE='12.50'/>"
      "mail a.b@c.example or call +49 (89) 555-0147.</A>";
  EXPECT_EQ(masker.Bytes(text), text);
  std::vector<std::string> found;
  for (const KnownNames::Name& name : names.All()) {
    found.push_back(test::Utf8Of(name.text));
  }
  EXPECT_THAT(found,
              testing::UnorderedElementsAre("Clinic", "Roof unit", "12.50", "a.b@c.example", "+49 (89) 555-0147"));
}

TEST(Masker, LeavesPricesWhenItIsToldTo) {
  KnownNames names;
  Masker masker(names, {.keepPrices = true});
  masker.Bytes("<A PRICE='12.50'/>");
  names.Close();
  masker.MaskWith(kKey);
  EXPECT_EQ(masker.Bytes("<A PRICE='12.50'>12.50</A>"), "<A PRICE='12.50'>12.50</A>");
}

TEST(Masker, CheckTellsWhatIsLeft) {
  KnownNames names;
  Masker masker(names, {});
  masker.Bytes("<ProjectName>Clinic</ProjectName>");
  names.Close();
  masker.Check();
  masker.Bytes("[a]\nb=the clinic\n");
  EXPECT_THAT(masker.Left(), testing::ElementsAre(U"clinic"));
}

}  // namespace
}  // namespace parvex::masking
