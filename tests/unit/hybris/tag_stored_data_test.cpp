#include "hybris/tag_stored_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>

#include "codec/bin_encoder.h"
#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kBlob = "C:\\blobs\\unit.blb";

class StoredData : public testing::Test {
 protected:
  ExportMachine export_;
  xml::Document document_ = CreateHybrisDocument("Tower");

  TagElement AddTag(std::string_view pdsg, std::string_view markFor) {
    const TagElement tag = AppendTagElement(document_);
    tag.pdsg.SetText(pdsg);
    tag.markFor.SetText(markFor);
    return tag;
  }

  TagStoredData Read(const TagElement& element, std::string_view familyCode = "38A", bool isLastTag = false,
                     std::string_view blob = kBlob) {
    SelectedTag tag(export_.platform, ExportMachine::kOutput, 1);
    tag.pdsg = familyCode;
    tag.blobFileName = blob;
    return ReadTagStoredData(tag, element, isLastTag);
  }

  TagStoredData ReadStored(std::string_view text, std::string_view familyCode = "38A") {
    export_.WriteBlob(kBlob, "Tag", text);
    return Read(AddTag("38A47", "m"), familyCode);
  }

  /// The stored data of a blob whose one entry is the SAP document itself.
  TagStoredData ReadSapDocument(std::string_view text, std::string_view familyCode = "38A") {
    export_.WriteBlob(kBlob, "unit.xml", text);
    return Read(AddTag("38A47", "m"), familyCode);
  }
};

TEST_F(StoredData, VersionAndIdAreTheProductsAttributes) {
  const TagStoredData data = ReadStored("<Unit><a><Product TagVersion=\"4.70\" lTagID=\"1234\"/></a></Unit>");
  EXPECT_EQ(data.buildVersion, "4.70");
  EXPECT_EQ(data.legacyTagId, "1234");
  EXPECT_EQ(data.sapXml, "");
}

TEST_F(StoredData, AProductWithoutTheAttributesReadsAsEmptyTexts) {
  const TagStoredData data = ReadStored("<Unit><Product ltagid=\"1\"/></Unit>");
  EXPECT_EQ(data.buildVersion, "");
  EXPECT_EQ(data.legacyTagId, "");
}

TEST_F(StoredData, TheFirstProductCounts) {
  EXPECT_EQ(ReadStored("<Product lTagID=\"1\"><Product lTagID=\"2\"/></Product>").legacyTagId, "1");
}

TEST_F(StoredData, TagsWithoutProductAreNumberedAcrossTheThreadsExports) {
  EXPECT_EQ(Read(AddTag("38A", "a")).legacyTagId, "1");
  EXPECT_EQ(ReadStored("<Unit/>").legacyTagId, "2");
  EXPECT_EQ(ReadStored("not xml").legacyTagId, "3");
  EXPECT_EQ(ReadStored("<Product lTagID=\"77\"/>").legacyTagId, "77");
  document_ = CreateHybrisDocument("Another");
  EXPECT_EQ(ReadStored("<product/>").legacyTagId, "4");
}

TEST_F(StoredData, AnotherThreadCountsForItself) {
  const auto nextId = [&] { return Read(AddTag("38A", "a"), "38A", false, "").legacyTagId; };
  EXPECT_EQ(nextId(), "1");
  EXPECT_EQ(nextId(), "2");
  std::string idOfOtherThread;
  std::thread([&] {
    ExportMachine other;
    const xml::Document document = CreateHybrisDocument("P");
    const SelectedTag tag(other.platform, ExportMachine::kOutput, 1);
    idOfOtherThread = ReadTagStoredData(tag, AppendTagElement(document), false).legacyTagId;
  }).join();
  EXPECT_EQ(idOfOtherThread, "1");
  EXPECT_EQ(nextId(), "3");
}

TEST_F(StoredData, TheBlobBecomesACDataSectionOfItsTag) {
  export_.machine.Write(kBlob, "no archive");
  AddTag("38A", "first");
  const TagElement tag = AddTag("38A", "second");
  Read(tag);
  EXPECT_EQ(tag.blob.Xml(), "<BLOB><![CDATA[" + EncodeBase64("no archive") + "]]></BLOB>");
  EXPECT_EQ(document_.First("PROJECT/TAGS/TAG[1]/ATTRIBUTES_LIST/BLOB").Xml(), "<BLOB/>");
}

