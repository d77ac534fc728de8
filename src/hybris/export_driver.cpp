#include "hybris/export_driver.h"

#include <cstdint>
#include <memory>
#include <string>

#include "formats/text/text.h"
#include "hybris/base_unit_elements.h"
#include "hybris/base_units.h"
#include "hybris/hybris_document.h"
#include "hybris/quote_builder_exchange.h"
#include "hybris/selected_items.h"
#include "hybris/selection_section.h"
#include "hybris/tag_stored_data.h"
#include "legacy_env/install_paths.h"
#include "protocol/reply_envelope.h"

namespace parvex {
namespace {

xml::Document AnswerRun(const Platform& platform, const QuoteBuilderRun& run, std::string_view projectName) {
  return run.ok ? BuildHybrisTagDocument(platform, run.outputFile, projectName) : MakeFailedReply("User Canceled");
}

xml::Document AnswerUnknownBinPath() { return MakeFailedReply("System Error: Unable to read BinPath"); }

/// The family that a tag's PDSG begins with; "XXX", deliberately, for one too short to tell.
std::string_view BrandCode(std::string_view pdsg) { return LengthInUnits(pdsg) >= 3 ? FirstUnits(pdsg, 3) : "XXX"; }

/// A tag's first base unit, as the tag's section describes it.
std::shared_ptr<BaseUnit> ReadFirstBaseUnit(const Platform& platform, std::string_view qbOutputFile,
                                            std::int32_t tagIndex) {
  SelectionSection section(platform, qbOutputFile, "PartNumber", tagIndex);
  auto unit = std::make_shared<BaseUnit>();
  unit->description = section.Text("Description");
  unit->quantity = std::to_string(section.Integer("Quantity", 1));
  unit->masterPrice = section.Text("MasterPrice");
  unit->typeOfSale = section.Text("TypeOfSale");
  unit->supplier = MapBrand(section.Text("Supplier"), unit->typeOfSale);
  unit->ton = section.Text("Ton");
  unit->cfm = section.Text("CFM");
  unit->preOrder = section.Text("PreOrderReq", "N");
  unit->eto = section.Text("ETO");
  for (std::size_t i = 0; i < unit->attributes.size(); ++i) {
    unit->attributes[i] = section.Text("Attribute" + std::to_string(i + 1));
  }
  unit->baseUnit1 = section.Text("BaseUnit1");
  unit->baseUnit2 = section.Text("BaseUnit2");
  return unit;
}

void AppendTag(const Platform& platform, const xml::Document& document, std::string_view qbOutputFile,
               const SelectedTag& tag, std::int32_t tagIndex, bool isLastTag) {
  const TagElement element = AppendTagElement(document);
  element.pdsg.SetText(tag.pdsg);
  element.markFor.SetText(tag.markFor);
  const std::string_view brandCode = BrandCode(tag.pdsg);
  const TagStoredData stored = ReadTagStoredData(platform, document, element, tag.blobFileName, brandCode, isLastTag);
  element.buildVersion.SetText(stored.buildVersion);
  element.legacyTagId.SetText(stored.legacyTagId);

  const std::shared_ptr<BaseUnit> first = ReadFirstBaseUnit(platform, qbOutputFile, tagIndex);
  first->partNumber = tag.partNumber;
  first->etoDescription = BuildEtoDescription(platform, qbOutputFile, tagIndex);
  first->sapXml = stored.sapXml;
  const Accessories accessories = ReadAccessories(platform, qbOutputFile, tagIndex);
  const Warranties warranties = ReadWarranties(platform, qbOutputFile, tagIndex);

  // Building marks the accessories that have become base units, so the loose ones are known only afterwards.
  const BaseUnits baseUnits = BuildBaseUnits(platform, first, accessories);
  AttachAccessories(baseUnits, SelectLooseAccessories(accessories));
  AttachWarranties(baseUnits, warranties);
  AppendBaseUnits(platform, document, tagIndex, qbOutputFile, element.baseUnits, baseUnits, brandCode);
}

}  // namespace

xml::Document GetHybrisXML(LegacyLink& link, const xml::Document&) {
  const Platform& platform = link.platform;
  std::string binPath;
  if (!ReadBinPath(platform, binPath)) {
    return AnswerUnknownBinPath();
  }
  return AnswerRun(platform, RunQuoteBuilder(platform, binPath), "");
}

xml::Document GetHybrisXMLNoUI(LegacyLink& link, const xml::Document& command) {
  const Platform& platform = link.platform;
  std::string binPath;
  if (!ReadBinPath(platform, binPath)) {
    return AnswerUnknownBinPath();
  }
  const std::string projectName = SaveUserSelection(platform, command);
  WriteQuoteBuilderInput(platform);
  ClearQuoteBuilderOutput(platform);
  return AnswerRun(platform, RunQuoteBuilderNoUI(platform, binPath), projectName);
}

xml::Document BuildHybrisTagDocument(const Platform& platform, std::string_view qbOutputFile,
                                     std::string_view projectName) {
  const xml::Document document = CreateHybrisDocument(projectName);
  const Tags tags = ReadSelectedTags(platform, qbOutputFile);
  const auto count = static_cast<std::int32_t>(tags.Count());
  for (std::int32_t i = 1; i <= count; ++i) {
    AppendTag(platform, document, qbOutputFile, *tags.At(static_cast<std::size_t>(i)), i, i == count);
  }
  return document;
}

}  // namespace parvex
