#include "tags/tag_listing.h"

#include <string>
#include <unordered_map>

#include "legacy_env/install_paths.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/program_folder_document.h"
#include "protocol/command_document.h"
#include "protocol/legacy_requests.h"
#include "protocol/reply_envelope.h"
#include "protocol/required_node.h"

namespace parvex {
namespace {

std::string TextBelow(const xml::Node& element, std::string_view name) {
  return Required(element.Descendant(name), name, element.Name()).Text();
}

/// The first version of each product data set group. Tools without a group match nothing.
std::unordered_map<std::string, std::string> CurrentVersions(const xml::Document& tools) {
  std::unordered_map<std::string, std::string> versions;
  for (const xml::Node& tool : tools.All("//Tool")) {
    const xml::Node pdsg = tool.Descendant("Pdsg");
    const xml::Node version = tool.Descendant("Version");
    if (pdsg) {
      versions.try_emplace(pdsg.Text(), version ? version.Text() : std::string());
    }
  }
  return versions;
}

struct TagEntry {
  std::string name;
  std::string pdsg;
  bool isExtended;
};

TagEntry ReadEntry(const xml::Node& tag) {
  return {TextBelow(tag, "NAME"), TextBelow(tag, "PDSG"), TextBelow(tag, "DATATYPE") == "1"};
}

xml::Document MakeTagRequest(const TagEntry& tag, std::string_view projectName) {
  if (tag.isExtended) {
    return MakeCommandDocument(
        "getTagEx",
        {{"projectName", projectName}, {"pdsg", kLegacyPdsg}, {"pdsgFilter", tag.pdsg}, {"tagName", tag.name}});
  }
  const xml::Document request = xml::Document::Parse(
      "<COMMAND><NAME>getTag</NAME><PARAMETER><NAME>pdsgFilter</NAME><VALUE></VALUE></PARAMETER></COMMAND>");
  AddParameters(request, {{"projectName", projectName}, {"pdsg", tag.pdsg}, {"tagName", tag.name}});
  return request;
}

/// The tag in the router's answer; a null node for a tag that it does not know.
xml::Node FetchTag(const LegacyLink& link, const TagEntry& tag, std::string_view projectName) {
  std::string text;
  const xml::Document request = MakeTagRequest(tag, projectName);
  const bool carriedOut = link.SendRequestMessage(request.Xml(), text);
  const xml::Document answer = ReadAnswer(link, GetCommandName(request), text, carriedOut);
  const xml::Node found = answer.First("//TAG");
  return found ? found : answer.First("//PROTOTAG");
}

/// Products by the group of their application and the tag that they are marked for, the first of each.
std::unordered_map<std::string, xml::Node> ProductsByTag(const xml::Document& tagData) {
  std::unordered_map<std::string, xml::Node> products;
  for (const xml::Node& product : tagData.All("//Application/System/Product")) {
    const auto group = product.Parent().Parent().Attribute("PDSG");
    const auto markFor = product.Attribute("MarkFor");
    if (group && markFor) {
      products.try_emplace(*group + '\0' + *markFor, product);
    }
  }
  return products;
}

}  // namespace

xml::Document GetTagList(LegacyLink& link, const xml::Document& command) {
  return GetTagListOf(link, GetParamFromCmdDoc(command, "projectName"));
}

xml::Document GetTagListOf(LegacyLink& link, std::string_view projectName) {
  const xml::Document request = xml::Document::Parse(
      "<COMMAND><NAME>getTagList</NAME><PARAMETER><NAME>pdsg</NAME><VALUE>KDQ47</VALUE></PARAMETER>"
      "<PARAMETER><NAME>pdsgFilter</NAME><VALUE>*</VALUE></PARAMETER>"
      "<PARAMETER><NAME>projectName</NAME><VALUE></VALUE></PARAMETER></COMMAND>");
  SetParamValue(request, "projectName", projectName);
  std::string text;
  if (!link.SendRequestMessage(request.Xml(), text)) {
    return MakeFailedReply();
  }
  const xml::Document tagList = ReadAnswer(link, "getTagList", text, true);
  if (GetBinPath(link.platform) != "error") {
    MarkUpToDate(tagList, LoadFromProgramFolder(link.platform, kToolsFile));
  }
  return tagList;
}

void MarkUpToDate(const xml::Document& tagList, const xml::Document& tools) {
  const auto versions = CurrentVersions(tools);
  std::string current;  // kept from one tag to the next
  for (const xml::Node& tag : tagList.All("//TAG")) {
    const std::string version = TextBelow(tag, "TAGVERSION");
    const auto found = versions.find(TextBelow(tag, "PDSG"));
    if (found != versions.end()) {
      current = found->second;
    }
    xml::AppendElement(tag, "UPTODATE", version == current ? "-1" : "0");
  }
}

xml::Document GetTags(LegacyLink& link, const xml::Document& command) {
  const xml::Document reply = xml::Document::Parse("<TagData/>");
  const std::string projectName = GetParamFromCmdDoc(command, "projectName");
  const xml::Node project = reply.CreateElement("PROJECT");
  xml::AppendElement(project, "projectName", projectName);
  for (const xml::Node& entry : command.All("//TAG")) {
    if (const xml::Node tag = FetchTag(link, ReadEntry(entry), projectName)) {
      project.Append(tag);
    }
  }
  reply.Append(project);
  return reply;
}

void LookUpTagProducts(LegacyLink& link, std::string_view projectName, const xml::Document& tags) {
  const xml::Document command = MakeCommandDocument("getTags", {{"projectName", projectName}});
  const xml::Node data = command.Append(MakeParameterElement(command, "data", "")).Child("VALUE");
  const std::vector<xml::Node> entries = tags.All("//TAG");
  for (const xml::Node& tag : entries) {
    data.Append(tag.Clone());
  }
  // A product named by ProdName used to be looked for first. What that found has always been replaced by the result of
  // the second way, also when the second finds nothing, so only the second is left; deliberately not the better of the
  // two.
  const auto products = ProductsByTag(GetTags(link, command));
  for (const xml::Node& tag : entries) {
    const std::string pdsg = TextBelow(tag, "PDSG");
    const std::string name = TextBelow(tag, "NAME");
    const auto found = products.find(pdsg + '\0' + name);
    const xml::Node product = found == products.end() ? xml::Node() : found->second;
    for (const auto& [element, attribute] : {std::pair{"QUANTITY", "Quantity"}, std::pair{"SIZE", "UnitSize"},
                                             std::pair{"PARTNUMBER", "PartNumber"}, std::pair{"MODEL", "Model"}}) {
      xml::AppendElement(tag, element, product ? product.Attribute(attribute).value_or("") : "");
    }
  }
}

}  // namespace parvex