TEST_F(StoredData, AMissingOrEmptyBlobLeavesTheElementEmpty) {
  const TagElement tag = AddTag("38A", "m");
  Read(tag);
  EXPECT_EQ(tag.blob.Xml(), "<BLOB/>");
  Read(tag, "38A", false, "");
  EXPECT_EQ(tag.blob.Xml(), "<BLOB/>");
  export_.machine.Write(kBlob, "");
  Read(tag);
  EXPECT_EQ(tag.blob.Xml(), "<BLOB/>");
}

TEST_F(StoredData, ABlobInATempFolderIsReadBeforeItIsConsumed) {
  const std::string path = std::string(ExportMachine::kTemp) + "unit.blb";
  export_.WriteBlob(path, "Tag", "<Product TagVersion=\"5\"/>");
  const std::string bytes = export_.machine.Read(path);
  const TagElement tag = AddTag("38A", "m");
  EXPECT_EQ(Read(tag, "38A", false, path).buildVersion, "5");
  EXPECT_EQ(tag.blob.Text(), EncodeBase64(bytes));
  EXPECT_FALSE(export_.machine.Exists(path));
}

TEST_F(StoredData, TheBlobIsWhatItsOwnArchiveMadeOfIt) {
  // Through a link, an archive can replace itself while it is unpacked.
  export_.WriteBlob("C:\\blobs\\real.blb", "real.blb", "unpacked");
  std::filesystem::create_symlink("real.blb", export_.machine.folder.Path() / "drive_c" / "blobs" / "unit.blb");
  const TagElement tag = AddTag("38A", "m");
  Read(tag);
  EXPECT_EQ(tag.blob.Text(), EncodeBase64("unpacked"));
}

TEST_F(StoredData, ABlobElsewhereIsKept) {
  ReadStored("<Unit/>");
  EXPECT_TRUE(export_.machine.Exists(kBlob));
}

TEST_F(StoredData, ATruncatedBlobIsATagWithoutStoredDataButIsStillHandedOn) {
  export_.WriteBlob(kBlob, "Tag", std::string(2000, 'x') + "<Product lTagID=\"9\"/>");
  export_.machine.Write(kBlob, export_.machine.Read(kBlob).substr(0, 20));
  const TagElement tag = AddTag("38A", "m");
  EXPECT_EQ(Read(tag).legacyTagId, "1");
  EXPECT_EQ(tag.blob.Text(), EncodeBase64(export_.machine.Read(kBlob)));
}

TEST_F(StoredData, AnSapDocumentOfItsOwnIsTheSapConfiguration) {
  EXPECT_EQ(ReadSapDocument("<x><SAPDATA><v>1</v></SAPDATA></x>").sapXml, "<SAPDATA><v>1</v></SAPDATA>");
}

TEST_F(StoredData, ATextAboutSapDataWithoutTheElementIsTakenWhole) {
  EXPECT_EQ(ReadSapDocument("<x a=\"SAPDATA\"/>").sapXml, "<x a=\"SAPDATA\"/>");
  EXPECT_EQ(ReadSapDocument("SAPDATA & more").sapXml, "SAPDATA & more");
}

TEST_F(StoredData, SapDataInATagsStoredTextIsTakenForTheFamilyXROnly) {
  constexpr const char* kText = "<Unit><SapData><v>1</v></SapData></Unit>";
  EXPECT_EQ(ReadStored(kText, "XR1").sapXml, "<SAPDATA><v>1</v></SAPDATA>");
  for (const char* otherFamily : {"38A", "XXX", "xr1", "AXR", "X R"}) {
    EXPECT_EQ(ReadStored(kText, otherFamily).sapXml, "") << otherFamily;
  }
}

TEST_F(StoredData, SapDataIsPreferredToTheUpperCaseElement) {
  EXPECT_EQ(ReadStored("<Unit><SAPDATA>upper</SAPDATA><SapData>mixed</SapData></Unit>", "XR1").sapXml,
            "<SAPDATA>mixed</SAPDATA>");
  EXPECT_EQ(ReadStored("<Unit><SAPDATA>upper</SAPDATA></Unit>", "XR1").sapXml, "<SAPDATA>upper</SAPDATA>");
}

