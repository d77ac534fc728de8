#include "legacy_standin/tag_requests.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/project_store.h"
#include "legacy_standin/stored_tag.h"
#include "platform/automation_error.h"
#include "platform/xml.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kOwnGroup = "KDQ47";
constexpr std::string_view kTagTable = "TagData";
constexpr std::string_view kEveryGroup = "*";

[[noreturn]] void Refuse(const std::string& reason) { throw MakeRuntimeError(RuntimeError::InvalidCall, reason); }

std::string Optional(const xml::Document& request, std::string_view name) {
  return FindParameter(request, name).value_or("");
}

void CheckParameter(const xml::Document& request, std::string_view name, std::string_view wanted) {
  const std::string given = NeedParameter(request, name);
  if (given != wanted) {
    Refuse(std::string(name) + " is \"" + given + "\" and not \"" + std::string(wanted) + "\"");
  }
}

void AddText(const xml::Node& parent, std::string_view name, std::string_view text) {
  parent.Append(parent.Owner().CreateElement(name)).SetText(text);
}

/// Tags with a document of their own are ordinary ones ("0"), those that the project alone knows extended ones ("1").
bool IsExtended(const Unit& unit) { return TagDocumentOf(unit).empty(); }

void AppendListed(const xml::Node& parent, const Unit& unit) {
  const xml::Node tag = parent.Append(parent.Owner().CreateElement("TAG"));
  AddText(tag, "NAME", TagNameOf(unit));
  AddText(tag, "PDSG", PdsgOf(unit));
  AddText(tag, "DATATYPE", IsExtended(unit) ? "1" : "0");
  AddText(tag, "TAGVERSION", ProductAttribute(unit, "TagVersion"));
  AddText(tag, "TAGINDEXID", std::to_string(unit.tagId));
  AddText(tag, "ID", std::to_string(unit.tagId));
}

std::string ListOf(const std::vector<Unit>& units) {
  const xml::Document answer = xml::Document::Parse("<TAGLIST/>");
  for (const Unit& unit : units) {
    AppendListed(answer.Root(), unit);
  }
  return answer.Xml();
}

Unit& NeedTag(std::vector<Unit>& units, const std::string& project, const std::string& pdsg, const std::string& name) {
  const auto found = FindTag(units, pdsg, name);
  if (found == units.end()) {
    Refuse("project \"" + project + "\" has no tag \"" + name + "\" of the group \"" + pdsg + "\"");
  }
  return *found;
}

void CheckNewName(std::vector<Unit>& units, const std::string& project, const std::string& pdsg,
                  const std::string& name) {
  if (name.empty() || std::ranges::any_of(name, [](unsigned char c) { return c < 0x20; })) {
    Refuse("\"" + name + "\" is no name of a tag");
  }
  if (FindTag(units, pdsg, name) != units.end()) {
    Refuse("project \"" + project + "\" has a tag \"" + name + "\" of the group \"" + pdsg + "\" already");
  }
}

std::string GetTagList(const Application& application, const xml::Document& request) {
  const std::string group = NeedParameter(request, "pdsgFilter");
  std::vector<Unit> units = ProjectStore(application).ReadUnits(NeedParameter(request, "projectName"));
  std::erase_if(units, [&](const Unit& unit) { return group != kEveryGroup && PdsgOf(unit) != group; });
  return ListOf(units);
}

std::string TagAnswer(const std::string& project, const Unit& unit) {
  const xml::Document answer = xml::Document::Parse("<TAGS/>");
  const xml::Node tag = answer.Append(answer.CreateElement(IsExtended(unit) ? "PROTOTAG" : "TAG"));
  AddText(tag, "TagName", TagNameOf(unit));
  const xml::Node owner = tag.Append(answer.CreateElement("Project"));
  owner.SetAttribute("ProjectID", project);
  const xml::Node property = owner.Append(answer.CreateElement("Property"));
  property.SetAttribute("name", "proj_name");
  AddText(property, "Value", project);
  if (IsExtended(unit)) {
    const xml::Node application = tag.Append(answer.CreateElement("Application"));
    application.SetAttribute("PDSG", PdsgOf(unit));
  } else {
    tag.Append(xml::Document::Parse(TagDocumentOf(unit)).Root());
  }
  return answer.Xml();
}

