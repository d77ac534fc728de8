#include "legacy_standin/sample/sample_machine.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "formats/text/new_file_names.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/projects/units.h"
#include "legacy_standin/sample/sample_project.h"
#include "legacy_standin/sample/sample_reports.h"
#include "protocol/command_document.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

namespace fs = std::filesystem;

/// Stands in a machine folder from the first step of its making: what stands beside it may be made anew.
constexpr const char* kMarker = "sample-machine.txt";
constexpr std::string_view kMarkerText =
    "This folder stands for a Windows machine with a substitute legacy application.\n"
    "It was made by \"parvex machine create\", which makes registry.reg, drive_c and commands anew\n"
    "when it is told so again; other files in this folder stay.\n";
constexpr std::array kMadeHere = {"registry.reg", "drive_c", "commands"};

constexpr std::string_view kRegistry =
    "Windows Registry Editor Version 5.00\r\n"
    "\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane]\r\n"
    "\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n"
    "\"BinPath\"=\"C:\\\\Korvane\\\\TQ5-VX\\\\Bin\\\\\"\r\n"
    "\"Version\"=\"4.71\"\r\n"
    "\r\n";

constexpr std::string_view kUiKeys =
    "ToolBarActive=-1\r\n"
    "TreeViewActive=-1\r\n"
    "SplitterPosition=<ColSplitter Index=\"0\" WidthP=\"22819\">\r\n"
    "LastProject=Riverside Clinic\r\n";

constexpr std::string_view kOptions = R"(<?xml version="1.0" encoding="windows-1252"?>
<Tools>
  <Tool ID="SOV01">
    <Option><Name>txtReportFooter</Name><Value>Selections are subject to review</Value></Option>
    <Option><Name>chkShowPrices</Name><Value>1</Value></Option>
    <Option><Name>cmbPaperSize</Name><Value>Letter</Value></Option>
  </Tool>
  <Tool ID="SOV02">
    <Option><Name>cmbLanguage</Name><Value>English</Value></Option>
    <Option><Name>cmbUnitOfMeasure</Name><Value>Imperial</Value></Option>
  </Tool>
</Tools>
)";

/// One tool a product family; the fan coil tool is newer than the unit that was selected with it.
constexpr std::string_view kTools = R"(<?xml version="1.0" encoding="windows-1252"?>
<Tools>
  <Tool><Name>Rooftop units</Name><Pdsg>RTU47</Pdsg><Version>4.71.0</Version></Tool>
  <Tool><Name>Custom air handlers</Name><Pdsg>AHE47</Pdsg><Version>4.71.0</Version></Tool>
  <Tool><Name>Chillers</Name><Pdsg>XRC47</Pdsg><Version>4.71.0</Version></Tool>
  <Tool><Name>Water-source heat pumps</Name><Pdsg>WSH47</Pdsg><Version>4.71.0</Version></Tool>
  <Tool><Name>Fan coils</Name><Pdsg>FCB47</Pdsg><Version>4.72.1</Version></Tool>
  <Tool><Name>Split systems</Name><Pdsg>SD347</Pdsg><Version>4.71.0</Version></Tool>
</Tools>
)";

constexpr std::string_view kTagUpdateInfo = R"(<?xml version="1.0" encoding="windows-1252"?>
<TagUpdateInfo>
  <Table Name="TagData"><Column>sTagName</Column><Column>sDescription</Column></Table>
  <Table Name="TagIndex"><Column>sTagName</Column></Table>
</TagUpdateInfo>
)";

/// What fills a file fills a new one, which then takes the name: nobody finds half a file.
template <typename Fill>
void MakeFile(const fs::path& path, Fill fill) {
  fs::create_directories(path.parent_path());
  const fs::path beside = path.parent_path() / MakeNewFileName();
  try {
    fill(beside);
    fs::rename(beside, path);
  } catch (...) {
    std::error_code ignored;
    fs::remove(beside, ignored);
    throw;
  }
}

void WriteFile(const fs::path& path, std::string_view bytes) {
  MakeFile(path, [&](const fs::path& beside) {
    std::ofstream file(beside, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
      throw MakeRuntimeError(RuntimeError::PathFileAccess, "cannot write " + path.string());
    }
  });
}

/// UTF-16LE with byte order mark, as the registry editor exports it. The text is ASCII.
std::string AsRegistryExport(std::string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char c : text) {
    bytes += {c, '\0'};
  }
  return bytes;
}

