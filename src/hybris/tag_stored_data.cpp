#include "hybris/tag_stored_data.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "formats/text/text.h"
#include "hybris/stored_tag_text.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/thread_state.h"
#include "protocol/required_node.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::string_view kDocument = "the Hybris document";

void ReadProduct(const xml::Document& stored, TagStoredData& data) {
  if (const xml::Node product = stored.First("descendant::Product")) {
    data.buildVersion = product.Attribute("TagVersion").value_or("");
    data.legacyTagId = product.Attribute("lTagID").value_or("");
  } else {
    data.legacyTagId = std::to_string(++ThisThread().unstoredTagCount);
  }
}

std::unique_ptr<Database> OpenProjectDatabase(const Platform& platform, const std::string& projectName) {
  const std::string path = GetProjectsFolder(platform) + "\\" + projectName + "\\" + std::string(kProjectDatabase);
  if (!FileExists(platform, path)) {
    return nullptr;
  }
  try {
    return platform.projectDatabases->Open(path);
  } catch (const AutomationError&) {
    return nullptr;  // deliberate: a tag can be quoted without its project's index
  }
}

/// The statement that finds a tag. Texts stand in it as they are, deliberately without doubling apostrophes.
std::string TagIndexStatement(std::string_view pdsg, std::string_view markFor) {
  std::string sql = "SELECT * FROM TagIndex WHERE sAPP ='";
  sql.append(FirstUnits(pdsg, 3)).append("' AND sAppVer='").append(LastUnits(pdsg, 2));
  sql.append("' and sTagName='").append(markFor).append("'");
  return sql;
}

bool IsInTagIndex(std::string_view pdsg) { return LengthInUnits(pdsg) > 2 && !pdsg.starts_with("SD3"); }

/// Gives every tag that the project's index knows its id; `legacyTagId` becomes the last one found.
void LookUpTagIds(const Platform& platform, const xml::Document& document, std::string& legacyTagId) {
  const xml::Node project = document.Root();
  const xml::Node job = Required(project, "PROJECT", kDocument).Child("ATTRIBUTES_LIST").Child("JOB");
  const std::string projectName = Required(job, "//JOB", kDocument).Attribute("LEGACY_PROJECTNAME").value_or("");
  const std::unique_ptr<Database> database = OpenProjectDatabase(platform, projectName);
  if (!database) {
    return;
  }
  const xml::Node tags = Required(project.Child("TAGS"), "PROJECT/TAGS", kDocument);
  for (xml::Node tag = tags.Child("TAG"); tag; tag = tag.Next("TAG")) {
    const xml::Node attributes = Required(tag.Child("ATTRIBUTES_LIST"), "ATTRIBUTES_LIST", "a TAG");
    const std::string pdsg = Required(attributes.Child("PDSG"), "PDSG", "a TAG").Text();
    if (!IsInTagIndex(pdsg)) {
      continue;
    }
    const std::string markFor = Required(attributes.Child("MARKFOR"), "MARKFOR", "a TAG").Text();
    if (const std::optional<std::string> found = FindTagId(*database, pdsg, markFor)) {
      legacyTagId = *found;
      Required(attributes.Child("LEGACY_TAGID"), "LEGACY_TAGID", "a TAG").SetText(legacyTagId);
    }
  }
}

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

/// "SapData" in any letter case becomes "SAPDATA", in names and values alike.
std::string WithUpperCaseSapData(std::string text) {
  constexpr std::string_view kSapData = "SAPDATA";
  auto from = text.begin();
  for (;;) {
    from = std::search(from, text.end(), kSapData.begin(), kSapData.end(),
                       [](char c, char wanted) { return AsciiUpper(c) == wanted; });
    if (from == text.end()) {
      return text;
    }
    from = std::copy(kSapData.begin(), kSapData.end(), from);
  }
}

/// The SAP configuration in a text that was found by the second way of reading: an SAP document of its own.
std::string SapFromText(std::string_view text, const xml::Document& stored) {
  const xml::Node sapData = stored.First("descendant::SAPDATA");
  return sapData ? sapData.Xml() : std::string(text);
}

/// The SAP configuration within the stored document of a tag, empty when there is none.
std::string SapFromStoredDocument(const xml::Document& stored) {
  xml::Node sapData = stored.First("descendant::SapData");
  if (!sapData) {
    sapData = stored.First("descendant::SAPDATA");
  }
  return sapData ? WithUpperCaseSapData(sapData.Xml()) : std::string();
}

/// `bytes` of the tag's blob, empty when they have to be read.
void AppendBlob(const SelectedTag& tag, const xml::Node& blobElement, std::string_view bytes) {
  const Platform& platform = tag.Machine();
  const std::string blob = bytes.empty() ? EncodeFileBase64(platform, tag.blobFileName)
                                         : EncodeFileBase64(platform, tag.blobFileName, bytes);
  if (!blob.empty()) {
    blobElement.Append(blobElement.Owner().CreateCData(blob));
  }
}

}  // namespace

std::optional<std::string> FindTagId(Database& database, std::string_view pdsg, std::string_view markFor) {
  const std::unique_ptr<RecordSet> rows = database.OpenRecordSet(TagIndexStatement(pdsg, markFor));
  return rows->AtEnd() ? std::nullopt : std::optional(rows->Column("lTagId").value_or(""));
}

TagStoredData ReadTagStoredData(const SelectedTag& tag, const TagElement& element, bool isLastTag) {
  const StoredTagText read = ReadStoredTagText(tag.Machine(), tag.blobFileName, tag.namedBlobs.get());
  const std::string_view text = read.text.empty() ? "<Empty />" : std::string_view(read.text);
  const xml::Document stored = xml::Document::Parse(text);

  TagStoredData data;
  ReadProduct(stored, data);
  if (isLastTag) {
    LookUpTagIds(tag.Machine(), element.element.Owner(), data.legacyTagId);
  }
  if (!read.status && text.find("SAPDATA") != std::string_view::npos) {
    data.sapXml = SapFromText(text, stored);
  }
  const bool isSapDocument = !stored.IsEmpty() && stored.Root().Name() == "SAPDATA";
  if (!isSapDocument && tag.FamilyCode().starts_with("XR")) {
    if (std::string sapXml = SapFromStoredDocument(stored); !sapXml.empty()) {
      data.sapXml = std::move(sapXml);
    }
  }
  AppendBlob(tag, element.blob, read.archive);
  return data;
}

}  // namespace parvex
