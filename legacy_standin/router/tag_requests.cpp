#include "legacy_standin/router/tag_requests.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/projects/stored_tag.h"
#include "protocol/command_document.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kTagTable = "TagData";
constexpr std::string_view kEveryGroup = "*";

std::string Optional(const xml::Document& request, std::string_view name) {
  return FindParameter(request, name).value_or("");
}

void CheckParameter(const xml::Document& request, std::string_view name, std::string_view wanted) {
  const std::string given = NeedParameter(request, name);
  if (given != wanted) {
    RefuseRequest(std::string(name) + " is \"" + given + "\" and not \"" + std::string(wanted) + "\"");
  }
}

/// Tags with a document of their own are ordinary ones ("0"), those that the project alone knows extended ones ("1").
bool IsExtended(const Unit& unit) { return TagDocumentOf(unit).empty(); }

void AppendListed(const xml::Node& parent, const Unit& unit) {
  const xml::Node tag = xml::AppendElement(parent, "TAG");
  xml::AppendElement(tag, "NAME", TagNameOf(unit));
  xml::AppendElement(tag, "PDSG", PdsgOf(unit));
  xml::AppendElement(tag, "DATATYPE", IsExtended(unit) ? "1" : "0");
  xml::AppendElement(tag, "TAGVERSION", ProductAttribute(unit, "TagVersion"));
  xml::AppendElement(tag, "TAGINDEXID", std::to_string(unit.tagId));
  xml::AppendElement(tag, "ID", std::to_string(unit.tagId));
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
    RefuseRequest("project \"" + project + "\" has no tag \"" + name + "\" of the group \"" + pdsg + "\"");
  }
  return *found;
}

void CheckNewName(std::vector<Unit>& units, const std::string& project, const std::string& pdsg,
                  const std::string& name) {
  if (name.empty() || std::ranges::any_of(name, [](unsigned char c) { return c < 0x20; })) {
    RefuseRequest("\"" + name + "\" is no name of a tag");
  }
  if (FindTag(units, pdsg, name) != units.end()) {
    RefuseRequest("project \"" + project + "\" has a tag \"" + name + "\" of the group \"" + pdsg + "\" already");
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
  const xml::Node tag = xml::AppendElement(answer.Root(), IsExtended(unit) ? "PROTOTAG" : "TAG");
  xml::AppendElement(tag, "TagName", TagNameOf(unit));
  const xml::Node owner = xml::AppendElement(tag, "Project");
  owner.SetAttribute("ProjectID", project);
  const xml::Node property = xml::AppendElement(owner, "Property");
  property.SetAttribute("name", "proj_name");
  xml::AppendElement(property, "Value", project);
  if (IsExtended(unit)) {
    const xml::Node application = xml::AppendElement(tag, "Application");
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
  return TagAnswer(project,
                   NeedTag(units, project, NeedParameter(request, groupParameter), NeedParameter(request, "tagName")));
}

std::string GetTag(const Application& application, const xml::Document& request) {
  return FetchTag(application, request, "pdsg");
}

std::string GetTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "pdsg", kLegacyPdsg);
  return FetchTag(application, request, "pdsgFilter");
}

std::string RenameTagEx(const Application& application, const xml::Document& request) {
  CheckParameter(request, "pdsg", kLegacyPdsg);
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
  const std::string pdsg = NeedParameter(request, "PDSG");
  const std::string name = NeedParameter(request, "tagName");
  const Unit& unit = NeedTag(units, project, pdsg, name);
  return CopyInto(store, project, unit, NeedParameter(request, "newTagName"));
}

xml::Node NeedInTagList(const xml::Document& request, const std::string& path) {
  const xml::Node node = request.First("/COMMAND/PARAMETER[NAME='tagList']/VALUE/" + path);
  if (!node) {
    RefuseRequest("tagList has no " + path);
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
  CheckParameter(request, "pdsg", kLegacyPdsg);
  const ProjectStore store(application);
  const std::string project = NeedParameter(request, "projectName");
  const std::string pdsg = NeedInTagList(request, "TAGS/TAG/PDSG").Text();
  const std::string name = NeedInTagList(request, "TAGS/TAG/NAME").Text();
  const std::string number = NeedInTagList(request, "TAGS/TAG/TAGINDEXID").Text();
  std::vector<Unit> units = store.ReadUnits(project);
  const Unit deleted = NeedTag(units, project, pdsg, name);
  if (!number.empty() && number != std::to_string(deleted.tagId)) {
    RefuseRequest("tag \"" + name + "\" has the number " + std::to_string(deleted.tagId) + " and not " + number);
  }
  units.erase(FindTag(units, pdsg, name));
  store.WriteUnits(project, units);
  return ListOf({deleted});
}

}  // namespace

RequestTable TagRequests() {
  return {{"getTagList", GetTagList},   {"getTag", GetTag},       {"getTagEx", GetTagEx},
          {"renameTagEx", RenameTagEx}, {"CopyTagEx", CopyTagEx}, {"CopyTagsToProject", CopyTagsToProject},
          {"deleteTagEx", DeleteTagEx}};
}

}  // namespace parvex::standin
