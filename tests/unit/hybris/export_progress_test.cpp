#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "hybris/export_driver.h"
#include "seams/automation_error.h"
#include "tests/support/recorded_progress.h"
#include "tests/unit/hybris/export_machine.h"

// What the machine's progress is told while an export runs.

namespace parvex::test {
namespace {

using testing::ElementsAre;

class ExportProgress : public testing::Test {
 protected:
  ExportMachine export_;
  RecordedProgress progress_;

  ExportProgress() { export_.platform.progress = &progress_; }

  void SelectOnRun(std::string iniText) {
    export_.machine.processes.work = [this, iniText = std::move(iniText)](const std::string&) {
      export_.Select(iniText);
    };
  }
  void WithoutUi() {
    LegacyLink link(export_.platform);
    GetHybrisXMLNoUI(link, xml::Document::Parse("<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><VALUE>"
                                                "<UserSelectionTransfer><ProjectName>Tower</ProjectName>"
                                                "</UserSelectionTransfer></VALUE></PARAMETER></COMMAND>"));
  }
  void Interactive() {
    LegacyLink link(export_.platform);
    GetHybrisXML(link, xml::Document::Parse("<COMMAND><NAME>getHybrisXML</NAME></COMMAND>"));
  }
};

constexpr const char* kThreeTags =
    "[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=A\r\nMarkFor=RTU-1\r\n[PartNumber2]\r\nPartNumber=B\r\n"
    "MarkFor=RTU-2\r\n[PartNumber3]\r\nPartNumber=C\r\nMarkFor=RTU-3\r\n";

TEST_F(ExportProgress, IsToldOfTheWaitAndThenOfEachTagOnceInOrder) {
  SelectOnRun(kThreeTags);
  WithoutUi();
  EXPECT_THAT(progress_.told, ElementsAre("waits: the quote builder is running", "has waited", "reads 1 of 3: RTU-1",
                                          "reads 2 of 3: RTU-2", "reads 3 of 3: RTU-3", "has read tags"));
}

TEST_F(ExportProgress, IsToldTheEndWhenATagFails) {
  export_.databases.refusing = true;  // asked with the last tag
  export_.machine.Write(ExportMachine::kProjectDatabase, "a database");
  SelectOnRun("[PartNumber1]\r\nPartNumber=A\r\nPDSG=RTU47\r\n[PartNumber2]\r\nPartNumber=B\r\nPDSG=RTU47\r\n");
  EXPECT_ANY_THROW(WithoutUi());
  EXPECT_THAT(progress_.told,
              ElementsAre(testing::_, "has waited", "reads 1 of 2: ", "reads 2 of 2: ", "has read tags"));
}

TEST_F(ExportProgress, OfAnExportWithoutTagsOrCancelledTellsOfNone) {
  WithoutUi();
  Interactive();
  EXPECT_THAT(progress_.told, ElementsAre("waits: the quote builder is running", "has waited",
                                          "waits: the quote builder is running", "has waited"));
}

// A host's message that comes during the wait asks for an export of its own, which is refused.
TEST_F(ExportProgress, IsThatOfTheOuterExportThoughANestedOneIsAskedFor) {
  class NestingPump : public MessagePump {
   public:
    std::function<void()> nested;
    int refused = 0;
    void RunPending() override {
      try {
        nested();
      } catch (const AutomationError&) {
        ++refused;
      }
    }
    void Sleep(std::chrono::milliseconds) override {}
  } pump;
  export_.platform.messagePump = &pump;
  pump.nested = [&] { WithoutUi(); };
  SelectOnRun(kThreeTags);
  WithoutUi();
  EXPECT_EQ(pump.refused, 1);
  EXPECT_THAT(progress_.told, ElementsAre("waits: the quote builder is running", "has waited", "reads 1 of 3: RTU-1",
                                          "reads 2 of 3: RTU-2", "reads 3 of 3: RTU-3", "has read tags"));
}

}  // namespace
}  // namespace parvex::test
