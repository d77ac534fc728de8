#include "hybris/export_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codec/bin_encoder.h"
#include "formats/text/text.h"
#include "protocol/reply_envelope.h"
#include "tests/support/raised_by.h"
#include "tests/unit/hybris/export_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCommand =
    "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
    "<ProjectName>Tower</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>";

class ExportDriver : public testing::Test {
 protected:
  ExportMachine export_;
  FakeMachine& machine_ = export_.machine;

  /// What the workflow program writes when it is started.
  void SelectOnRun(std::string iniText) {
    machine_.processes.work = [this, iniText = std::move(iniText)](const std::string&) { export_.Select(iniText); };
  }

  xml::Document Interactive() {
    LegacyLink link(export_.platform);
    return GetHybrisXML(link, xml::Document::Parse("<COMMAND><NAME>getHybrisXML</NAME></COMMAND>"));
  }

  xml::Document WithoutUi(std::string_view command = kCommand) {
    LegacyLink link(export_.platform);
    return GetHybrisXMLNoUI(link, xml::Document::Parse(command));
  }

  xml::Document Build(std::string_view iniText, std::string_view projectName = "Tower") {
    export_.Select(iniText);
    return BuildHybrisTagDocument(export_.platform, ExportMachine::kOutput, projectName);
  }

  static std::string ErrorMessageOf(const xml::Document& reply) {
    EXPECT_TRUE(IsFailedReply(reply));
    return reply.First("//errorMessage").Text();
  }
};

TEST_F(ExportDriver, WithoutBinPathBothCommandsAnswerSoAndStartNothing) {
  machine_.SetBinPath("");
  EXPECT_EQ(ErrorMessageOf(Interactive()), "System Error: Unable to read BinPath");
  EXPECT_EQ(ErrorMessageOf(WithoutUi()), "System Error: Unable to read BinPath");
  EXPECT_THAT(machine_.processes.started, IsEmpty());
  EXPECT_THAT(machine_.machine.GetFiles().ListFiles(ExportMachine::kTemp), IsEmpty());
}

TEST_F(ExportDriver, WithoutBinPathASelectionIsNotEvenLookedFor) {
  machine_.SetBinPath("");
  EXPECT_EQ(ErrorMessageOf(WithoutUi("")), "System Error: Unable to read BinPath");
}

TEST_F(ExportDriver, ACancelledRunIsAnsweredSo) {
  SelectOnRun("[Header]\r\nAction=cancel\r\n[PartNumber1]\r\nPartNumber=A\r\n");
  EXPECT_EQ(ErrorMessageOf(Interactive()), "User Canceled");
  EXPECT_EQ(ErrorMessageOf(WithoutUi()), "User Canceled");
  EXPECT_EQ(machine_.processes.started.size(), 2u);
}

TEST_F(ExportDriver, AWorkflowThatWritesNothingIsACancelOnlyWithUserInterface) {
  EXPECT_EQ(ErrorMessageOf(Interactive()), "User Canceled");
  EXPECT_EQ(WithoutUi().First("PROJECT/TAGS").Xml(), "<TAGS/>");
}

TEST_F(ExportDriver, AWorkflowThatDoesNotStartIsACancelOnlyWithUserInterface) {
  machine_.processes.startError = 53;
  EXPECT_EQ(ErrorMessageOf(Interactive()), "User Canceled");
  EXPECT_EQ(WithoutUi().First("PROJECT/TAGS").Xml(), "<TAGS/>");
}

TEST_F(ExportDriver, TheInteractiveExportHasNoProjectName) {
  SelectOnRun("[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=A\r\n");
  const xml::Document reply = Interactive();
  EXPECT_EQ(reply.First("//JOB").Attribute("LEGACY_PROJECTNAME"), "");
  EXPECT_EQ(reply.All("PROJECT/TAGS/TAG").size(), 1u);
}

TEST_F(ExportDriver, TheInteractiveExportNeitherWritesInputsNorClearsOutputs) {
  export_.Select("[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=from before\r\n");
  EXPECT_EQ(Interactive().First("//BASEUNIT").Attribute("PARTNUMBER"), "from before");
  EXPECT_THAT(machine_.machine.GetFiles().ListFiles(ExportMachine::kTemp), ElementsAre("QBOutput.ini"));
}