TEST_F(StoredData, SapDataInAnyLetterCaseBecomesUpperCaseAlsoInValues) {
  EXPECT_EQ(
      ReadStored("<Unit><SapData sapdata=\"sApDaTa\"><MySapDatas>SapDat sapdata</MySapDatas></SapData></Unit>", "XR1")
          .sapXml,
      "<SAPDATA SAPDATA=\"SAPDATA\"><MySAPDATAs>SapDat SAPDATA</MySAPDATAs></SAPDATA>");
}

TEST_F(StoredData, WithoutEitherElementTheFamilyXRKeepsWhatTheSecondWayGave) {
  EXPECT_EQ(ReadStored("<Unit/>", "XR1").sapXml, "");
  EXPECT_EQ(ReadSapDocument("<x a=\"SAPDATA\"/>", "XR1").sapXml, "<x a=\"SAPDATA\"/>");
}

TEST_F(StoredData, AStoredDocumentThatIsItselfSapDataIsLeftAloneForTheFamilyXR) {
  constexpr const char* kText = "<SAPDATA><SapData>inner</SapData></SAPDATA>";
  EXPECT_EQ(ReadSapDocument(kText, "XR1").sapXml, kText);
  EXPECT_EQ(ReadStored(kText, "XR1").sapXml, "");
}

TEST_F(StoredData, TheFamilyXRTakesSapDataAlsoFromAnSapDocumentOfItsOwn) {
  EXPECT_EQ(ReadSapDocument("<x><SAPDATA>1</SAPDATA><SapData>2</SapData></x>", "XR1").sapXml, "<SAPDATA>2</SAPDATA>");
  EXPECT_EQ(ReadSapDocument("<x><SAPDATA>1</SAPDATA><SapData>2</SapData></x>", "38A").sapXml, "<SAPDATA>1</SAPDATA>");
}

TEST_F(StoredData, StoredTextMayDeclareAnEncoding) {
  EXPECT_EQ(
      ReadStored("<?xml version=\"1.0\" encoding=\"windows-1252\"?><Product TagVersion=\"4.7 f\xFCr\"/>").buildVersion,
      "4.7 für");
}

class TagIndex : public StoredData {
 protected:
  void SetUp() override { export_.machine.Write(ExportMachine::kProjectDatabase, "looked at only for being there"); }

  static std::string Statement(const std::string& app, const std::string& version, const std::string& name) {
    return "SELECT * FROM TagIndex WHERE sAPP ='" + app + "' AND sAppVer='" + version + "' and sTagName='" + name + "'";
  }

  std::string IdOf(const TagElement& tag) { return tag.legacyTagId.Text(); }
};

TEST_F(TagIndex, AllTagsAreLookedUpWithTheLastOne) {
  const TagElement first = AddTag("38A47", "RTU-1");
  const TagElement second = AddTag("48TC47", "RTU-2");
  export_.databases.rows[Statement("38A", "47", "RTU-1")] = {{{"lTagId", "11"}}};
  export_.databases.rows[Statement("48T", "47", "RTU-2")] = {{{"lTagId", "22"}}};
  EXPECT_EQ(Read(second, "48T", true).legacyTagId, "22");
  EXPECT_THAT(export_.databases.opened, ElementsAre(ExportMachine::kProjectDatabase));
  EXPECT_THAT(export_.databases.statements,
              ElementsAre(Statement("38A", "47", "RTU-1"), Statement("48T", "47", "RTU-2")));
  EXPECT_EQ(IdOf(first), "11");
  EXPECT_EQ(IdOf(second), "22");
}

TEST_F(TagIndex, EarlierTagsAreNotLookedUp) {
  Read(AddTag("38A47", "RTU-1"), "38A", false);
  EXPECT_THAT(export_.databases.opened, IsEmpty());
}

TEST_F(TagIndex, AShortPdsgIsNotLookedUpAndOneOfThreeCharactersIs) {
  AddTag("", "none");
  AddTag("38", "two");
  const TagElement last = AddTag("38A", "three");
  Read(last, "38A", true);
  EXPECT_THAT(export_.databases.statements, ElementsAre(Statement("38A", "8A", "three")));
}

TEST_F(TagIndex, AFamilySD3IsNotLookedUp) {
  AddTag("SD347", "special");
  AddTag("SD3", "special");
  AddTag("sd347", "lower case is another family");
  Read(AddTag("XSD3", "nor is it one that only holds it"), "XSD", true);
  EXPECT_THAT(export_.databases.statements, ElementsAre(Statement("sd3", "47", "lower case is another family"),
                                                        Statement("XSD", "D3", "nor is it one that only holds it")));
}

