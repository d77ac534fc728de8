#pragma once

#include <string>
#include <string_view>

#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

// The legacy application lists its projects and keeps their properties; three contact properties, which it does not
// serve, lie in the table Config of the project's own Project.mdb. Answers without the elements that are needed, and
// all failures of the database, end the call as an AutomationError.

/// The router's own list as it stands. The front end's parameters are not used.
xml::Document GetProjectList(LegacyLink& link, const xml::Document& command);
/// The legacy application's answer, with COMPANYNAME, EMAILID and CONTACTNUMBER appended to its first PROPERTIES.
xml::Document GetProjectProperties(LegacyLink& link, const xml::Document& command);
/// Stores the properties with the legacy application and, when it agrees, the contact properties. Its answer is the
/// reply.
xml::Document SetProjectProperties(LegacyLink& link, const xml::Document& command);

/// The folder of a project as the legacy application names it: full path, no final backslash.
std::string GetProjectFolder(const LegacyLink& link, std::string_view projectName);

struct ProjectContact {
  std::string companyName;
  std::string emailId;
  std::string contactNumber;
};

/// The contact properties in the folder's Project.mdb; empty where there is no row. Of several rows the last counts.
ProjectContact ReadProjectConfig(const Platform& platform, std::string_view folder);
/// Writes all three, also empty ones: into the first row of each, or a new one.
void WriteProjectConfig(const Platform& platform, std::string_view folder, const ProjectContact& contact);

}  // namespace parvex
