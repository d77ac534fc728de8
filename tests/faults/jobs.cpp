#include "tests/faults/jobs.h"

#include <filesystem>
#include <new>

#include "codec/bin_encoder.h"
#include "formats/jet/writer.h"
#include "formats/zip/zip_writer.h"
#include "interface/legacy_orla_pull.h"
#include "legacy_env/thread_state.h"
#include "legacy_env/ui_settings.h"
#include "seams/automation_error.h"
#include "tests/faults/fault_injection.h"
#include "tests/support/command_texts.h"

namespace parvex::test {
namespace {

constexpr const char* kOptions =
    "<Options><Tool ID=\"SOV02\"><Option><Name>cmbLanguage</Name><Value>English</Value></Option></Tool></Options>";
constexpr const char* kFolder = "C:\\Korvane\\TQ5-VX\\Projects\\Tower";
constexpr const char* kTemp = "C:\\Korvane\\TQ5-VX\\Temp\\";
constexpr const char* kUnitBlob = "C:\\Korvane\\TQ5-VX\\Projects\\Tower\\unit.blb";

std::string TemporaryFile(const std::string& name) { return kTemp + name; }
std::string ProgramFile(const std::string& name) { return FakeMachine::kBinPath + name; }

void Answer(FakeMachine& machine, const std::string& text) { machine.routers.answers.push_back({true, text}); }

std::string Pull(FakeMachine& machine, const std::string& name, const std::string& parameters) {
  const xml::Document reply = LegacyORLAPull(machine.platform).Pull(Command(name, parameters));
  return reply ? reply.Xml() : "";
}

void PullNgorla(FakeMachine& machine, const std::string& command) {
  LegacyORLAPull(machine.platform).PullNGORLA(command);
}

// --- A whole export ---

const std::string& Blob() {
  static const std::string bytes = [] {
    ZipWriter archive;
    archive.Add("Tag", "<Unit><Product TagVersion=\"4.70\" lTagID=\"7\"/><SapData><x/></SapData></Unit>\r\n", true);
    archive.Add("drawing/plan.dat", std::string(500, 'd'), true);
    return archive.Finish();
  }();
  return bytes;
}

const std::string& ProjectDatabase() {
  using Type = standin::JetColumn::Type;
  static const std::string bytes = standin::MakeJetDatabase(std::vector<standin::JetTable>{
      {"TagIndex", {{"sAPP"}, {"sAppVer"}, {"sTagName"}, {"lTagId", Type::Long}}, {{"RTU", "47", "RTU-1", "71"}}},
      {"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, {{"KDQ47", "CompanyName", "old"}}}});
  return bytes;
}

void Export(FakeMachine& machine) { ExportedText(machine, nullptr); }

// --- Changes ---

void PrepareProject(FakeMachine& machine) {
  machine.Write(std::string(kFolder) + "\\Project.mdb", ProjectDatabase());
  Answer(machine, "<STORED/>");
  Answer(machine, "<PROJECT><NAME>Tower</NAME><FOLDER>" + std::string(kFolder) + "</FOLDER></PROJECT>");
}

std::string ChangeProject(FakeMachine& machine) {
  return Pull(machine, "setProjectProperties",
              Parameter("projectName", "Tower") + Parameter("CompanyName", "new") + Parameter("EmailID", "e@example") +
                  Parameter("ContactNumber", "1"));
}

void PrepareTags(FakeMachine& machine) {
  machine.Write(ProgramFile("TagUpdateInfo.xml"), "<TagUpdateInfo><Table Name=\"TagData\"/></TagUpdateInfo>");
  Answer(machine, "<LIST><TAG><NAME>Old</NAME><PDSG>G</PDSG><TAGVERSION>1</TAGVERSION></TAG></LIST>");
  Answer(machine, "");
}

std::string RenameTagOf(FakeMachine& machine) {
  return Pull(machine, "renameTag",
              Parameter("projectName", "P") + Parameter("pdsg", "G") + Parameter("tagName", "Old") +
                  Parameter("newTagName", "New"));
}

void PrepareReturn(FakeMachine& machine) {
  machine.Write(TemporaryFile("QPblob.tmp"), "the blob of an earlier call");
  machine.Write(TemporaryFile("input.ini"), "[Header]\r\nAction=old\r\n");
}

void ReturnTag(FakeMachine& machine) {
  PullNgorla(
      machine,
      "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER><PROJECT><TAGS><TAG><ATTRIBUTES_LIST><PDSG>38A</PDSG>"
      "<BLOB>TWFuAP8=</BLOB></ATTRIBUTES_LIST><BASEUNITS/></TAG></TAGS></PROJECT></PARAMETER></PARAMETERS></COMMAND>");
}

// Trees that are moved between documents, and texts that are refused.
std::string ChangeMarkup(FakeMachine&) {
  using xml::Document;
  const Document from =
      Document::Parse("<a xmlns:p='urn:a-name-that-is-long-enough'><p:b p:c='1'>x</p:b><![CDATA[y]]></a>");
  const Document to = Document::Load("<?xml version='1.0' encoding='windows-1252'?><to/>");
  to.Append(from.Root().FirstChild());
  to.Root().FirstChild().Append(from.Root().Clone());
  to.Append(to.CreateElement("new")).SetText("a text that is longer than a short one");
  std::string told = to.Bytes() + Document::Parse("<!DOCTYPE a [<!ENTITY e 'x'>]><a b='1'>&e;</a>").Xml();
  told += to.First("//new[string-length(.) > 1]").Text();
  for (const char* malformed : {"<a", "<a>&an-entity-that-nobody-has-declared;</a>", "<p:a/>", "x",
                                "<!DOCTYPE a [<!ENTITY % p 'x'>%p;]><a/>", "<a b='1' b='2'/>"}) {
    told += Document::Parse(malformed).ParseError();
  }
  return told;
}

void Nothing(FakeMachine&) {}

}  // namespace

void PrepareExport(FakeMachine& machine) {
  machine.Write(TemporaryFile("QBOutput.ini"), "[Header]\r\nAction=cancel\r\n");
  machine.Write(kUnitBlob, Blob());
  machine.Write(std::string(kFolder) + "\\project.mdb", ProjectDatabase());
  machine.processes.work = [&machine](const std::string&) {
    const FaultsSuspended otherProgram;
    machine.Write(
        TemporaryFile("QBOutput.ini"),
        "[Header]\r\nAction=ok\r\n[PartNumber1]\r\nPartNumber=A\r\nPDSG=RTU47\r\nMarkFor=RTU-1\r\nFileName=" +
            std::string(kUnitBlob) +
            "\r\n[Accessory1]\r\nPartNumber:1=x\r\nQuantity:1=2\r\n[Warranty1]\r\nName:1=w\r\nPartNumber:1=y\r\n");
  };
}

std::string ExportedText(FakeMachine& machine, recording::Recorder* recorder) {
  ForgetThisThread();
  return LegacyORLAPull(machine.platform, recorder)
      .PullNGORLA(
          "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
          "<ProjectName>Tower</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
}

const std::vector<Job>& WritingJobs() {
  static const std::vector<Job> jobs = {
      {"Export", PrepareExport, Export},
      {"ProjectProperties", PrepareProject, ChangeProject},
      {"ReturnOfATag", PrepareReturn, ReturnTag},
      {"Options", [](FakeMachine& machine) { machine.Write(ProgramFile("Options.xml"), kOptions); },
       [](FakeMachine& machine) { Pull(machine, "setOptions", Parameter("cmbLanguage", "Deutsch")); }},
      {"UiSettings",
       [](FakeMachine& machine) { machine.Write(ProgramFile("UIKeys.txt"), "ToolBarActive=0\r\nOther=1\r\n"); },
       [](FakeMachine& machine) { setUIValue(machine.platform, "-1"); }},
      {"ProfileValue", [](FakeMachine& machine) { machine.Write("C:\\a.ini", "[S]\r\nk=old\r\n"); },
       [](FakeMachine& machine) {
         machine.platform.privateProfile->Section("S", "C:\\a.ini")->WriteString("k", "new");
       }},
      {"NewProfile", Nothing,
       [](FakeMachine& machine) {
         machine.platform.privateProfile->Section("S", "C:\\new.ini")->WriteString("k", "v");
       }},
      {"DecodedFile", Nothing,
       [](FakeMachine& machine) {
         cBinEncoder(*machine.platform.codePage, *machine.platform.files).DecodeToFile("TWFuAP8=", "C:\\decoded.bin");
       }},
      {"FolderAndFile", Nothing,
       [](FakeMachine& machine) {
         machine.platform.files->CreateFolder("C:\\one\\two");
         machine.platform.files->Replace("C:\\one\\two\\file", std::string(20'000, 'x'));
         machine.platform.files->Remove("C:\\one\\two\\file");
       }},
  };
  return jobs;
}

const std::vector<AnsweringJob>& AllocatingJobs() {
  static const std::vector<AnsweringJob> jobs = {
      {"Export", PrepareExport, [](FakeMachine& machine) { return ExportedText(machine, nullptr); }},
      {"ProjectProperties", PrepareProject, ChangeProject},
      {"TagRenaming", PrepareTags, RenameTagOf},
      {"Markup", Nothing, ChangeMarkup},
  };
  return jobs;
}

AllowedFiles::Contents AllowedFiles::ContentsOf(const FakeMachine& machine) {
  Contents contents;
  const std::filesystem::path& root = machine.folder.Path();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) {
      contents[std::filesystem::relative(entry.path(), root).string()] = ReadHostFile(entry.path());
    }
  }
  return contents;
}

void AllowedFiles::Learn(const FakeMachine& machine) { learned_.push_back(ContentsOf(machine)); }

std::string AllowedFiles::Violations(const FakeMachine& machine, bool killed) const {
  const Contents now = ContentsOf(machine);
  std::set<std::string> paths;
  for (const Contents& contents : learned_) {
    for (const auto& [path, bytes] : contents) {
      paths.insert(path);
    }
  }
  std::string violations;
  for (const auto& [path, bytes] : now) {
    // A lock's file that could not be removed is nobody's lock.
    if (path.ends_with("/~parvex-lock.tmp")) {
      continue;
    }
    const bool unnamed = path.find("~parvex-") != std::string::npos;
    if (unnamed ? !killed : paths.count(path) == 0) {
      violations += path + " was left behind\n";
    }
  }
  for (const std::string& path : paths) {
    const auto in = [&path](const Contents& contents) {
      const auto found = contents.find(path);
      return found == contents.end() ? std::nullopt : std::optional<std::string>(found->second);
    };
    bool known = false;
    for (const Contents& contents : learned_) {
      known = known || (path.find("~parvex-") == std::string::npos && in(contents) == in(now));
    }
    if (!known && path.find("~parvex-") == std::string::npos) {
      violations += path + (in(now) ? " holds what it never held\n" : " is gone\n");
    }
  }
  return violations;
}

std::string OutcomeOf(const std::function<void()>& work) {
  try {
    work();
    return "";
  } catch (const AutomationError& error) {
    const FaultsSuspended telling;
    return error.Description();
  } catch (const std::bad_alloc&) {
    const FaultsSuspended telling;
    return "out of memory";
  }
}

}  // namespace parvex::test
