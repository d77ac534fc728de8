#include "projects/project_properties.h"

#include "protocol/command_document.h"
#include "protocol/legacy_requests.h"
#include "protocol/reply_envelope.h"
#include "protocol/required_node.h"

namespace parvex {
namespace {

constexpr std::string_view kAnswer = "the legacy application's answer";

/// One contact property: its key in Config and in the front end's command, its element in the reply.
struct ContactProperty {
  std::string_view key;
  std::string_view element;
  std::string ProjectContact::*member;
};

constexpr ContactProperty kContactProperties[] = {
    {"CompanyName", "COMPANYNAME", &ProjectContact::companyName},
    {"EmailID", "EMAILID", &ProjectContact::emailId},
    {"ContactNumber", "CONTACTNUMBER", &ProjectContact::contactNumber},
};

xml::Node RequiredInAnswer(const xml::Document& answer, std::string_view path) {
  return Required(answer.First(path), path, kAnswer);
}

std::string DatabaseOf(std::string_view folder) { return std::string(folder) + "\\Project.mdb"; }

}  // namespace

xml::Document GetProjectList(LegacyLink& link, const xml::Document&) {
  // The one request that is a fixed text and no document, so it does not end with a line break as the others do.
  constexpr const char* kRequest =
      "<COMMAND><NAME>getProjectList</NAME><PARAMETER><NAME>pdsg</NAME><VALUE>KDQ47</VALUE></PARAMETER></COMMAND>";
  std::string answer;
  return link.SendRequestMessage(kRequest, answer) ? ReadAnswer(link, "getProjectList", answer, true)
                                                   : MakeFailedReply();
}

xml::Document GetProjectProperties(LegacyLink& link, const xml::Document& command) {
  SetCommandName(command, "getProjectEx");
  AddParameters(command, {{"pdsg", kLegacyPdsg}});
  xml::Document answer;
  if (!Ask(link, command, answer)) {
    return MakeFailedReply();
  }
  const std::string folder = GetProjectFolder(link, RequiredInAnswer(answer, "//NAME").Text());
  const ProjectContact contact = ReadProjectConfig(link.platform, folder);
  const xml::Node properties = RequiredInAnswer(answer, "//PROPERTIES");
  for (const ContactProperty& property : kContactProperties) {
    xml::AppendElement(properties, property.element, contact.*property.member);
  }
  return answer;
}

xml::Document SetProjectProperties(LegacyLink& link, const xml::Document& command) {
  SetCommandName(command, "setProject");
  AddParameters(command, {{"pdsg", kLegacyPdsg}, {"bUserInput", "-1"}});
  xml::Document answer;
  if (!Ask(link, command, answer)) {
    return MakeFailedReply();
  }
  ProjectContact contact;
  for (const ContactProperty& property : kContactProperties) {
    contact.*property.member = GetParamFromCmdDoc(command, property.key);
  }
  WriteProjectConfig(link.platform, GetProjectFolder(link, GetParamFromCmdDoc(command, "projectName")), contact);
  return answer;
}

std::string GetProjectFolder(const LegacyLink& link, std::string_view projectName) {
  // Whether the router agreed is not asked: an answer without FOLDER says it.
  std::string text;
  const bool carriedOut = link.SendRequestMessage(
      MakeCommandDocument("getProjectEx", {{"pdsg", kLegacyPdsg}, {"projectName", projectName}}).Xml(), text);
  return RequiredInAnswer(ReadAnswer(link, "getProjectEx", text, carriedOut), "//FOLDER").Text();
}

ProjectContact ReadProjectConfig(const Platform& platform, std::string_view folder) {
  const auto database = platform.projectDatabases->Open(DatabaseOf(folder));
  const auto rows = database->OpenRecordSet("SELECT * FROM Config WHERE sPdsg='KDQ47'");
  ProjectContact contact;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::string key = rows->Column("sKey").value_or("");
    for (const ContactProperty& property : kContactProperties) {
      if (key == property.key) {
        contact.*property.member = rows->Column("sValue").value_or("");
      }
    }
  }
  return contact;
}

void WriteProjectConfig(const Platform& platform, std::string_view folder, const ProjectContact& contact) {
  // From the look for a row to its saving: two that find none would each add one.
  const std::shared_ptr<void> alone = platform.files->HoldForChange(DatabaseOf(folder));
  const auto database = platform.projectDatabases->Open(DatabaseOf(folder));
  for (const ContactProperty& property : kContactProperties) {
    const auto rows = database->OpenRecordSet("SELECT * FROM Config WHERE sPdsg='KDQ47' and sKey='" +
                                              std::string(property.key) + "'");
    if (rows->AtEnd()) {
      rows->AddNew();
      rows->SetColumn("sPdsg", kLegacyPdsg);
      rows->SetColumn("sKey", property.key);
    } else {
      rows->Edit();
    }
    rows->SetColumn("sValue", contact.*property.member);
    rows->Update();
  }
}

}  // namespace parvex