std::string FetchTag(const Application& application, const xml::Document& request, std::string_view groupParameter) {
  const ProjectStore store(application);
  const std::string project = store.NameOf(NeedParameter(request, "projectName"));
  std::vector<Unit> units = store.ReadUnits(project);
  return TagAnswer(project, NeedTag(units, project, NeedParameter(request, groupParameter),
                                    NeedParameter(request, "tagName")));
}

std::string GetTag(const Application& application, const xml::Document& request) {
  return FetchTag(application, request, "pdsg");
}

std::string GetTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "pdsg", kOwnGroup);
  return FetchTag(application, request, "pdsgFilter");
}

std::string RenameTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "pdsg", kOwnGroup);
  CheckParameter(request, "tableName", kTagTable);
  const ProjectStore store(application);
  const std::string project = NeedParameter(request, "projectName");
  const std::string pdsg = NeedParameter(request, "pdsgOfOwner");
  const std::string newName = NeedParameter(request, "newTagName");
  std::vector<Unit> units = store.ReadUnits(project);
  Unit& unit = NeedTag(units, project, pdsg, NeedParameter(request, "tagName"));
  CheckNewName(units, project, pdsg, newName);
  NameTag(unit, newName);
  store.WriteUnits(project, units);
  return ListOf({unit});
}

/// Appends a copy of the unit to the project's units.
std::string CopyInto(const ProjectStore& store, const std::string& project, const Unit& unit, const std::string& name) {
  std::vector<Unit> units = store.ReadUnits(project);
  CheckNewName(units, project, PdsgOf(unit), name);
  units.push_back(CopyOfTag(unit, FreeTagId(units), name));
  store.WriteUnits(project, units);
  return ListOf({units.back()});
}

std::string CopyTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "tableName", kTagTable);
  const ProjectStore store(application);
  const std::string project = NeedParameter(request, "projectName");
  std::vector<Unit> units = store.ReadUnits(project);
  const Unit& unit = NeedTag(units, project, NeedParameter(request, "PDSG"), NeedParameter(request, "tagName"));
  return CopyInto(store, project, unit, NeedParameter(request, "newTagName"));
}

xml::Node NeedInTagList(const xml::Document& request, const std::string& path) {
  const xml::Node node = request.First("/COMMAND/PARAMETER[NAME='tagList']/VALUE/" + path);
  if (!node) {
    Refuse("tagList has no " + path);
  }
  return node;
}

std::string CopyTagsToProject(const Application& application, const xml::Document& request) {
  CheckParameter(request, "tableName", kTagTable);
  const ProjectStore store(application);
  const std::string source = NeedParameter(request, "sourceProject");
  const std::string pdsg = NeedInTagList(request, "DATA/PDSG").Attribute("Value").value_or("");
  const std::string name = NeedInTagList(request, "DATA/PDSG/TAG").Attribute("Name").value_or("");
  std::vector<Unit> units = store.ReadUnits(source);
  const Unit& unit = NeedTag(units, source, pdsg, name);
  const std::string newName = Optional(request, "newTagName");
  return CopyInto(store, NeedParameter(request, "destinationProject"), unit, newName.empty() ? name : newName);
}

std::string DeleteTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "pdsg", kOwnGroup);
  const ProjectStore store(application);
  const std::string project = NeedParameter(request, "projectName");
  const std::string pdsg = NeedInTagList(request, "TAGS/TAG/PDSG").Text();
  const std::string name = NeedInTagList(request, "TAGS/TAG/NAME").Text();
  const std::string number = NeedInTagList(request, "TAGS/TAG/TAGINDEXID").Text();
  std::vector<Unit> units = store.ReadUnits(project);
  const Unit deleted = NeedTag(units, project, pdsg, name);
  if (!number.empty() && number != std::to_string(deleted.tagId)) {
    Refuse("tag \"" + name + "\" has the number " + std::to_string(deleted.tagId) + " and not " + number);
  }
  units.erase(FindTag(units, pdsg, name));
  store.WriteUnits(project, units);
  return ListOf({deleted});
}

}  // namespace

RequestTable TagRequests() {
  return {{"getTagList", GetTagList},   {"getTag", GetTag},
          {"getTagEx", GetTagEx},       {"renameTagEx", RenameTagEx},
          {"CopyTagEx", CopyTagEx},     {"CopyTagsToProject", CopyTagsToProject},
          {"deleteTagEx", DeleteTagEx}};
}

}  // namespace parvex::standin
