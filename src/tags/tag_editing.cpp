#include "tags/tag_editing.h"

#include <string>
#include <string_view>
#include <utility>

#include "legacy_env/installed_files.h"
#include "legacy_env/program_folder_document.h"
#include "legacy_env/registry_strings.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "tags/tag_names.h"

namespace parvex {
namespace {

constexpr std::string_view kTagTable = "TagData";

/// Appends a parameter with an empty value and gives its VALUE.
xml::Node AddEmptyParameter(const xml::Document& command, std::string_view name) {
  return command.Append(MakeParameterElement(command, name, "")).Child("VALUE");
}

/// The tag's owner goes into a parameter of its own, since the request itself is addressed to the legacy application.
void AddressToLegacy(const xml::Document& command) {
  AddParameter(command, "pdsgOfOwner", GetParamFromCmdDoc(command, "pdsg"));
  SetParamValue(command, "pdsg", kLegacyPdsg);
}

void AddTableAndUpdateInfo(const LegacyLink& link, const xml::Document& command) {
  AddParameter(command, "tableName", kTagTable);
  constexpr std::string_view kUnknown = "error";
  // Read afresh, unlike the kept path that the tag list goes by.
  const std::string binPath = ReadRegistryString(link.platform, "SOFTWARE\\Korvane\\KDQ47\\", "binPath", kUnknown);
  if (binPath == kUnknown) {
    return;
  }
  const xml::Node data = AddEmptyParameter(command, "data");
  if (const xml::Node info = LoadFromFolder(link.platform, binPath, kTagUpdateInfoFile).Root()) {
    data.Append(info);
  }
}

/// Sends a copy of the request in which newTagName is unique, so the front end's document keeps the name it wanted.
xml::Document SendWithUniqueName(LegacyLink& link, const xml::Document& command, std::string_view projectName,
                                 std::string_view pdsg) {
  const xml::Document request = xml::Document::Parse(command.Xml());
  SetParamValue(request, "newTagName",
                MakeUniqueTagName(link, projectName, GetParamFromCmdDoc(request, "newTagName"), pdsg));
  return ForwardAndAcknowledge(link, request);
}

void AddNewTagNameWhenMissing(const xml::Document& command, std::string_view newTagName) {
  std::string given;
  if (!GetParamValue(command, "newTagName", given)) {
    AddParameter(command, "newTagName", newTagName);
  }
}

void AddTagToCopy(const xml::Document& command) {
  const xml::Node data = xml::AppendElement(AddEmptyParameter(command, "tagList"), "DATA");
  const xml::Node group = xml::AppendElement(data, "PDSG");
  group.SetAttribute("Value", GetParamFromCmdDoc(command, "PDSG"));
  const xml::Node tag = xml::AppendElement(group, "TAG");
  tag.SetAttribute("Name", GetParamFromCmdDoc(command, "tagName"));
  tag.SetAttribute("DataType", GetParamFromCmdDoc(command, "dataType"));
  tag.SetAttribute("ID", "0");
  tag.SetAttribute("Key", "dummy");
  tag.SetAttribute("TagIndexID", GetParamFromCmdDoc(command, "TAGINDEXID"));
}

void MakeCopyInPlace(const LegacyLink& link, const xml::Document& command) {
  AddNewTagNameWhenMissing(command, "Copy of " + GetParamFromCmdDoc(command, "tagName"));
  SetCommandName(command, "CopyTagEx");
  AddressToLegacy(command);
  AddTableAndUpdateInfo(link, command);
}

void MakeCopyToProject(const LegacyLink& link, const xml::Document& command, std::string_view sourceProject) {
  AddNewTagNameWhenMissing(command, "");
  AddParameter(command, "sourceProject", sourceProject);
  AddTagToCopy(command);
  SetCommandName(command, "CopyTagsToProject");
  AddTableAndUpdateInfo(link, command);
}

}  // namespace

xml::Document RenameTag(LegacyLink& link, const xml::Document& command) {
  SetCommandName(command, "renameTagEx");
  AddressToLegacy(command);
  AddTableAndUpdateInfo(link, command);
  return SendWithUniqueName(link, command, GetParamFromCmdDoc(command, "projectName"),
                            GetParamFromCmdDoc(command, "pdsgOfOwner"));
}

xml::Document CopyTag(LegacyLink& link, const xml::Document& command) {
  const std::string project = GetParamFromCmdDoc(command, "projectName");
  const std::string destination = GetParamFromCmdDoc(command, "destinationProject");
  const bool staysInProject = destination.empty() || destination == project;
  if (staysInProject) {
    MakeCopyInPlace(link, command);
  } else {
    MakeCopyToProject(link, command, project);
  }
  return SendWithUniqueName(link, command, staysInProject ? project : destination, GetParamFromCmdDoc(command, "PDSG"));
}

xml::Document DeleteTag(LegacyLink& link, const xml::Document& command) {
  const xml::Document request = MakeCommandDocument(
      "deleteTagEx", {{"pdsg", kLegacyPdsg}, {"projectName", GetParamFromCmdDoc(command, "projectName")}});
  const xml::Node tag = xml::AppendElement(xml::AppendElement(AddEmptyParameter(request, "tagList"), "TAGS"), "TAG");
  for (const auto& [element, parameter] :
       {std::pair{"DATATYPE", "DATATYPE"}, std::pair{"PDSG", "PDSG"}, std::pair{"NAME", "tagName"},
        std::pair{"TAGINDEXID", "TAGINDEXID"}, std::pair{"ID", "ID"}}) {
    xml::AppendElement(tag, element, GetParamFromCmdDoc(command, parameter));
  }
  const bool isOrdinary = GetParamFromCmdDoc(command, "DATATYPE") == "0";
  xml::AppendElement(tag, "TABLENAME", isOrdinary ? kTagTable : "");
  return ForwardAndAcknowledge(link, request);
}

}  // namespace parvex