void WriteProject(const fs::path& folder, const std::vector<Unit>& units) {
  WriteFile(folder / "units.json", FormatUnits(units));
  WriteFile(folder / "project.mdb", MakeProjectDatabase({{"KDQ47", "CompanyName", "Marsh & Lindqvist Mechanical"},
                                                         {"KDQ47", "EmailID", "quotes@marsh-lindqvist.example"},
                                                         {"KDQ47", "ContactNumber", "+1 555 0147"}},
                                                        units));
}

/// A command document that exports tags of the project, all of them when none is named.
std::string ExportCommand(const std::vector<std::string>& tagNames) {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
      "<ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
  command.First("//ProjectName").SetText(kSampleProject);
  if (!tagNames.empty()) {
    const xml::Node list = xml::AppendElement(command.First("//UserSelectionTransfer"), "TagNames");
    for (const std::string& name : tagNames) {
      xml::AppendElement(list, "TagName", name);
    }
  }
  return command.Bytes();
}

/// Commands that walk through the life of a project, in the order in which they are to be sent.
struct SampleCommand {
  const char* file;
  const char* name;
  std::vector<std::pair<const char*, const char*>> parameters;
};

std::vector<SampleCommand> ProjectCommands() {
  constexpr const char* kArchive = "C:\\Korvane\\TQ5-VX\\Archives\\Harbour School.E3A";
  constexpr const char* kFolder = "C:\\Korvane\\TQ5-VX\\Projects\\Harbour School";
  return {{"project-01-add", "addProject", {{"projectName", "Harbour"}, {"Description", "New wing"}}},
          {"project-02-set-properties",
           "setProjectProperties",
           {{"projectName", "Harbour"},
            {"Location", "Quay 4"},
            {"CompanyName", "Ødegård & Söhne"},
            {"EmailID", "office@odegard.example"},
            {"ContactNumber", "+1 555 0162"}}},
          {"project-03-list", "getProjectList", {}},
          {"project-04-copy", "copyProject", {{"projectName", "Harbour"}, {"newProjectName", "Harbour Annex"}}},
          {"project-05-rename", "renameProject", {{"projectName", "Harbour"}, {"newProjectName", "Harbour School"}}},
          {"project-06-properties", "getProjectProperties", {{"projectName", "Harbour School"}}},
          {"project-07-archive", "archiveProject", {{"projectName", "Harbour School"}}},
          {"project-08-delete", "deleteProject", {{"projectName", "Harbour School"}}},
          {"project-09-retrieve",
           "retrieveProject",
           {{"projectName", "Harbour School"}, {"fileSpec", kArchive}, {"FOLDER", kFolder}}}};
}

/// Tags listed, changed and built. They can be sent in this order.
std::vector<SampleCommand> TagCommands() {
  constexpr const char* kFanCoil = "Küche & Café <EG>";
  return {{"tag-01-list", "getTagList", {{"projectName", kSampleProject}}},
          {"tag-03-rename",
           "renameTag",
           {{"projectName", kSampleProject}, {"pdsg", "RTU47"}, {"tagName", "RTU-1"}, {"newTagName", "Roof | 1"}}},
          {"tag-04-copy",
           "copyTag",
           {{"projectName", kSampleProject}, {"PDSG", "XRC47"}, {"tagName", "CH-1"}, {"dataType", "0"}}},
          {"tag-05-delete",
           "deleteTag",
           {{"projectName", kSampleProject}, {"PDSG", "XRC47"}, {"tagName", "Copy of CH-1"}, {"DATATYPE", "0"}}},
          {"tag-06-new", "newTag", {{"projectName", kSampleProject}, {"PDSG", "RTU47"}}},
          {"tag-07-configure",
           "configureTag",
           {{"projectName", kSampleProject}, {"PDSG", "FCB47"}, {"tagName", kFanCoil}, {"tagID", "1106"}}},
          {"tag-08-rebuild-all", "rebuildAllTags", {{"projectName", kSampleProject}}}};
}