TEST_F(ExportDriver, TheExportWithoutUserInterfaceHandsOverTheSelectionBeforeTheRun) {
  export_.Select("[PartNumber1]\r\nPartNumber=from before\r\n");
  std::vector<std::string> filesAtStart;
  machine_.processes.work = [&](const std::string&) {
    filesAtStart = machine_.machine.GetFiles().ListFiles(ExportMachine::kTemp);
  };
  const xml::Document reply = WithoutUi();
  EXPECT_THAT(filesAtStart, ElementsAre("HBInput.ini", "QBInput.ini", "~parvex-lock.tmp"));
  EXPECT_FALSE(machine_.Exists(std::string(ExportMachine::kTemp) + "~parvex-lock.tmp")) << "it is let go";
  EXPECT_EQ(reply.First("//JOB").Attribute("LEGACY_PROJECTNAME"), "Tower");
  EXPECT_EQ(reply.First("PROJECT/TAGS").Xml(), "<TAGS/>") << "the old output was cleared";
}

TEST_F(ExportDriver, ACommandWithoutSelectionFailsAndLeavesEveryFile) {
  export_.Select("[Header]\r\nAction=ok\r\n");
  for (const char* command : {"", "<COMMAND/>", "<c><UserSelectionTransfer/></c>"}) {
    EXPECT_EQ(RaisedBy([&] { WithoutUi(command); }), RuntimeError::ObjectNotSet) << command;
  }
  EXPECT_THAT(machine_.machine.GetFiles().ListFiles(ExportMachine::kTemp), ElementsAre("QBOutput.ini"));
  EXPECT_THAT(machine_.processes.started, IsEmpty());
}

TEST_F(ExportDriver, AProjectNameThatBreaksTheSkeletonFailsWithTheFirstTag) {
  for (const char* name : {"12&quot; duct", "Smith &amp; Sons", "a &lt; b"}) {
    const std::string command =
        std::string("<c><UserSelectionTransfer><ProjectName>") + name + "</ProjectName></UserSelectionTransfer></c>";
    SelectOnRun("[PartNumber1]\r\nPartNumber=A\r\n");
    EXPECT_EQ(RaisedBy([&] { WithoutUi(command); }), RuntimeError::ObjectNotSet) << name;
    SelectOnRun("");
    EXPECT_EQ(WithoutUi(command).Xml(), "") << "without tags the empty document is the reply: " << name;
  }
}

TEST_F(ExportDriver, TwoTagsComeInTheirOrder) {
  const xml::Document document =
      Build("[PartNumber2]\r\nPartNumber=B\r\nPDSG=48T47\r\n[PartNumber1]\r\nPartNumber=A\r\nPDSG=38A47\r\n");
  const auto tags = document.All("PROJECT/TAGS/TAG");
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags[0].First("ATTRIBUTES_LIST/PDSG").Text(), "38A47");
  EXPECT_EQ(tags[0].First("BASEUNITS/BASEUNIT").Attribute("PARTNUMBER"), "A");
  EXPECT_EQ(tags[1].First("ATTRIBUTES_LIST/PDSG").Text(), "48T47");
}

TEST_F(ExportDriver, TheBrandCodeIsThePdsgsBeginningOrAFiller) {
  const struct {
    const char* pdsg;
    bool isFcb;
  } cases[] = {{"FC", false}, {"FCB", true}, {"FCB47", true}, {"XFCB", false}, {"", false}};
  for (const auto& c : cases) {
    const xml::Document document =
        Build(std::string("[PartNumber1]\r\nPartNumber=A\r\nAttribute1=x\r\nPDSG=") + c.pdsg + "\r\n");
    EXPECT_EQ(document.First("//ATTRIBUTE1").Attribute("TYPE").has_value(), c.isFcb) << c.pdsg;
  }
}

TEST_F(ExportDriver, MissingKeysHaveTheirDefaults) {
  const xml::Node unit = Build("[PartNumber1]\r\nPartNumber=A\r\n").First("//BASEUNIT");
  EXPECT_EQ(unit.Attribute("QUANTITY"), "1");
  EXPECT_EQ(unit.First("ATTRIBUTES_LIST/PREORDERREQ").Text(), "0") << "N";
  EXPECT_EQ(unit.First("ATTRIBUTES_LIST/SUPPLIER").Text(), "Korvane");
  EXPECT_EQ(unit.First("ATTRIBUTES_LIST/ETO").Xml(), "<ETO ETODESCRIPTION=\"\"/>");
  EXPECT_EQ(unit.First("ATTRIBUTES_LIST/CFM").Xml(), "<CFM/>");
}

TEST_F(ExportDriver, TheQuantityIsTheIntegerThatTheValueBeginsWith) {
  const struct {
    const char* line;
    const char* quantity;
  } cases[] = {{"Quantity=12", "12"}, {"Quantity=3.9", "3"}, {"Quantity=many", "0"}, {"Quantity=-2", "-2"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Build(std::string("[PartNumber1]\r\nPartNumber=A\r\n") + c.line + "\r\n")
                  .First("//BASEUNIT")
                  .Attribute("QUANTITY"),
              c.quantity)
        << c.line;
  }
}

