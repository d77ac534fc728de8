#include "legacy_standin/router/project_requests.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/router/project_archive.h"
#include "protocol/command_document.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kArchiveEnding = ".E3A";
/// What is kept of a project beside its name; in answers the elements are the names in upper case.
constexpr std::array kProperties = {"Description", "Customer", "Location", "Engineer", "Notes"};

/// NAME and FOLDER of a project.
void Describe(const ProjectStore& store, const std::string& name, const xml::Node& project) {
  xml::AppendElement(project, "NAME", name);
  xml::AppendElement(project, "FOLDER", store.Folder(name));
}

std::string ProjectList(const ProjectStore& store, const Application&, const xml::Document&) {
  const xml::Document answer = xml::Document::Parse("<PROJECTLIST/>");
  for (const std::string& name : store.Names()) {
    Describe(store, name, xml::AppendElement(answer.Root(), "PROJECT"));
  }
  return answer.Xml();
}

std::string ProjectRecord(const ProjectStore& store, const std::string& given) {
  const std::string name = store.NameOf(given);
  const xml::Document answer = xml::Document::Parse("<PROJECT/>");
  Describe(store, name, answer.Root());
  const Fields stored = store.ReadProperties(name);
  const xml::Node properties = xml::AppendElement(answer.Root(), "PROPERTIES");
  for (const char* property : kProperties) {
    xml::AppendElement(properties, ToUpper(property), FieldOf(stored, property));
  }
  return answer.Xml();
}

std::string Project(const ProjectStore& store, const Application&, const xml::Document& request) {
  return ProjectRecord(store, NeedParameter(request, "projectName"));
}

/// The properties that the request gives; one that it does not give keeps its value.
Fields PropertiesOf(const xml::Document& request, const Fields& before) {
  Fields properties;
  for (const char* property : kProperties) {
    properties.emplace_back(property, FindParameter(request, property).value_or(FieldOf(before, property)));
  }
  return properties;
}

std::string SetProject(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string name = NeedParameter(request, "projectName");
  store.WriteProperties(name, PropertiesOf(request, store.ReadProperties(name)));
  return ProjectRecord(store, name);
}

bool IsSamePath(std::string_view a, std::string_view b) {
  const auto plain = [](std::string_view path) { return path.substr(0, path.find_last_not_of('\\') + 1); };
  return IsSameName(plain(a), plain(b));
}

/// Projects lie in the application's own folder: a path of somewhere else is refused.
void CheckPlace(const ProjectStore& store, const xml::Document& request, const char* pathParameter,
                const std::string& name) {
  const std::string path = NeedParameter(request, pathParameter);
  if (!IsSamePath(path, store.PlaceFor(name))) {
    RefuseRequest(std::string(pathParameter) + " \"" + path + "\" is not where the project \"" + name +
                  "\" has to lie");
  }
}

std::string AddProject(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string name = NeedParameter(request, "projectName");
  CheckPlace(store, request, "projectPath", name);
  store.Create(name, PropertiesOf(request, {}));
  return ProjectRecord(store, name);
}

std::string CopyProject(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string name = NeedParameter(request, "newProjectName");
  CheckPlace(store, request, "newProjectPath", name);
  store.Copy(NeedParameter(request, "projectName"), name);
  return ProjectRecord(store, name);
}

std::string DeleteProject(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string dataList = FindParameter(request, "dataList").value_or("*");
  if (dataList != "*") {
    RefuseRequest("a project is deleted as a whole, not dataList \"" + dataList + "\" of it");
  }
  const std::string name = store.NameOf(NeedParameter(request, "projectName"));
  store.Remove(name);
  const xml::Document answer = xml::Document::Parse("<PROJECT/>");
  xml::AppendElement(answer.Root(), "NAME", name);
  return answer.Xml();
}

// The list is looked through, since that removes what a killed removal left of any project.
std::string ProjectExist(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string asked = FindParameter(request, "projectName").value_or("");
  const std::vector<std::string> names = store.Names();
  const bool exists =
      std::any_of(names.begin(), names.end(), [&](const auto& name) { return IsSameName(name, asked); });
  return std::string("<PROJECTEXIST><STATUS>") + (exists ? "True" : "False") + "</STATUS></PROJECTEXIST>";
}

