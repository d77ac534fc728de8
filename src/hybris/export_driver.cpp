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
std::shared_ptr<BaseUnitCls> ReadFirstBaseUnit(const Platform& platform, std::string_view qbOutputFile,
                                               std::int32_t tagIndex) {
  SelectionSection section(platform, qbOutputFile, "PartNumber", tagIndex);
  auto unit = std::make_shared<BaseUnitCls>();
  unit->Description = section.Text("Description");
  unit->Quantity = std::to_string(section.Integer("Quantity", 1));
  unit->MasterPrice = section.Text("MasterPrice");
  unit->TypeOfSale = section.Text("TypeOfSale");
  unit->Supplier = MapBrand(section.Text("Supplier"), unit->TypeOfSale);
  unit->Ton = section.Text("Ton");
  unit->CFM = section.Text("CFM");
  unit->preorderreq = section.Text("PreOrderReq", "N");
  unit->ETO = section.Text("ETO");
  unit->Attribute1 = section.Text("Attribute1");
  unit->Attribute2 = section.Text("Attribute2");
  unit->Attribute3 = section.Text("Attribute3");
  unit->Attribute4 = section.Text("Attribute4");
  unit->Attribute5 = section.Text("Attribute5");
  unit->BaseUnit1 = section.Text("BaseUnit1");
  unit->BaseUnit2 = section.Text("BaseUnit2");
  return unit;
}

void AppendTag(const Platform& platform, const xml::Document& document, std::string_view qbOutputFile,
               const TagCls& tag, std::int32_t tagIndex, bool isLastTag) {
  const TagElement element = AppendTagElement(document);
  element.pdsg.SetText(tag.PDSG);
  element.markFor.SetText(tag.MarkFor);
  const std::string_view brandCode = BrandCode(tag.PDSG);
  const TagStoredData stored = ReadTagStoredData(platform, document, element, tag.BlobFileName, brandCode, isLastTag);
  element.buildVersion.SetText(stored.buildVersion);
  element.legacyTagId.SetText(stored.legacyTagId);

  const std::shared_ptr<BaseUnitCls> first = ReadFirstBaseUnit(platform, qbOutputFile, tagIndex);
  first->PartNumber = tag.PartNumber;
  first->ETODescription = BuildEtoDescription(platform, qbOutputFile, tagIndex);
  first->SAPXml = stored.sapXml;
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