TEST_F(TagIndex, CharactersAreCountedNotBytes) {
  Read(AddTag("ÄÖÜ€", "m"), "ÄÖÜ", true);
  EXPECT_THAT(export_.databases.statements, ElementsAre(Statement("ÄÖÜ", "Ü€", "m")));
}

TEST_F(TagIndex, TextsStandInTheStatementAsTheyAre) {
  Read(AddTag("38A'7", "Bob's"), "38A", true);
  EXPECT_THAT(export_.databases.statements, ElementsAre(Statement("38A", "'7", "Bob's")));
}

TEST_F(TagIndex, TheLastRowFoundIsReturnedAlsoWhenItBelongsToAnEarlierTag) {
  const TagElement first = AddTag("38A47", "RTU-1");
  const TagElement second = AddTag("38A47", "RTU-2");
  const TagElement third = AddTag("38A47", "RTU-3");
  export_.databases.rows[Statement("38A", "47", "RTU-1")] = {{{"lTagId", "11"}}};
  export_.databases.rows[Statement("38A", "47", "RTU-2")] = {{{"lTagId", "22"}}};
  EXPECT_EQ(Read(third, "38A", true).legacyTagId, "22");
  EXPECT_EQ(IdOf(first), "11");
  EXPECT_EQ(IdOf(second), "22");
  EXPECT_EQ(IdOf(third), "") << "the driver sets it to the returned id";
}

TEST_F(TagIndex, OfSeveralRowsTheFirstCounts) {
  export_.databases.rows[Statement("38A", "47", "m")] = {{{"lTagId", "1"}}, {{"lTagId", "2"}}};
  EXPECT_EQ(Read(AddTag("38A47", "m"), "38A", true).legacyTagId, "1");
}

TEST_F(TagIndex, ANullIdIsAnEmptyText) {
  export_.databases.rows[Statement("38A", "47", "m")] = {{{"lTagId", std::nullopt}}};
  const TagElement tag = AddTag("38A47", "m");
  tag.legacyTagId.SetText("before");
  EXPECT_EQ(Read(tag, "38A", true).legacyTagId, "");
  EXPECT_EQ(IdOf(tag), "");
}

TEST_F(TagIndex, WithoutRowTheStoredIdStays) {
  export_.WriteBlob(kBlob, "Tag", "<Product lTagID=\"5\"/>");
  EXPECT_EQ(Read(AddTag("38A47", "m"), "38A", true).legacyTagId, "5");
}

TEST_F(TagIndex, ADatabaseThatDoesNotOpenIsIgnoredAndTriedOnce) {
  export_.databases.unreadable = true;
  export_.WriteBlob(kBlob, "Tag", "<Product lTagID=\"5\"/>");
  AddTag("38A47", "a");
  EXPECT_EQ(Read(AddTag("38A47", "m"), "38A", true).legacyTagId, "5");
  EXPECT_EQ(export_.databases.opened.size(), 1u);
}

TEST_F(TagIndex, AMissingDatabaseIsNotOpened) {
  document_ = CreateHybrisDocument("No such project");
  Read(AddTag("38A47", "m"), "38A", true);
  EXPECT_THAT(export_.databases.opened, IsEmpty());
}

TEST_F(TagIndex, AStatementThatFailsEndsTheExport) {
  export_.databases.refusing = true;
  const TagElement tag = AddTag("38A47", "m");
  EXPECT_EQ(RaisedBy([&] { Read(tag, "38A", true); }), RuntimeError::InvalidCall);
}

TEST_F(TagIndex, WithoutBinPathNothingIsLookedUp) {
  export_.machine.SetBinPath("");
  Read(AddTag("38A47", "m"), "38A", true);
  EXPECT_THAT(export_.databases.opened, IsEmpty());
}

TEST_F(TagIndex, ADocumentWithoutJobIsObjectNotSetNamingIt) {
  const TagElement tag = AddTag("38A47", "m");
  document_.First("//JOB").Remove();
  EXPECT_EQ(RaisedBy([&] { Read(tag, "38A", true); }), RuntimeError::ObjectNotSet);
  EXPECT_THAT(DescriptionOfErrorIn([&] { Read(tag, "38A", true); }), testing::HasSubstr("//JOB"));
}

}  // namespace
}  // namespace parvex::test
