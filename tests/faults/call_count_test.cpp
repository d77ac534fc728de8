#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <string>

#include "formats/zip/zip_writer.h"
#include "hybris/export_driver.h"
#include "tests/support/fake_platform.h"

// What an export asks of the system, counted call by call as a debugger sees them. A folder that is read again for each
// tag, or a file that is looked at for each section, makes a large export slow long before it makes a small one so.

namespace parvex::test {
namespace {

constexpr std::size_t kTags = 200;
constexpr const char* kOutput = "C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini";
constexpr const char* kBlobs = "C:\\Korvane\\TQ5-VX\\Blobs\\";

using Calls = std::map<long, std::size_t>;  // by the system's number of the call

// The calls that `work` makes in a process of its own; none where no program may watch another.
Calls CallsOf(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
      raise(SIGSTOP);
      work();
    }
    _exit(0);
  }
  Calls calls;
  int status = 0;
  waitpid(child, &status, 0);
  while (WIFSTOPPED(status)) {
    __ptrace_syscall_info info{};
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    if (WSTOPSIG(status) == (SIGTRAP | 0x80) && ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
        info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      ++calls[static_cast<long>(info.entry.nr)];
    }
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    waitpid(child, &status, 0);
  }
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  return calls;
}

std::size_t Sum(const Calls& calls) {
  std::size_t sum = 0;
  for (const auto& [number, count] : calls) {
    sum += count;
  }
  return sum;
}

class CallsOfAnExport : public testing::Test {
 protected:
  // Tags whose blobs have one entry besides the tag; `further` names it.
  void Select(const std::function<std::string(const std::string& number)>& further) {
    std::string selection = "[Header]\r\nAction=OK\r\n";
    for (std::size_t i = 1; i <= kTags; ++i) {
      const std::string number = std::to_string(i);
      const std::string blob = kBlobs + ("tag" + number + ".blb");
      selection += "[PartNumber" + number + "]\r\nPartNumber=38AUZ" + number + "\r\nPDSG=38AQ1\r\nFileName=" + blob +
                   "\r\n[Accessory" + number + "]\r\nPartNumber:1=CRACC\r\n";
      ZipWriter archive;
      archive.Add("Tag", "<Tag><Product TagVersion=\"3.9N\" lTagID=\"" + number + "\"/></Tag>\r\n", true);
      archive.Add(further(number), "further", true);
      machine_.Write(blob, archive.Finish());
    }
    machine_.Write(kOutput, selection);
  }

  Calls Export() {
    return CallsOf([this] { BuildHybrisTagDocument(machine_.platform, kOutput, ""); });
  }

  void ExpectFewFoldersRead(const std::function<std::string(const std::string& number)>& further) {
    Select(further);
    const Calls calls = Export();
    if (calls.empty()) {
      GTEST_SKIP() << "no program may watch another here";
    }
    EXPECT_LE(calls.at(SYS_getdents64), kTags / 4);  // some, and more when the clock goes on between two tags
  }

  FakeMachine machine_;
};

TEST_F(CallsOfAnExport, AreSixteenATagAtMost) {
  Select([](const std::string& number) { return "Unit" + number + ".xml"; });
  const Calls first = Export();
  if (first.empty()) {
    GTEST_SKIP() << "no program may watch another here";
  }
  EXPECT_TRUE(machine_.Exists(std::string(kBlobs) + "Unit200.xml"));
  EXPECT_LE(Sum(first), 16 * kTags);
  EXPECT_LE(Sum(Export()), 16 * kTags) << "when the entries are there already";
}

// What an export writes is handed over, and made anew when it is lost.
TEST_F(CallsOfAnExport, ForceNothingToTheDisk) {
  Select([](const std::string& number) { return "Unit" + number + ".xml"; });
  const Calls calls = Export();
  if (calls.empty()) {
    GTEST_SKIP() << "no program may watch another here";
  }
  EXPECT_EQ(calls.count(SYS_fsync) + calls.count(SYS_fdatasync), 0u);
}

TEST_F(CallsOfAnExport, ReadTheFolderOfTheBlobsNoMoreThanAFewTimes) {
  ExpectFewFoldersRead([](const std::string& number) { return "Unit" + number + ".xml"; });
}

TEST_F(CallsOfAnExport, ReadNoFolderForEachTagWhenEachMakesAFolderOfItsOwn) {
  ExpectFewFoldersRead([](const std::string& number) { return "Unit" + number + "/data.xml"; });
  EXPECT_TRUE(machine_.Exists(std::string(kBlobs) + "Unit200\\data.xml") || IsSkipped());
}

TEST_F(CallsOfAnExport, ReadNoFolderForEachTagWhenAllWriteIntoOneThatIsNew) {
  ExpectFewFoldersRead([](const std::string& number) { return "Units/" + number + ".xml"; });
}

}  // namespace
}  // namespace parvex::test
