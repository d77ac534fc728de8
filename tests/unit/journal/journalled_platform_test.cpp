#include "journal/journalled_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::journal {
namespace {

// A text stream that counts how often it was flushed.
class CountingStream : public std::ostringstream {
 public:
  CountingStream() { std::ostream::rdbuf(&buffer_); }
  int Flushes() const { return buffer_.flushes; }
  std::string Text() const { return buffer_.str(); }

 private:
  struct Buffer : std::stringbuf {
    int flushes = 0;
    int sync() override {
      ++flushes;
      return 0;
    }
  };
  Buffer buffer_;
};

class Journalled : public testing::Test {
 protected:
  std::string Lines() const { return out_.Text(); }

  CountingStream out_;
  test::FakeMachine machine_;
  JournalledPlatform journalled_{machine_.platform, out_};
  const Platform platform_ = journalled_.Platform();
};

TEST_F(Journalled, RouterRequestsWithTheirAnswers) {
  machine_.routers.answers = {{true, "<A x=\"1\"/>"}, {false, "no"}};
  const auto router = platform_.messageRouters->Create();
  std::string response;
  EXPECT_TRUE(router->SendRequestMessage("<C>\xC3\xBC\n</C>", response));
  EXPECT_EQ(response, "<A x=\"1\"/>");
  EXPECT_FALSE(router->SendRequestMessage("second", response));
  EXPECT_EQ(response, "no");
  EXPECT_EQ(
      Lines(),
      "{\"kind\":\"router\",\"request\":\"<C>\xC3\xBC\\n</C>\",\"answer\":\"<A x=\\\"1\\\"/>\",\"success\":true}\n"
      "{\"kind\":\"router\",\"request\":\"second\",\"answer\":\"no\",\"success\":false}\n");
  EXPECT_EQ((std::vector<std::string>{"<C>\xC3\xBC\n</C>", "second"}), machine_.routers.requests);
}

TEST_F(Journalled, FailedRouterCalls) {
  machine_.routers.onRequest = [](const std::string&, std::string&) -> bool {
    throw AutomationError(0x800706BAu, "router", "gone \"away\"");
  };
  std::string response;
  EXPECT_THROW(platform_.messageRouters->Create()->SendRequestMessage("r", response), AutomationError);
  EXPECT_EQ(Lines(),
            "{\"kind\":\"router\",\"request\":\"r\",\"answer\":\"\",\"success\":false,\"error\":"
            "{\"number\":\"0x800706BA\",\"source\":\"router\",\"description\":\"gone \\\"away\\\"\"}}\n");
}

TEST_F(Journalled, ARouterThatCannotBeCreatedIsAnErrorOfItsCallerOnly) {
  machine_.routers.missing = true;
  EXPECT_THROW(platform_.messageRouters->Create(), AutomationError);
  EXPECT_EQ(Lines(), "");
}

TEST_F(Journalled, TextsThatAreNotUtf8AreWrittenWithReplacementCharacters) {
  machine_.routers.answers = {{true, "\xFF"}};
  std::string response;
  platform_.messageRouters->Create()->SendRequestMessage("a\xFC", response);
  EXPECT_EQ(response, "\xFF");
  EXPECT_EQ(Lines(),
            "{\"kind\":\"router\",\"request\":\"a\xEF\xBF\xBD\",\"answer\":\"\xEF\xBF\xBD\",\"success\":true}\n");
}

TEST_F(Journalled, EachLineIsFlushed) {
  const auto router = platform_.messageRouters->Create();
  std::string response;
  router->SendRequestMessage("1", response);
  EXPECT_EQ(out_.Flushes(), 1);
  router->SendRequestMessage("2", response);
  EXPECT_EQ(out_.Flushes(), 2);
}

TEST_F(Journalled, ProgramsWhenTheirExitCodeIsKnown) {
  machine_.processes.polls = 1;
  machine_.processes.exitCode = 5;
  const auto process = platform_.processes->Start("C:\\a.exe /x", 6);
  EXPECT_EQ(process->ExitCode(), kStillActive);
  const std::string start = "{\"kind\":\"processStart\",\"command\":\"C:\\\\a.exe /x\",\"windowStyle\":6}\n";
  EXPECT_EQ(Lines(), start);
  EXPECT_EQ(process->ExitCode(), 5u);
  const std::string line =
      start + "{\"kind\":\"process\",\"command\":\"C:\\\\a.exe /x\",\"windowStyle\":6,\"exitCode\":5}\n";
  EXPECT_EQ(line, Lines());
  EXPECT_EQ(process->ExitCode(), 5u);
  EXPECT_EQ(line, Lines()) << "written once";
  ASSERT_EQ(machine_.processes.started.size(), 1u);
  EXPECT_EQ(machine_.processes.started[0].windowStyle, 6);
}

TEST_F(Journalled, ProgramsAreWrittenAndFlushedBeforeTheyStart) {
  struct LookingProcesses : Processes {
    std::function<void()> look;
    std::unique_ptr<Process> Start(std::string_view, int, std::string_view) override {
      look();
      throw MakeRuntimeError(RuntimeError::FileNotFound, "gone");
    }
  } processes;
  int flushes = 0;
  std::string lines;
  processes.look = [&] {
    flushes = out_.Flushes();
    lines = out_.Text();
  };
  Platform outside = machine_.platform;
  outside.processes = &processes;
  JournalledPlatform journalled(outside, out_);
  EXPECT_THROW(journalled.Platform().processes->Start("p", 2), AutomationError);
  EXPECT_EQ(lines, "{\"kind\":\"processStart\",\"command\":\"p\",\"windowStyle\":2}\n");
  EXPECT_EQ(flushes, 1);
}

TEST_F(Journalled, ExitCodesAsTheRunnerReturnsThem) {
  machine_.processes.exitCode = 0xC0000005u;
  platform_.processes->Start("p", 1)->ExitCode();
  EXPECT_NE(Lines().find("\"exitCode\":-1073741819}"), std::string::npos) << Lines();
}

TEST_F(Journalled, AProgramDroppedWhileRunningHasNoExitCode) {
  machine_.processes.polls = 10;
  platform_.processes->Start("p", 1)->ExitCode();
  EXPECT_EQ(Lines(),
            "{\"kind\":\"processStart\",\"command\":\"p\",\"windowStyle\":1}\n"
            "{\"kind\":\"process\",\"command\":\"p\",\"windowStyle\":1,\"exitCode\":null}\n");
}

TEST_F(Journalled, AProgramThatCannotBeStartedHasTheNegativeCodeOfTheRunnerAndTheError) {
  machine_.processes.startError = 53;
  EXPECT_THROW(platform_.processes->Start("p", 6), AutomationError);
  EXPECT_EQ(Lines(),
            "{\"kind\":\"processStart\",\"command\":\"p\",\"windowStyle\":6}\n"
            "{\"kind\":\"process\",\"command\":\"p\",\"windowStyle\":6,\"exitCode\":-2147221451,\"error\":"
            "{\"number\":\"0x800A0035\",\"source\":\"Parvex\",\"description\":\"cannot start p\"}}\n");
}

TEST_F(Journalled, MessageBoxes) {
  platform_.messageBoxes->Show("text", "caption", MessageBoxes::Icon::Stop);
  platform_.messageBoxes->Show("text", kDefaultCaption, MessageBoxes::Icon::None);
  EXPECT_EQ(Lines(),
            "{\"kind\":\"messageBox\",\"text\":\"text\",\"caption\":\"caption\",\"icon\":\"stop\"}\n"
            "{\"kind\":\"messageBox\",\"text\":\"text\",\"caption\":\"Parvex\",\"icon\":\"none\"}\n");
  EXPECT_EQ(machine_.boxes.boxes.size(), 2u);
}

// Shows what the journal holds while the box is open.
class LookingBoxes : public MessageBoxes {
 public:
  explicit LookingBoxes(const CountingStream& out) : out_(out) {}
  std::string linesWhileOpen;
  void Show(std::string_view, std::string_view, Icon) override { linesWhileOpen = out_.Text(); }

