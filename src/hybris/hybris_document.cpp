#include "hybris/hybris_document.h"

#include "formats/text/text.h"
#include "protocol/required_node.h"

namespace parvex {

xml::Document CreateHybrisDocument(std::string_view projectName) {
  std::string skeleton = "<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME=\"";
  skeleton += projectName;
  skeleton += "\" /><CUSTOMER/><SALESPERSON/><BRAND/></ATTRIBUTES_LIST><TAGS></TAGS></PROJECT>";
  return NewXPathDocument(skeleton);
}

TagElement AppendTagElement(const xml::Document& document) {
  constexpr std::string_view kTags = "PROJECT/TAGS";
  const xml::Node tags = document.First(kTags);
  Required(tags, kTags, "the Hybris document");

  TagElement tag;
  tag.element = AppendElement(document, tags, "TAG");
  const xml::Node attributes = AppendElement(document, tag.element, "ATTRIBUTES_LIST");
  tag.buildVersion = AppendElement(document, attributes, "BUILDVERSION");
  tag.markFor = AppendElement(document, attributes, "MARKFOR");
  tag.pdsg = AppendElement(document, attributes, "PDSG");
  tag.legacyTagId = AppendElement(document, attributes, "LEGACY_TAGID");
  tag.blob = AppendElement(document, attributes, "BLOB");
  tag.baseUnits = AppendElement(document, tag.element, "BASEUNITS");
  return tag;
}

xml::Node AppendElement(const xml::Document& document, const xml::Node& parent, std::string_view name) {
  return parent.Append(document.CreateElement(name));
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

xml::Document NewXPathDocument(std::string_view xmlText) { return xml::Document::Parse(xmlText); }

}  // namespace parvex
