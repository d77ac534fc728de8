#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/entry_points.h"
#include "fuzz/fuzz_input.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_standin/sample/sample_machine.h"
#include "legacy_standin/standin.h"
#include "legacy_standin/workflow/workflow.h"
#include "tests/support/fake_platform.h"

// Commands over one sample machine, each of which finds what those before it left: router, builder, report server and
// workflow program are the substitute's. The input is a row of parts, each a byte and texts that end with a NUL: "P" or
// "N" with a command for one entry point; "F" with a file's path below the machine's drive and its bytes, which are
// laid there; "L" for a new instance.

namespace parvex {
namespace {

namespace fs = std::filesystem;

const fs::path& SampleMachine() {
  static const test::TemporaryFolder made;
  static const fs::path sample = [] {
    const fs::path program = made.Path() / "program";
    test::WriteHostFile(program, "");
    standin::CreateSampleMachine(made.Path() / "machine", program);
    return made.Path() / "machine";
  }();
  return sample;
}

// A path below drive C whose components are ordinary names; empty for any other.
fs::path PlaceOf(std::string_view path) {
  fs::path place;
  for (const fs::path& component : fs::path(path)) {
    const std::string name = component.string();
    if (name.empty() || name.front() == '.' || name.size() > 100 || name.find('/') != std::string::npos) {
      return {};
    }
    place /= component;
  }
  return place;
}

struct Machine {
  test::FakeMachine fake;
  standin::StandinSettings settings;
  standin::Standin substitute;
  Platform platform;

  Machine()
      : settings((Fill(), standin::ReadStandinSettings(fake.folder.Path()))),
        substitute({*fake.platform.registry, *fake.platform.files, *fake.platform.projectDatabases,
                    *fake.platform.codePage, settings}),
        platform(fake.platform) {
    for (const standin::LateBoundClass& offered : substitute.Classes()) {
      fake.machine.RegisterClass(offered.programmaticId, offered.create);
    }
    platform.messageRouters = &substitute.Routers();
    platform.automation = &fake.machine.GetAutomation();
    fake.processes.work = [this](const std::string& line) { RunProgram(line); };
  }

  void Lay(std::string_view path, std::string_view bytes) {
    const fs::path place = PlaceOf(path);
    const fs::path target = fake.folder.Path() / "drive_c" / place;
    std::error_code failed;
    if (!place.empty() && (fs::create_directories(target.parent_path(), failed), !failed) &&
        !fs::is_directory(target, failed)) {
      test::WriteHostFile(target, bytes);
    }
  }

 private:
  void Fill() {
    fs::copy(SampleMachine() / "drive_c", fake.folder.Path() / "drive_c",
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  }

  void RunProgram(const std::string& line) {
    const std::vector<std::string> arguments = {line.substr(std::min(line.find(" /") + 1, line.size()))};
    const standin::WorkflowResult result =
        standin::RunWorkflow({*fake.platform.files, *fake.platform.privateProfile, *fake.platform.codePage},
                             test::FakeMachine::kRoot, arguments, settings.workflow);
    fake.processes.exitCode = static_cast<std::uint32_t>(result.exitCode);
  }
};

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  Machine machine;
  auto pull = std::make_unique<LegacyORLAPull>(machine.platform);
  for (int done = 0; done < 12 && !input.Empty(); ++done) {
    switch (input.TakeByte()) {
      case 'P':
        fuzz::MayBeRefused([&] { fuzz::SendDocument(*pull, input.TakeUpTo('\0')); });
        break;
      case 'F': {
        const std::string_view path = input.TakeUpTo('\0');
        machine.Lay(path, input.TakeUpTo('\0'));
        break;
      }
      case 'L':
        pull = std::make_unique<LegacyORLAPull>(machine.platform);
        break;
      default:
        fuzz::MayBeRefused([&] { fuzz::SendText(*pull, input.TakeUpTo('\0')); });
    }
  }
  return 0;
}