 private:
  const CountingStream& out_;
};

TEST_F(Journalled, MessageBoxesBeforeTheyOpen) {
  LookingBoxes boxes(out_);
  Platform outside = machine_.platform;
  outside.messageBoxes = &boxes;
  JournalledPlatform journalled(outside, out_);
  journalled.Platform().messageBoxes->Show("t", "c", MessageBoxes::Icon::None);
  EXPECT_FALSE(boxes.linesWhileOpen.empty());
  EXPECT_EQ(boxes.linesWhileOpen, out_.Text());
}

TEST_F(Journalled, NotesAndWhoTakesThemOutside) {
  struct Kept : Notes {
    std::string text;
    void Take(std::string_view about, std::string_view what) override { text = std::string(about) + "|" + what.data(); }
    void Find(std::string_view what) override { text = what; }
  } kept;
  Platform outside = machine_.platform;
  outside.notes = &kept;
  JournalledPlatform journalled(outside, out_);
  journalled.Platform().notes->Take("C:\\a.xml", "it is odd");
  EXPECT_EQ(Lines(), "{\"kind\":\"note\",\"about\":\"C:\\\\a.xml\",\"text\":\"it is odd\"}\n");
  EXPECT_EQ(kept.text, "C:\\a.xml|it is odd");
  journalled.Platform().notes->Find("it is of another project");
  EXPECT_THAT(Lines(), testing::EndsWith("{\"kind\":\"finding\",\"text\":\"it is of another project\"}\n"));
  EXPECT_EQ(kept.text, "it is of another project");
  platform_.notes->Take("C:\\a.xml", "nobody listens outside");
}

TEST_F(Journalled, NothingElseOfTheMachineChanges) {
  EXPECT_EQ(machine_.platform.files, platform_.files);
  EXPECT_EQ(machine_.platform.registry, platform_.registry);
  EXPECT_EQ(machine_.platform.privateProfile, platform_.privateProfile);
  EXPECT_EQ(machine_.platform.messagePump, platform_.messagePump);
  EXPECT_EQ(machine_.platform.projectDatabases, platform_.projectDatabases);
  EXPECT_EQ(machine_.platform.codePage, platform_.codePage);
}

TEST_F(Journalled, AStreamThatFailsInterruptsNobody) {
  out_.setstate(std::ios::badbit);
  machine_.routers.answers = {{true, "answer"}};
  std::string response;
  EXPECT_TRUE(platform_.messageRouters->Create()->SendRequestMessage("r", response));
  EXPECT_EQ(response, "answer");
}

}  // namespace
}  // namespace parvex::journal