TEST_F(ExportDriver, TheSupplierOfTheFirstUnitIsMappedToABrand) {
  EXPECT_EQ(Build("[PartNumber1]\r\nPartNumber=A\r\nSupplier=someone\r\nTypeOfSale=21\r\n").First("//SUPPLIER").Text(),
            "Tessel");
}

TEST_F(ExportDriver, AccessoriesBecomeUnitsOrComponents) {
  const xml::Document document = Build(
      "[PartNumber1]\r\nPartNumber=A\r\n[Accessory1]\r\n"
      "PartNumber:1=loose\r\n"
      "PartNumber:2=second unit\r\nBaseUnit1:2=BU2\r\n"
      "PartNumber:3=of the second\r\nBaseUnit2:3=ABCD2\r\n"
      "PartNumber:4=with a file\r\nFileName:4=C:\\none.blb\r\n"
      "PartNumber:5=of the third\r\nBaseUnit2:5=ABCD3\r\n"
      "PartNumber:6=of no unit\r\nBaseUnit2:6=ABCD9\r\n"
      "PartNumber:7=marked BU1\r\nBaseUnit1:7=BU1\r\n");
  std::vector<std::string> found;
  for (const xml::Node& unit : document.All("//BASEUNIT")) {
    found.push_back(unit.Attribute("PARTNUMBER").value());
    for (const xml::Node& component : unit.All("COMPONENTS/COMPONENT")) {
      found.push_back("- " + component.Attribute("PARTNUMBER").value());
    }
  }
  EXPECT_THAT(found, ElementsAre("A", "- loose", "second unit", "- of the second", "with a file", "- of the third"));
}

TEST_F(ExportDriver, ABaseUnit2TooShortToBeCutEndsTheExport) {
  EXPECT_EQ(
      RaisedBy([&] { Build("[PartNumber1]\r\nPartNumber=A\r\n[Accessory1]\r\nPartNumber:1=x\r\nBaseUnit2:1=AB\r\n"); }),
      RuntimeError::InvalidCall);
  EXPECT_EQ(RaisedBy([&] { Build("[PartNumber1]\r\nPartNumber=A\r\n[Warranty1]\r\nName:1=x\r\nBaseUnit2:1=ABC\r\n"); }),
            RuntimeError::InvalidCall);
}

TEST_F(ExportDriver, ABaseUnit2TooShortInAnAccessoryThatIsNoLooseOneIsNotLookedAt) {
  EXPECT_EQ(
      Build("[PartNumber1]\r\nPartNumber=A\r\n[Accessory1]\r\nPartNumber:1=x\r\nBaseUnit1:1=BU2\r\nBaseUnit2:1=AB\r\n")
          .All("//BASEUNIT")
          .size(),
      2u);
}

TEST_F(ExportDriver, UnitsAreLookedUpInTheTagIndexOnceWithTheLastTag) {
  machine_.Write(ExportMachine::kProjectDatabase, "looked at only for being there");
  export_.databases.rows["SELECT * FROM TagIndex WHERE sAPP ='38A' AND sAppVer='47' and sTagName='one'"] = {
      {{"lTagId", "71"}}};
  const xml::Document document = Build(
      "[PartNumber1]\r\nPartNumber=A\r\nPDSG=38A47\r\nMarkFor=one\r\n"
      "[PartNumber2]\r\nPartNumber=B\r\nPDSG=SD347\r\nMarkFor=two\r\n");
  EXPECT_EQ(export_.databases.opened.size(), 1u);
  EXPECT_EQ(export_.databases.statements.size(), 1u);
  EXPECT_EQ(document.First("PROJECT/TAGS/TAG[1]/ATTRIBUTES_LIST/LEGACY_TAGID").Text(), "71");
  EXPECT_EQ(document.First("PROJECT/TAGS/TAG[2]/ATTRIBUTES_LIST/LEGACY_TAGID").Text(), "71")
      << "the last row found names the last tag, also when it is another tag's";
}

TEST_F(ExportDriver, NoTagsGiveTheSkeleton) {
  EXPECT_EQ(Build("").Root().Xml(),
            "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"Tower\"/><CUSTOMER/><SALESPERSON/><BRAND/>"
            "</ATTRIBUTES_LIST><TAGS/></PROJECT>");
}

constexpr const char* kSelection = R"([Header]
Action=OK