std::string DoesProjectExistInFolder(const ProjectStore& store, const Application&, const xml::Document& request) {
  const std::string name = FindParameter(request, "projectName").value_or("");
  const std::string path = FindParameter(request, "projectPath").value_or("");
  const bool isThere = store.Exists(name) && IsSamePath(path, store.Folder(name));
  return std::string("<STATUS><CODE>") + (isThere ? "1" : "0") + "</CODE></STATUS>";
}

std::string CheckedArchivePath(const std::string& path) {
  if (!EqualIgnoringCase(LastUnits(path, kArchiveEnding.size()), kArchiveEnding)) {
    RefuseRequest("\"" + path + "\" is no name of an archive: it does not end in " + std::string(kArchiveEnding));
  }
  return path;
}

/// The archive to write: a front end that names a file of its own does so as fileSpec, and archiveFile is then missing.
std::string ArchiveToWrite(const xml::Document& request) {
  const bool isNamed = FindParameter(request, "archiveFile").has_value();
  return CheckedArchivePath(NeedParameter(request, isNamed ? "archiveFile" : "fileSpec"));
}

std::string ArchiveContents(const ProjectArchive& archive) {
  const xml::Document answer = xml::Document::Parse("<ARCHIVE><PROJECT/></ARCHIVE>");
  const xml::Node project = answer.Root().Child("PROJECT");
  xml::AppendElement(project, "NAME", archive.projectName);
  const xml::Node list = xml::AppendElement(project, "APPLICATIONLIST");
  for (const std::string& group : GroupsIn(archive)) {
    xml::AppendElement(xml::AppendElement(list, "APPLICATION"), "PDSG", group);
  }
  return answer.Xml();
}

std::string ArchiveProject(const ProjectStore& store, const Application& application, const xml::Document& request) {
  const std::string name = store.NameOf(NeedParameter(request, "projectName"));
  const std::string path = ArchiveToWrite(request);
  ProjectArchive archive = {name, store.ReadFiles(name)};
  KeepGroups(archive, NeedParameter(request, "dataList"));
  application.files.Replace(path, PackProject(archive));
  return ArchiveContents(archive);
}

ProjectArchive ReadNamedArchive(const Application& application, const xml::Document& request) {
  return ReadProjectArchive(application, CheckedArchivePath(NeedParameter(request, "archiveFile")));
}

std::string GetArchiveContents(const ProjectStore&, const Application& application, const xml::Document& request) {
  return ArchiveContents(ReadNamedArchive(application, request));
}

/// The project takes the archive's content whatever it held before, and keeps its own name.
std::string RetrieveAndSaveProject(const ProjectStore& store, const Application& application,
                                   const xml::Document& request) {
  const std::string name = NeedParameter(request, "projectName");
  ProjectArchive archive = ReadNamedArchive(application, request);
  KeepGroups(archive, NeedParameter(request, "dataList"));
  store.ReplaceFiles(name, archive.files);
  return ProjectRecord(store, name);
}

using ProjectHandler = std::string (*)(const ProjectStore&, const Application&, const xml::Document&);

/// A request about projects has to say that it means the application's own product data set group.
RequestHandler InOwnGroup(ProjectHandler handler) {
  return [handler](const Application& application, const xml::Document& request) {
    const std::string group = NeedParameter(request, "pdsg");
    if (group != kLegacyPdsg) {
      RefuseRequest("the product data set group is \"" + group + "\" and not " + std::string(kLegacyPdsg));
    }
    return handler(ProjectStore(application), application, request);
  };
}

}  // namespace

RequestTable ProjectRequests() {
  return {{"getProjectList", InOwnGroup(ProjectList)},
          {"getProjectEx", InOwnGroup(Project)},
          {"setProject", InOwnGroup(SetProject)},
          {"addProject", InOwnGroup(AddProject)},
          {"copyProject", InOwnGroup(CopyProject)},
          {"deleteProject", InOwnGroup(DeleteProject)},
          {"projectExist", InOwnGroup(ProjectExist)},
          {"doesProjectExistInFolder", InOwnGroup(DoesProjectExistInFolder)},
          {"archiveProject", InOwnGroup(ArchiveProject)},
          {"getArchiveContents", InOwnGroup(GetArchiveContents)},
          {"retrieveAndSaveProject", InOwnGroup(RetrieveAndSaveProject)}};
}

}  // namespace parvex::standin