/// A command document that fetches two tags, an ordinary and an extended one.
std::string FetchCommand() {
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>getTags</NAME><PARAMETER><NAME>projectName</NAME><VALUE/></PARAMETER><PARAMETER><NAME>data</NAME>"
      "<VALUE><TAGS><TAG><NAME>CH-1</NAME><PDSG>XRC47</PDSG><DATATYPE>0</DATATYPE></TAG><TAG><NAME>HP-7</NAME>"
      "<PDSG>WSH47</PDSG><DATATYPE>1</DATATYPE></TAG></TAGS></VALUE></PARAMETER></COMMAND>");
  command.First("//VALUE").SetText(kSampleProject);
  return command.Bytes();
}

void WriteCommand(const fs::path& folder, const SampleCommand& sample) {
  const xml::Document command = MakeCommandDocument(sample.name);
  for (const auto& [name, value] : sample.parameters) {
    AddParameter(command, name, value);
  }
  WriteFile(folder / (std::string(sample.file) + ".xml"), command.Bytes());
}

void WriteCommands(const fs::path& folder) {
  WriteFile(folder / "getHybrisXMLNoUI.xml", ExportCommand({}));
  WriteFile(folder / "getHybrisXMLNoUI-two-tags.xml", ExportCommand({"CH-1", "Küche & Café <EG>"}));
  WriteFile(folder / "getHybrisXML.xml", "<COMMAND><NAME>getHybrisXML</NAME></COMMAND>\r\n");
  WriteFile(folder / "getOptions.xml", "<COMMAND><NAME>getOptions</NAME></COMMAND>\r\n");
  WriteFile(folder / "tag-02-fetch.xml", FetchCommand());
  for (const std::vector<SampleCommand>& commands : {ProjectCommands(), TagCommands()}) {
    for (const SampleCommand& command : commands) {
      WriteCommand(folder, command);
    }
  }
}

void WriteProgramFolder(const fs::path& bin, const fs::path& workflowProgram) {
  WriteFile(bin / "UIKeys.txt", kUiKeys);
  WriteFile(bin / "Options.xml", kOptions);
  WriteFile(bin / "Tools.xml", kTools);
  WriteFile(bin / "TagUpdateInfo.xml", kTagUpdateInfo);
  const fs::path program = bin / "kdwfm470.exe";
  MakeFile(program, [&](const fs::path& beside) {
    fs::copy_file(workflowProgram, beside);
    fs::permissions(beside, fs::perms::owner_all, fs::perm_options::add);
  });
}

/// Whether nothing stands in a folder but what a run left that was killed with its first file.
bool IsEmptyFolder(const fs::path& folder) {
  return std::ranges::all_of(fs::directory_iterator(folder), [](const fs::directory_entry& entry) {
    return IsNewFileName(entry.path().filename().string());
  });
}

/// Leaves `folder` as one that this function may fill: new, empty, or emptied of what was made here before.
void ClaimFolder(const fs::path& folder) {
  if (fs::exists(folder) && !fs::is_directory(folder)) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, folder.string() + " is not a folder");
  }
  if (fs::exists(folder) && !IsEmptyFolder(folder) && !fs::exists(folder / kMarker)) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           folder.string() + " is neither empty nor a sample machine: it stays as it is");
  }
  WriteFile(folder / kMarker, kMarkerText);
  for (const char* name : kMadeHere) {
    fs::remove_all(folder / name);
  }
}

}  // namespace

bool IsSampleMachine(const fs::path& folder) {
  std::error_code none;
  return fs::exists(folder / kMarker, none);
}

void CreateSampleMachine(const fs::path& folder, const fs::path& workflowProgram) {
  if (!fs::is_regular_file(workflowProgram)) {
    throw MakeRuntimeError(RuntimeError::FileNotFound, "no workflow program " + workflowProgram.string());
  }
  try {
    ClaimFolder(folder);
    WriteFile(folder / "registry.reg", AsRegistryExport(kRegistry));
    const fs::path root = folder / "drive_c" / "Korvane" / "TQ5-VX";
    for (const char* name : {"Temp", "Archives"}) {
      fs::create_directories(root / name);
    }
    WriteProgramFolder(root / "Bin", workflowProgram);
    WriteProject(root / "Projects" / kSampleProject, SampleUnits());
    WriteCommands(folder / "commands");
    for (const SampleFile& file : SampleReportFiles(kSampleProject)) {
      WriteFile(folder / file.path, file.bytes);
    }
  } catch (const fs::filesystem_error& error) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           std::string("cannot make the sample machine: ") + error.what());
  }
}

}  // namespace parvex::standin
