#include <string>
#include <string_view>

#include "fuzz/entry_points.h"
#include "fuzz/fuzz_input.h"
#include "interface/legacy_orla_pull.h"
#include "journal/replay_routers.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/standin.h"
#include "tests/support/fake_platform.h"

// Commands to one instance, on a machine of which nothing is left afterwards. The router answers from a journal;
// builder and report server are the substitute's. The input: the journal, a NUL, then commands, each up to a NUL.

namespace parvex {
namespace {

constexpr const char* kBin = "C:\\Korvane\\TQ5-VX\\Bin\\";
constexpr const char* kProject = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\";

const std::string& ProjectDatabase() {
  static const std::string bytes = standin::MakeProjectDatabase({{"KDQ47", "CompanyName", "Lindqvist"}}, {});
  return bytes;
}

struct Machine {
  test::FakeMachine fake;
  standin::Standin substitute{{*fake.platform.registry, *fake.platform.files, *fake.platform.projectDatabases,
                               *fake.platform.codePage, standin::StandinSettings()}};

  Machine() {
    const std::string bin = kBin;
    fake.Write(
        bin + "Options.xml",
        "<Tools><Tool ID=\"SOV02\"><Option><Name>cmbLanguage</Name><Value>English</Value></Option></Tool></Tools>");
    fake.Write(bin + "Tools.xml", "<Tools><Tool><Pdsg>RTU47</Pdsg><Version>4.71.0</Version></Tool></Tools>");
    fake.Write(bin + "TagUpdateInfo.xml",
               "<TagUpdateInfo><Table Name=\"TagIndex\"><Column>sTagName</Column></Table></TagUpdateInfo>");
    fake.Write(std::string(kProject) + "project.mdb", ProjectDatabase());
    for (const standin::LateBoundClass& offered : substitute.Classes()) {
      fake.machine.RegisterClass(offered.programmaticId, offered.create);
    }
    fake.processes.work = [this](const std::string&) {
      fake.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini",
                 "[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=A\r\n");
    };
  }

  Platform With(MessageRouters& routers) {
    Platform platform = fake.platform;
    platform.messageRouters = &routers;
    platform.automation = &fake.machine.GetAutomation();
    return platform;
  }
};

void SendBoth(LegacyORLAPull& pull, std::string_view command) {
  fuzz::MayBeRefused([&] { fuzz::SendText(pull, command); });
  fuzz::MayBeRefused([&] { fuzz::SendDocument(pull, command); });
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  fuzz::MayBeRefused([&] {
    journal::ReplayRouters routers(input.TakeUpTo('\0'), "journal");
    Machine machine;
    LegacyORLAPull pull(machine.With(routers));
    for (int sent = 0; sent < 8 && !input.Empty(); ++sent) {
      SendBoth(pull, input.TakeUpTo('\0'));
    }
  });
  return 0;
}
