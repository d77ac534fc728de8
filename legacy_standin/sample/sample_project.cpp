#include "legacy_standin/sample/sample_project.h"

#include "legacy_standin/projects/stored_tag.h"
#include "seams/xml.h"

namespace parvex::standin {
namespace {

constexpr const char* kTagVersion = "4.71.0";

/// The configuration document that goes to the order system, as the units carry it under two spellings of its name.
std::string SapConfiguration(const std::string& element, const std::string& material,
                             const std::vector<std::pair<std::string, std::string>>& characteristics) {
  const xml::Document document = xml::Document::New();
  const xml::Node root = document.Append(document.CreateElement(element));
  xml::AppendElement(root, "MATERIAL", material);
  for (const auto& [name, value] : characteristics) {
    const xml::Node node = xml::AppendElement(root, "CHARACTERISTIC");
    node.SetAttribute("NAME", name);
    node.SetAttribute("VALUE", value);
  }
  return root.Xml();
}

StoredData TagArchive(const Unit& unit, StoredData::Place place, const std::string& sapConfiguration = "") {
  return MakeTagArchive(unit, place, kTagVersion, sapConfiguration);
}

/// The archive of a unit that is kept by its order configuration alone.
StoredData SapArchive(const std::string& fileName, StoredData::Place place, const std::string& configuration) {
  return {fileName, place, {{"Config.xml", configuration, true}}};
}

/// Three base units: the unit itself, an accessory that is marked as the second one, and an accessory with stored data
/// of its own. Loose accessories and warranties name the base unit that they belong to.
Unit Rooftop() {
  Unit unit;
  unit.tagId = 1101;
  unit.keys = {{"PartNumber", "RTUA120-460"},
               {"PDSG", "RTU47"},
               {"MarkFor", "RTU-1"},
               {"Description", "Rooftop unit, 10 ton, supply section"},
               {"Quantity", "2"},
               {"MasterPrice", "18450.00"},
               {"Supplier", "Korvane"},
               {"TypeOfSale", "1A"},
               {"Ton", "10"},
               {"CFM", "4000"},
               {"PreOrderReq", "Y"},
               {"ETO", "N"},
               {"Attribute1", "460/3/60"},
               {"Attribute2", "Downflow"},
               {"BaseUnit1", "BU1"}};
  unit.stored = TagArchive(unit, StoredData::Place::Temp);
  unit.extendedDescription = {"Double-wall construction", "Hinged access doors"};
  unit.accessories = {{{{"PartNumber", "ECON-120"},
                        {"Description", "Economizer, enthalpy control"},
                        {"MasterPrice", "1275.00"},
                        {"Quantity", "2"},
                        {"TypeOfSale", "1A"},
                        {"Supplier", "Korvane"},
                        {"preorderreq", "N"}},
                       {}},
                      {{{"PartNumber", "RTUR120-460"},
                        {"Description", "Rooftop unit, energy recovery section"},
                        {"MasterPrice", "7300.00"},
                        {"Quantity", "2"},
                        {"TypeOfSale", "1B"},
                        {"Supplier", "Korvane"},
                        {"Attribute1", "Enthalpy wheel"},
                        {"BaseUnit1", "BU2"}},
                       {}},
                      {{{"PartNumber", "FLTR-M13"},
                        {"Description", "Filter set for the recovery section"},
                        {"MasterPrice", "340.00"},
                        {"Quantity", "4"},
                        {"TypeOfSale", "2C"},
                        {"Supplier", ""},
                        {"BaseUnit2", "UNIT2"},
                        {"preorderreq", "Y"}},
                       {}},
                      {{{"PartNumber", "KDC-900"},
                        {"Description", "Field controller with display"},
                        {"MasterPrice", "2110.00"},
                        {"Quantity", "1"},
                        {"TypeOfSale", "9"},
                        {"Supplier", "qzn"}},
                       SapArchive("kdc900.blb", StoredData::Place::Project,
                                  SapConfiguration("SAPDATA", "KDC-900", {{"DISPLAY", "COLOR"}, {"PORTS", "4"}}))}};
  unit.warranties = {{{"Name", "WCOMP5"},
                      {"Quantity", "2"},
                      {"Description", "Compressor warranty, 5 years"},
                      {"MasterPrice", "615.00"},
                      {"BaseUnit2", "UNIT"},
                      {"preorderreq", "N"}},
                     {{"Name", "WWHEEL2"},
                      {"Quantity", "2"},
                      {"Description", "Recovery wheel warranty, 2 years"},
                      {"MasterPrice", "180.00"},
                      {"BaseUnit2", "UNIT2"},
                      {"preorderreq", "Y"}}};
  return unit;
}

/// Engineered to order, with the lines and the blanket items that come with it.
Unit AirHandler() {
  Unit unit;
  unit.tagId = 1102;
  unit.keys = {{"PartNumber", "AHEC30-SPL"},
               {"PDSG", "AHE47"},
               {"MarkFor", "AHU-3"},
               {"Description", "Custom air handler, 30 in. modules"},
               {"Quantity", "1"},
               {"MasterPrice", "64210.50"},
               {"Supplier", "Tessel"},
               {"TypeOfSale", "2X"},
               {"CFM", "14250.5"},
               {"PreOrderReq", "Y"},
               {"ETO", "Y"},
               {"Attribute1", "Stainless steel drain pans"}};
  unit.stored = TagArchive(unit, StoredData::Place::Project);
  unit.extendedDescription = {"Knock-down shipment in 6 sections", "Factory witness test"};
  unit.etoDescription = {"Casing height limited to 2,900 mm", "Coil connections on the left-hand side",
                         "Vibration isolation for a hospital roof"};
  unit.accessories = {{{{"PartNumber", "AHE-UVC"},
                        {"Description", "UV-C lamp rack"},
                        {"MasterPrice", "3980.00"},
                        {"Quantity", "1"},
                        {"TypeOfSale", "2X"},
                        {"Supplier", "Tessel"},
                        {"preorderreq", "Y"}},
                       {}}};
  unit.blanketItems = {{{"PartNumber", "BQ-ENG-40"},
                        {"Quantity", "40"},
                        {"MasterPrice", "95.00"},
                        {"Description", "Engineering hours"},
                        {"Supplier", "Tessel"},
                        {"TypeOfSale", "2X"},
                        {"preorderreq", "1"}},
                       {{"PartNumber", "BQ-TEST"},
                        {"Quantity", "1"},
                        {"MasterPrice", "5200.00"},
                        {"Description", "Witness test, two visitors"},
                        {"Supplier", "Tessel"},
                        {"TypeOfSale", "2X"},
                        {"preorderreq", "0"}}};
  return unit;
}

/// Its order configuration stands inside the stored tag document.
Unit Chiller() {
  Unit unit;
  unit.tagId = 1103;
  unit.keys = {{"PartNumber", "XRCW250-400"},
               {"PDSG", "XRC47"},
               {"MarkFor", "CH-1"},
               {"Description", "Water-cooled chiller, 250 ton"},
               {"Quantity", "1"},
               {"MasterPrice", "118900.00"},
               {"Supplier", ""},
               {"TypeOfSale", "9K"},
               {"Ton", "250"},
               {"PreOrderReq", "N"},
               {"ETO", "N"}};
  unit.stored = TagArchive(unit, StoredData::Place::Project,
                           SapConfiguration("SapData", "XRCW250", {{"VOLTAGE", "400"}, {"STARTER", "VSD"}}));
  unit.accessories = {{{{"PartNumber", "XRC-FLOW"},
                        {"Description", "Flow switch kit"},
                        {"MasterPrice", "420.00"},
                        {"Quantity", "2"},
                        {"TypeOfSale", "9K"},
                        {"Supplier", ""},
                        {"preorderreq", "N"}},
                       {}}};
  unit.warranties = {{{"Name", "WCHILL10"},
                      {"Quantity", "1"},
                      {"Description", "Chiller warranty, 10 years parts and labor"},
                      {"MasterPrice", "9400.00"},
                      {"preorderreq", "N"}}};
  return unit;
}

/// Nothing was stored for it.
Unit HeatPump() {
  Unit unit;
  unit.tagId = 1104;
  unit.keys = {{"PartNumber", "WSHH036-1"},
               {"PDSG", "WSH47"},
               {"MarkFor", "HP-7"},
               {"Description", "Water-source heat pump, horizontal, 3 ton"},
               {"Quantity", "12"},
               {"MasterPrice", "2890.00"},
               {"Supplier", "Korvane"},
               {"TypeOfSale", "1A"},
               {"Ton", "3"},
               {"CFM", "1200"},
               {"PreOrderReq", "N"},
               {"ETO", "N"}};
  return unit;
}

/// Kept by its order configuration alone, of a family that the project database knows under other keys.
Unit SplitSystem() {
  Unit unit;
  unit.tagId = 1105;
  unit.keys = {{"PartNumber", "SD3024-1"},
               {"PDSG", "SD347"},
               {"MarkFor", "SS-2"},
               {"Description", "Ducted split system, 2 ton"},
               {"Quantity", "3"},
               {"MasterPrice", "3325.00"},
               {"Supplier", "Tessel"},
               {"TypeOfSale", "2A"},
               {"Ton", "2"},
               {"CFM", "799.5"},
               {"PreOrderReq", "N"},
               {"ETO", "N"}};
  unit.stored =
      SapArchive("tag1105.blb", StoredData::Place::Temp, SapConfiguration("SAPDATA", "SD3024", {{"LINESET", "25FT"}}));
  return unit;
}

/// Text that has to be escaped, and letters beyond ASCII wherever a user may type.
Unit FanCoil() {
  Unit unit;
  unit.tagId = 1106;
  unit.keys = {{"PartNumber", "FCBV06-\"H\""},
               {"PDSG", "FCB47"},
               {"MarkFor", "Küche & Café <EG>"},
               {"Description", "Gebläsekonvektor 6\" & Ventilpaket, Größe 06"},
               {"Quantity", "8"},
               {"MasterPrice", "1049.90"},
               {"Supplier", "Korvane"},
               {"TypeOfSale", "1A"},
               {"CFM", "612.5"},
               {"PreOrderReq", "N"},
               {"ETO", "N"},
               {"Attribute1", "Schall <= 35 dB(A)"},
               {"Attribute2", "230 V ± 10 %"}};
  unit.stored = TagArchive(unit, StoredData::Place::Temp);
  unit.extendedDescription = {"Farbe: weiß", "Préfiltre G4"};
  unit.accessories = {{{{"PartNumber", "FCB-V3"},
                        {"Description", "3-Wege-Ventil ¾\", <kvs 2.5>"},
                        {"MasterPrice", "164.00"},
                        {"Quantity", "8"},
                        {"TypeOfSale", "2"},
                        {"Supplier", " Tessel "},
                        {"preorderreq", "N"}},
                       {}}};
  unit.warranties = {{{"Name", "W\"FULL\"3"},
                      {"Quantity", "8"},
                      {"Description", "Vollgarantie 3 Jahre – Teile & Arbeit"},
                      {"MasterPrice", "75.00"},
                      {"preorderreq", "Y"}}};
  return unit;
}

}  // namespace

std::vector<Unit> SampleUnits() { return {Rooftop(), AirHandler(), Chiller(), HeatPump(), SplitSystem(), FanCoil()}; }

}  // namespace parvex::standin
