#include <string>
#include <string_view>

#include "formats/zip/zip_writer.h"
#include "fuzz/fuzz_input.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_standin/projects/project_store.h"
#include "tests/support/fake_platform.h"

// A whole export. The input, each part up to a NUL: the project's name, what the quote builder leaves in QBOutput.ini,
// the stored text of the blob C:\a.blb, and the bytes of the blob C:\b.blb.

namespace parvex {
namespace {

using fuzz::Require;

constexpr const char* kTemp = "C:\\Korvane\\TQ5-VX\\Temp\\";
constexpr const char* kProjects = "C:\\Korvane\\TQ5-VX\\Projects\\";

const std::string& ProjectDatabase() {
  static const std::string bytes = [] {
    standin::Unit unit;
    unit.tagId = 71;
    unit.keys = {{"PartNumber", "A"}, {"PDSG", "RTU47"}, {"MarkFor", "RTU-1"}};
    return standin::MakeProjectDatabase({}, {unit});
  }();
  return bytes;
}

std::string Archive(std::string_view text) {
  ZipWriter writer;
  writer.Add("Tag", text, true);
  return writer.Finish();
}

std::string ExportCommand(std::string_view projectName) {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
      "<ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
  command.First("//ProjectName").SetText(projectName);
  return command.Xml();
}

void Export(fuzz::Input& input) {
  test::FakeMachine machine;
  const std::string command = ExportCommand(input.TakeUpTo('\0'));
  const std::string output(input.TakeUpTo('\0'));
  machine.Write("C:\\a.blb", Archive(input.TakeUpTo('\0')));
  machine.Write("C:\\b.blb", input.TakeRest());
  machine.Write(std::string(kProjects) + "Tower\\project.mdb", ProjectDatabase());
  machine.processes.work = [&](const std::string&) { machine.Write(std::string(kTemp) + "QBOutput.ini", output); };

  LegacyORLAPull pull(machine.platform);
  const std::string reply = pull.PullNGORLA(command);
  Require(reply.empty() || !xml::Document::Parse(reply).IsEmpty(), "a reply parses");
  Require(pull.PullNGORLA(command).size() > 0 || reply.empty(), "an export can be done again");
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  fuzz::MayBeRefused([&] { Export(input); });
  return 0;
}