[PartNumber1]
PartNumber=XRW-040
PDSG=XR47
MarkFor=CH @A-UMLAUT@-1 <a>
FileName=C:\Korvane\TQ5-VX\Temp\unit1.blb
Description=Chiller "40" & more
Quantity=2
MasterPrice=40000.00
Supplier= tessel
TypeOfSale=1A
Ton=40
CFM=1999.5
PreOrderReq=Y
ETO=Y
Attribute1=a1
Attribute5=a5
BaseUnit1=BU1
[ETO Description1]
Description:1=special coat
Description:2=special fan
[Extended Description1]
Description:1=quiet
[Accessory1]
PartNumber:1=VALVE
Description:1=Valve 3/4"
MasterPrice:1=12.30
Quantity:1=4
TypeOfSale:1=9
preorderreq:1=N
PartNumber:2=XRP-001
Quantity:2=1
BaseUnit1:2=BU2
Supplier:2=QZN
[Warranty1]
Name:1=W5
Quantity:1=1
Description:1=5 years
MasterPrice:1=500
BaseUnit2:1=XRWA
preorderreq:1=Y
[BlanketQuoteControl1]
PartNumber:1=BQ
Quantity:1=1
MasterPrice:1=1
preorderreq1=N

[PartNumber2]
PartNumber=FC
PDSG=38
MarkFor=no data)";

constexpr const char* kStoredTag =
    R"(<Unit><Product TagVersion="4.70" lTagID="815"/><SapData><v n="1">A&amp;B</v></SapData></Unit>)";

constexpr const char* kDocument = R"(<PROJECT>
  <ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME="Tower"/><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST>
  <TAGS>
    <TAG>
      <ATTRIBUTES_LIST>
        <BUILDVERSION>4.70</BUILDVERSION><MARKFOR>CH Ä-1 &lt;a&gt;</MARKFOR><PDSG>XR47</PDSG>
        <LEGACY_TAGID>815</LEGACY_TAGID><BLOB><![CDATA[@BLOB@]]></BLOB>
      </ATTRIBUTES_LIST>
      <BASEUNITS>
        <BASEUNIT PARTNUMBER="XRW-040" ID="XRW" QUANTITY="2" PRICE="40000.00" SEQUENCE="1">
          <EXTENDED_DESCRIPTIONS>
            <DESCRIPTION>Chiller "40" &amp; more</DESCRIPTION><DESCRIPTION>quiet</DESCRIPTION>
          </EXTENDED_DESCRIPTIONS>
          <ATTRIBUTES_LIST>
            <DELIVERYGROUP/><SUPPLIER>Tessel</SUPPLIER><TYPEOFSALE>1A</TYPEOFSALE><TON>40</TON><CFM>2000</CFM>
            <ATTRIBUTE1>a1</ATTRIBUTE1><ATTRIBUTE2/><ATTRIBUTE3/><ATTRIBUTE4/><ATTRIBUTE5>a5</ATTRIBUTE5>
            <PREORDERREQ>1</PREORDERREQ><ETO ETODESCRIPTION="special coat&#13;&#10;special fan">1</ETO>
          </ATTRIBUTES_LIST>
          <COMPONENTS>
            <COMPONENT SEQUENCE="1" TYPE="ACCESSORY" PARTNUMBER="VALVE" QUANTITY="4" PRICE="12.30">
              <DESCRIPTION>Valve 3/4"</DESCRIPTION>
              <ATTRIBUTES_LIST>
                <DELIVERYGROUP/><SUPPLIER>QZN</SUPPLIER><TYPEOFSALE>9</TYPEOFSALE><PREORDERREQ>0</PREORDERREQ>
              </ATTRIBUTES_LIST>
            </COMPONENT>
            <COMPONENT SEQUENCE="2" TYPE="WARRANTY" PARTNUMBER="W5" QUANTITY="1" PRICE="500">
              <DESCRIPTION>5 years</DESCRIPTION>
              <ATTRIBUTES_LIST>
                <DELIVERYGROUP/><SUPPLIER>Korvane</SUPPLIER><TYPEOFSALE/><PREORDERREQ>1</PREORDERREQ>
              </ATTRIBUTES_LIST>
            </COMPONENT>
            <COMPONENT SEQUENCE="3" TYPE="BLANKETETO" PARTNUMBER="BQ" QUANTITY="1" PRICE="1">
              <DESCRIPTION/>
              <ATTRIBUTES_LIST>
                <DELIVERYGROUP/><SUPPLIER/><TYPEOFSALE/><PREORDERREQ>N</PREORDERREQ>
              </ATTRIBUTES_LIST>
            </COMPONENT>
          </COMPONENTS>
          <SAP_XML><![CDATA[<SAPDATA><v n="1">A&amp;B</v></SAPDATA>]]></SAP_XML>
        </BASEUNIT>
        <BASEUNIT PARTNUMBER="XRP-001" ID="XRP" QUANTITY="1" PRICE="" SEQUENCE="2">
          <EXTENDED_DESCRIPTIONS><DESCRIPTION/></EXTENDED_DESCRIPTIONS>
          <ATTRIBUTES_LIST>
            <DELIVERYGROUP/><SUPPLIER>QZN</SUPPLIER><TYPEOFSALE/><TON/><CFM/>
            <ATTRIBUTE1/><ATTRIBUTE2/><ATTRIBUTE3/><ATTRIBUTE4/><ATTRIBUTE5/>
            <PREORDERREQ/><ETO ETODESCRIPTION=""/>
          </ATTRIBUTES_LIST>
          <COMPONENTS>
            <COMPONENT SEQUENCE="1" TYPE="BLANKETETO" PARTNUMBER="BQ" QUANTITY="1" PRICE="1">
              <DESCRIPTION/>
              <ATTRIBUTES_LIST>
                <DELIVERYGROUP/><SUPPLIER/><TYPEOFSALE/><PREORDERREQ>N</PREORDERREQ>
              </ATTRIBUTES_LIST>
            </COMPONENT>
          </COMPONENTS>
          <SAP_XML/>
        </BASEUNIT>
      </BASEUNITS>
    </TAG>
    <TAG>
      <ATTRIBUTES_LIST>
        <BUILDVERSION/><MARKFOR>no data</MARKFOR><PDSG>38</PDSG><LEGACY_TAGID>1</LEGACY_TAGID><BLOB/>
      </ATTRIBUTES_LIST>
      <BASEUNITS>
        <BASEUNIT PARTNUMBER="FC" ID="UNK" QUANTITY="1" PRICE="" SEQUENCE="1">
          <EXTENDED_DESCRIPTIONS><DESCRIPTION/></EXTENDED_DESCRIPTIONS>
          <ATTRIBUTES_LIST>
            <DELIVERYGROUP/><SUPPLIER>Korvane</SUPPLIER><TYPEOFSALE/><TON/><CFM/>
            <ATTRIBUTE1/><ATTRIBUTE2/><ATTRIBUTE3/><ATTRIBUTE4/><ATTRIBUTE5/>
            <PREORDERREQ>0</PREORDERREQ><ETO ETODESCRIPTION=""/>
          </ATTRIBUTES_LIST>
          <COMPONENTS/>
          <SAP_XML/>
        </BASEUNIT>
      </BASEUNITS>
    </TAG>
  </TAGS>
