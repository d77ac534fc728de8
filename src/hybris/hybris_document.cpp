#include "hybris/hybris_document.h"

#include "formats/text/text.h"
#include "protocol/required_node.h"

namespace parvex {

xml::Document CreateHybrisDocument(std::string_view projectName) {
  std::string skeleton = "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"";
  skeleton += projectName;
  skeleton += "\" /><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST><TAGS></TAGS></PROJECT>";
  return xml::Document::Parse(skeleton);
}

TagElement AppendTagElement(const xml::Document& document) {
  // By steps, not by an expression: that would look at all tags so far, which are folded.
  const xml::Node project = document.AsNode().Child("PROJECT");
  const xml::Node tags = project ? project.Child("TAGS") : project;
  Required(tags, "PROJECT/TAGS", "the Hybris document");

  TagElement tag;
  tag.element = xml::AppendElement(tags, "TAG");
  const xml::Node attributes = xml::AppendElement(tag.element, "ATTRIBUTES_LIST");
  tag.buildVersion = xml::AppendElement(attributes, "BUILDVERSION");
  tag.markFor = xml::AppendElement(attributes, "MARKFOR");
  tag.pdsg = xml::AppendElement(attributes, "PDSG");
  tag.legacyTagId = xml::AppendElement(attributes, "LEGACY_TAGID");
  tag.blob = xml::AppendElement(attributes, "BLOB");
  tag.baseUnits = xml::AppendElement(tag.element, "BASEUNITS");
  return tag;
}

std::string MapBrand(std::string_view supplier, std::string_view typeOfSale) {
  const std::string name = ToUpper(TrimBlanks(supplier));
  const std::string_view sale = TrimBlanks(typeOfSale).substr(0, 1);
  if (name == "KORVANE") return "Korvane";
  if (name == "TESSEL") return "Tessel";
  if (name == "QZN") return "QZN";
  if (sale == "2") return "Tessel";
  if (sale == "9") return "QZN";
  return "Korvane";  // also what "1" stands for
}

}  // namespace parvex
