#include <string>
#include <string_view>

#include "adapters/posix/machine_folder.h"
#include "adapters/posix/registry_file.h"
#include "formats/text/windows_1252.h"
#include "fuzz/fuzz_input.h"
#include "tests/support/fake_platform.h"

// The registry text of a machine folder is read, looked up in either hive, and a value is written behind it. The input:
// a key, the name of a value and a text, each up to a NUL, and the bytes of registry.reg.

namespace parvex {
namespace {

using fuzz::Require;

void LookUp(posix::RegistryFile& registry, const std::string& key, const std::string& name) {
  const auto read = registry.Read(RegistryHive::CurrentUser, key, name);
  Require(read == registry.Read(RegistryHive::CurrentUser, key, name), "a value reads alike twice");
  registry.Read(RegistryHive::LocalMachine, key, name);
  registry.LocalMachineString("SOFTWARE\\Korvane\\KDQ47", "BinPath");
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  const std::string key(input.TakeUpTo('\0'));
  const std::string name(input.TakeUpTo('\0'));
  const std::string text(input.TakeUpTo('\0'));
  const test::TemporaryFolder folder;
  test::WriteHostFile(folder.Path() / "registry.reg", input.TakeRest());
  const posix::MachineFolder machine(folder.Path());
  posix::Windows1252 codePage;
  posix::RegistryFile registry(machine, codePage);
  fuzz::MayBeRefused([&] { LookUp(registry, key, name); });
  fuzz::MayBeRefused([&] {
    constexpr const char* kOwnKey = "Software\\Parvex";
    registry.Write(RegistryHive::CurrentUser, kOwnKey, "Record", text);
    LookUp(registry, key, name);
    registry.Read(RegistryHive::CurrentUser, kOwnKey, "Record");
  });
  return 0;
}
