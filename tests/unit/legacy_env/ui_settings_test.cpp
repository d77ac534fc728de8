#include "legacy_env/ui_settings.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

constexpr const char* kKeysFile = "C:\\Korvane\\TQ5-VX\\Bin\\UIKeys.txt";

class UiSettings : public testing::Test {
 protected:
  std::string Get(const std::string& content, std::string_view key) {
    machine_.Write(kKeysFile, content);
    return getUIValue(machine_.platform, key);
  }
  std::string AfterSet(const std::string& content, std::string_view value) {
    machine_.Write(kKeysFile, content);
    setUIValue(machine_.platform, value);
    return machine_.Read(kKeysFile);
  }
  void ExpectErrorsOfBoth(std::uint32_t number, const std::string& description) {
    ExpectError(number, "KDQU470.getUIValue", description, [&] { getUIValue(machine_.platform, "ToolBarActive"); });
    ExpectError(number, "KDQU470.setUIValue", description, [&] { setUIValue(machine_.platform, "0"); });
  }

  test::FakeMachine machine_;

 private:
  template <typename Operation>
  void ExpectError(std::uint32_t number, const char* source, const std::string& description, Operation operation) {
    try {
      operation();
      ADD_FAILURE() << "no error from " << source;
    } catch (const AutomationError& error) {
      EXPECT_EQ(number, error.Number());
      EXPECT_EQ(source, error.Source());
      EXPECT_NE(error.Description().find(description), std::string::npos) << error.Description();
    }
  }
};

TEST_F(UiSettings, AreErrorsWithTheirOwnSourcesWithoutBinPath) {
  machine_.SetBinPath("");
  ExpectErrorsOfBoth(0x80040200u, "Unable to read BinPath");
}

TEST_F(UiSettings, AreFileNotFoundErrorsWithoutTheFile) { ExpectErrorsOfBoth(0x800A0035u, "UIKeys.txt"); }

TEST_F(UiSettings, AreFoundBesideABinPathWithoutFinalBackslash) {
  machine_.SetBinPath("C:\\Korvane\\TQ5-VX\\Bin");
  EXPECT_EQ(Get("ToolBarActive=1\r\n", "ToolBarActive"), "1");
}

TEST_F(UiSettings, AValueIsWhatFollowsTheFirstEqualsSign) {
  EXPECT_EQ(Get("Other=0\r\nKey=a=b = c \r\n", "Key"), "a=b = c ");
  EXPECT_EQ(Get("Key=\r\n", "Key"), "");
}

TEST_F(UiSettings, TheFirstLineThatBeginsWithTheKeyAndHoldsAnEqualsSignCounts) {
  EXPECT_EQ(Get("Key\r\nKey=2\r\nKey=3\r\n", "Key"), "2");
  EXPECT_EQ(Get("KeyAndMore=1\r\nKey=2\r\n", "Key"), "1");
  EXPECT_EQ(Get("Key and =1", "Key"), "1");
}

TEST_F(UiSettings, AKeyInsideALineOrInAnotherLetterCaseIsNotFound) {
  EXPECT_EQ(Get("MyKey=1\r\n Key=1\r\n", "Key"), "");
  EXPECT_EQ(Get("KEY=1\r\n", "Key"), "");
  EXPECT_EQ(Get("", "Key"), "");
}

TEST_F(UiSettings, ReadLinesThatEndInAnyLineBreakOrNone) {
  for (const char* content : {"A=1\r\nB=2\r\nC=3", "A=1\nB=2\nC=3\n", "A=1\rB=2\rC=3\r"}) {
    EXPECT_EQ(Get(content, "B"), "2");
    EXPECT_EQ(Get(content, "C"), "3");
  }
}

TEST_F(UiSettings, AreTextOfTheCodePage) {
  EXPECT_EQ(Get("K\xFChl=Gr\xF6\x80"
                "e\r\n",
                "Kühl"),
            "Grö€e");
}

TEST_F(UiSettings, SetGivesTheTwoSwitchesTheValueAndTheSplitterItsFixedText) {
  EXPECT_EQ(
      AfterSet("ToolBarActive=0\r\nTreeViewActive=1=2\r\nSplitterPosition=<ColSplitter Index=\"1\" WidthP=\"5\">\r\n",
               "-1"),
      "ToolBarActive=-1\r\nTreeViewActive=-1\r\nSplitterPosition=<ColSplitter Index=\"0\"WidthP=\"22819\">\r\n");
}

TEST_F(UiSettings, SetWritesTheSplitterTextWithoutBlankWhateverStoodThere) {
  for (const char* line : {"SplitterPosition=", "SplitterPosition=17", "SplitterPositions = x"}) {
    EXPECT_EQ(AfterSet(line, "0"), "SplitterPosition=<ColSplitter Index=\"0\"WidthP=\"22819\">\r\n") << line;
  }
}

TEST_F(UiSettings, SetKeepsAllOtherLinesAndTheirOrder) {
  const std::string others =
      "; comment\r\n\r\nOther=1\r\nToolBarActive\r\nTreeViewActive\r\nSplitterPosition\r\n ToolBarActive=1\r\n"
      "toolbaractive=1\r\nMyTreeViewActive=1\r\nsplitterposition=1\r\n";
  EXPECT_EQ(others, AfterSet(others, "9"));
}

TEST_F(UiSettings, SetRewritesEveryLineThatBeginsWithAKey) {
  EXPECT_EQ(AfterSet("ToolBarActive=1\r\nToolBarActiveToo =2\r\nToolBarActive=3\r\n", "9"),
            "ToolBarActive=9\r\nToolBarActiveToo =9\r\nToolBarActive=9\r\n");
}

TEST_F(UiSettings, SetEndsEachLineWithALineBreak) {
  EXPECT_EQ(AfterSet("A=1\nB=2", "9"), "A=1\r\nB=2\r\n");
  EXPECT_EQ(AfterSet("", "9"), "");
}

TEST_F(UiSettings, SetKeepsEveryByteOfTheCodePage) {
  std::string bytes;
  for (int c = 1; c < 256; ++c) {
    if (c != '\r' && c != '\n') {
      bytes.push_back(static_cast<char>(c));
    }
  }
  EXPECT_EQ(AfterSet("X" + bytes, "9"), "X" + bytes + "\r\n");
  EXPECT_EQ(AfterSet("ToolBarActive=1", "ü"), "ToolBarActive=\xFC\r\n");
}

std::string Lines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "ToolBarActive=" + std::to_string(i) + "\r\n";
  }
  return text;
}

TEST_F(UiSettings, SetHandles101Lines) {
  std::string expected;
  for (int i = 0; i < 101; ++i) {
    expected += "ToolBarActive=9\r\n";
  }
  EXPECT_EQ(AfterSet(Lines(101), "9"), expected);
}

TEST_F(UiSettings, SetRefusesA102ndLineAndLeavesTheFileAsItIs) {
  EXPECT_THROW(AfterSet(Lines(102), "9"), AutomationError);
  EXPECT_EQ(Lines(102), machine_.Read(kKeysFile));
  try {
    setUIValue(machine_.platform, "9");
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800A0009u);
    EXPECT_EQ(error.Source(), "KDQU470.setUIValue");
  }
}

TEST_F(UiSettings, GetReadsBeyondLine101) { EXPECT_EQ(Get(Lines(150) + "Last=x", "Last"), "x"); }

}  // namespace
}  // namespace parvex
