#include "adapters/posix/machine.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

class NamedObject : public automation::Object {
 public:
  explicit NamedObject(std::string name) : name_(std::move(name)) {}
  std::string Name() const override { return name_; }
  automation::Value Get(std::string_view) override { return {}; }
  void Put(std::string_view, const automation::Value&) override {}
  automation::Value Call(std::string_view, std::span<automation::Argument>) override { return {}; }

 private:
  std::string name_;
};

TEST(Machine, NeedsItsFolder) {
  test::TemporaryFolder folder;
  EXPECT_EQ(test::RaisedBy([&] { Machine machine(folder.Path() / "no"); }), 76);
}

TEST(Machine, OfAnEmptyFolderIsAMachineThatLacksEverything) {
  test::TemporaryFolder folder;
  Machine machine(folder.Path());
  EXPECT_EQ(machine.Root(), folder.Path());
  EXPECT_FALSE(machine.GetFiles().IsFolder("C:\\"));
  EXPECT_EQ(machine.GetRegistry().LocalMachineString("SOFTWARE\\Korvane\\KDQ47", "BinPath"), std::nullopt);
  EXPECT_EQ(machine.GetPrivateProfile().Section("s", "C:\\a.ini")->ReadString("k", "fallback", 255), "fallback");
  EXPECT_EQ(test::RaisedBy([&] { machine.GetProcesses().Start("C:\\a.exe", 1); }), 53);
  EXPECT_NE(test::RaisedBy([&] { machine.GetProjectDatabases().Open("C:\\a.mdb"); }), 0);
  EXPECT_EQ(test::RaisedBy([&] { machine.GetAutomation().Create("KDQU470.CKDBuilder"); }), 429);
}

TEST(Machine, CreatesTheClassesThatAreRegistered) {
  test::TemporaryFolder folder;
  Machine machine(folder.Path());
  machine.RegisterClass("KDQU470.CKDBuilder", [] { return std::make_shared<NamedObject>("first"); });
  EXPECT_EQ(machine.GetAutomation().Create("KDQU470.CKDBuilder")->Name(), "first");
  EXPECT_EQ(machine.GetAutomation().Create("kdqu470.ckdbuilder")->Name(), "first");
  EXPECT_NE(machine.GetAutomation().Create("KDQU470.CKDBuilder"), machine.GetAutomation().Create("KDQU470.CKDBuilder"));
  machine.RegisterClass("kdqu470.CKDBUILDER", [] { return std::make_shared<NamedObject>("second"); });
  EXPECT_EQ(machine.GetAutomation().Create("KDQU470.CKDBuilder")->Name(), "second");
  EXPECT_EQ(test::RaisedBy([&] { machine.GetAutomation().Create("KDQU470.CKDBuilder2"); }), 429);
}

}  // namespace
}  // namespace parvex::posix