</PROJECT>)";

TEST_F(ExportDriver, ASelectionBecomesThisDocument) {
  const std::string blob = std::string(ExportMachine::kTemp) + "unit1.blb";
  export_.WriteBlob(blob, "Tag", kStoredTag);
  const std::string encodedBlob = EncodeBase64(machine_.Read(blob));
  SelectOnRun(ReplaceAll(ReplaceAll(kSelection, "\n", "\r\n"), "@A-UMLAUT@", "\xC4"));
  // Parsing drops the line breaks and blanks that make the expected document readable.
  const xml::Document expected = xml::Document::Parse(ReplaceAll(kDocument, "@BLOB@", encodedBlob));

  EXPECT_EQ(WithoutUi().Root().Xml(), expected.Root().Xml());
  EXPECT_FALSE(machine_.Exists(blob)) << "a blob in the temporary folder is consumed";
  EXPECT_THAT(machine_.boxes.boxes, IsEmpty());
}

TEST_F(ExportDriver, TenTimesTheTagsCostTenTimesTheLookUps) {
  const auto lookUpsFor = [&](int tags) {
    std::string text;
    for (int i = 1; i <= tags; ++i) {
      const std::string n = std::to_string(i);
      text += "[PartNumber" + n + "]\r\nPartNumber=A\r\n[Accessory" + n + "]\r\nPartNumber:1=x\r\nPartNumber:2=y\r\n";
    }
    export_.profile.read = export_.profile.opened = 0;
    Build(text);
    return std::pair(export_.profile.read, export_.profile.opened);
  };
  const auto none = lookUpsFor(0);
  const auto one = lookUpsFor(1);
  const auto hundred = lookUpsFor(100);
  EXPECT_EQ(hundred.first - none.first, 100 * (one.first - none.first));
  EXPECT_EQ(hundred.second - none.second, 100 * (one.second - none.second));
}

}  // namespace
}  // namespace parvex::test
