#include "hybris/export_driver.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hybris/base_unit_elements.h"
#include "hybris/base_units.h"
#include "hybris/hybris_document.h"
#include "hybris/quote_builder_exchange.h"
#include "hybris/run_findings.h"
#include "hybris/selected_items.h"
#include "hybris/selected_tag.h"
#include "hybris/tag_stored_data.h"
#include "legacy_env/hand_over_lock.h"
#include "legacy_env/install_paths.h"
#include "protocol/reply_envelope.h"

namespace parvex {
namespace {

xml::Document AnswerRun(const Platform& platform, const QuoteBuilderRun& run, std::string_view projectName) {
  return run.ok ? BuildHybrisTagDocument(platform, run.outputFile, projectName) : MakeFailedReply("User Canceled");
}

xml::Document AnswerUnknownBinPath() { return MakeFailedReply("System Error: Unable to read BinPath"); }

/// A tag's first base unit, as the tag's section describes it.
std::shared_ptr<BaseUnit> ReadFirstBaseUnit(const SelectedTag& tag) {
  SelectionSection section = tag.Section("PartNumber");
  auto unit = std::make_shared<BaseUnit>();
  unit->partNumber = tag.partNumber;
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

void AppendTag(const xml::Document& document, const SelectedTag& tag, bool isLastTag, BlanketRoom& blanketRoom) {
  const TagElement element = AppendTagElement(document);
  element.pdsg.SetText(tag.pdsg);
  element.markFor.SetText(tag.markFor);
  const TagStoredData stored = ReadTagStoredData(tag, element, isLastTag);
  element.buildVersion.SetText(stored.buildVersion);
  element.legacyTagId.SetText(stored.legacyTagId);

  const std::shared_ptr<BaseUnit> first = ReadFirstBaseUnit(tag);
  first->etoDescription = BuildEtoDescription(tag);
  first->sapXml = stored.sapXml;
  const Accessories accessories = ReadAccessories(tag);
  const Warranties warranties = ReadWarranties(tag);

  // Building marks the accessories that have become base units, so the loose ones are known only afterwards.
  const BaseUnits baseUnits = BuildBaseUnits(tag.Machine(), first, accessories, tag.namedBlobs.get());
  AttachAccessories(baseUnits, SelectLooseAccessories(accessories));
  AttachWarranties(baseUnits, warranties);
  AppendBaseUnits(tag, element.baseUnits, baseUnits, blanketRoom);
}

/// Tells of the tags as they are read.
class ToldTags {
 public:
  ToldTags(Progress* progress, std::size_t count) : progress_(progress), count_(count) {}
  ~ToldTags() {
    if (number_ > 0) {
      progress_->HasReadTags();
    }
  }
  ToldTags(const ToldTags&) = delete;
  ToldTags& operator=(const ToldTags&) = delete;

  void Next(const std::string& name) {
    if (progress_ != nullptr) {
      progress_->ReadsTag(++number_, count_, name);
    }
  }

 private:
  Progress* progress_;
  const std::size_t count_;
  std::size_t number_ = 0;
};

}  // namespace

xml::Document GetHybrisXML(LegacyLink& link, const xml::Document&) {
  const Platform& platform = link.platform;
  std::string binPath;
  if (!ReadBinPath(platform, binPath)) {
    return AnswerUnknownBinPath();
  }
  const HandOverLock alone(platform, FolderOfOutput(binPath), HandOverLock::Run::WithWindows);
  const std::optional<std::string> before = OutputBefore(platform, binPath);
  const QuoteBuilderRun run = RunQuoteBuilder(platform, binPath);
  CheckRun(platform, run, before);
  return AnswerRun(platform, run, "");
}

xml::Document GetHybrisXMLNoUI(LegacyLink& link, const xml::Document& command) {
  const Platform& platform = link.platform;
  std::string binPath;
  if (!ReadBinPath(platform, binPath)) {
    return AnswerUnknownBinPath();
  }
  const HandOverLock alone(platform, FolderOfOutput(binPath), HandOverLock::Run::Alone);
  const std::string projectName = SaveUserSelection(platform, command);
  WriteQuoteBuilderInput(platform);
  ClearQuoteBuilderOutput(platform);
  const QuoteBuilderRun run = RunQuoteBuilderNoUI(platform, binPath);
  CheckRun(platform, run);
  CheckSelection(platform, run, AskedFor(command, projectName));
  return AnswerRun(platform, run, projectName);
}

xml::Document BuildHybrisTagDocument(const Platform& platform, std::string_view qbOutputFile,
                                     std::string_view projectName) {
  // A document and a look for a file "Tag" for each tag.
  const std::shared_ptr<void> documents = xml::ExpectManyDocuments();
  const std::shared_ptr<void> looks = platform.files->ExpectManyLooks();
  const std::shared_ptr<void> oneVersion = platform.privateProfile->Hold(qbOutputFile);
  const xml::Document document = CreateHybrisDocument(projectName);
  const std::vector<SelectedTag> tags = ReadSelectedTags(platform, qbOutputFile);
  BlanketRoom blanketRoom;
  ToldTags told(platform.progress, tags.size());
  for (const SelectedTag& tag : tags) {
    told.Next(tag.markFor);
    AppendTag(document, tag, &tag == &tags.back(), blanketRoom);
  }
  return document;
}

}  // namespace parvex
