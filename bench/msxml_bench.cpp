// What the XML seam adds to MSXML: the base units of a quote document made through the seam, beside the same document
// by the fewest calls, and beside reading its markup. To be run on Windows, or under Wine.
//
//   msxml_bench [UNITS] [COMPONENTS OF EACH] [ROUNDS]

#include <msxml2.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include "adapters/msxml/msxml_document.h"
#include "bench/plain_msxml_calls.h"
#include "hybris/base_unit_elements.h"
#include "hybris/counter16.h"
#include "hybris/hybris_document.h"

namespace parvex {
namespace {

using bench::Element;
using bench::PlainCalls;
using windows::Bstr;
using windows::ComPointer;

Accessories SomeAccessories(int count) {
  Accessories accessories;
  for (int i = 1; i <= count; ++i) {
    auto accessory = std::make_shared<Accessory>();
    accessory->partNumber = "CRACC" + std::to_string(i);
    accessory->description = "Accessory <" + std::to_string(i) + "> of a unit";
    accessory->masterPrice = std::to_string(i) + ".50";
    accessory->quantity = "1";
    accessory->typeOfSale = "2B";
    accessory->supplier = "Tessel";
    accessory->preOrder = "Y";
    accessories.Append(std::move(accessory));
  }
  return accessories;
}

xml::Document ThroughTheSeam(int units, const Accessories& accessories) {
  const xml::Document document = CreateHybrisDocument("P");
  const TagElement tag = AppendTagElement(document);
  for (int i = 0; i < units; ++i) {
    const BaseUnitElement unit = NewBaseUnitElement(tag.baseUnits);
    Counter16 sequence("components");
    AppendAccessoryComponents(unit.components, accessories, sequence);
  }
  return document;
}

void PlainComponent(const PlainCalls& calls, const Element& components, int number) {
  const std::wstring digits = std::to_wstring(number);
  const Element component = calls.Append(components.Get(), L"COMPONENT");
  PlainCalls::Set(component, L"SEQUENCE", digits);
  calls.Append(component.Get(), L"DESCRIPTION", L"Accessory <" + digits + L"> of a unit");
  const Element attributes = calls.Append(component.Get(), L"ATTRIBUTES_LIST");
  calls.Append(attributes.Get(), L"DELIVERYGROUP");
  calls.Append(attributes.Get(), L"SUPPLIER", L"Tessel");
  calls.Append(attributes.Get(), L"TYPEOFSALE", L"2B");
  calls.Append(attributes.Get(), L"PREORDERREQ", L"1");
  PlainCalls::Set(component, L"TYPE", L"ACCESSORY");
  PlainCalls::Set(component, L"PARTNUMBER", L"CRACC" + digits);
  PlainCalls::Set(component, L"QUANTITY", L"1");
  PlainCalls::Set(component, L"PRICE", digits + L".50");
}

xml::Document ByPlainCalls(int units, int components) {
  const xml::Document document = CreateHybrisDocument("P");
  const TagElement tag = AppendTagElement(document);
  const ComPointer<IXMLDOMDocument2> dom = windows::ComDocument(document);
  const PlainCalls calls(ComPointer<IXMLDOMDocument>::Share(dom.Get()));
  ComPointer<IXMLDOMNode> baseUnits;
  dom->selectSingleNode(Bstr("//BASEUNITS").Get(), baseUnits.Out());
  for (int i = 0; i < units; ++i) {
    const Element unit = calls.Append(baseUnits.Get(), L"BASEUNIT");
    calls.Append(unit.Get(), L"EXTENDED_DESCRIPTIONS");
    const Element attributes = calls.Append(unit.Get(), L"ATTRIBUTES_LIST");
    for (const wchar_t* name : {L"DELIVERYGROUP", L"SUPPLIER", L"TYPEOFSALE", L"TON", L"CFM", L"ATTRIBUTE1",
                                L"ATTRIBUTE2", L"ATTRIBUTE3", L"ATTRIBUTE4", L"ATTRIBUTE5", L"PREORDERREQ", L"ETO"}) {
      calls.Append(attributes.Get(), name);
    }
    const Element list = calls.Append(unit.Get(), L"COMPONENTS");
    calls.Append(unit.Get(), L"SAP_XML");
    for (int number = 1; number <= components; ++number) {
      PlainComponent(calls, list, number);
    }
  }
  return document;
}

xml::Document ByMarkup(const Bstr& markup) {
  const xml::Document document = xml::Document::New();
  VARIANT_BOOL loaded = VARIANT_FALSE;
  windows::ComDocument(document)->loadXML(markup.Get(), &loaded);
  return document;
}

/// Milliseconds.
double Timed(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

int Run(int units, int components, int rounds) {
  const Accessories accessories = SomeAccessories(components);
  const std::string markup = ThroughTheSeam(units, accessories).Xml();
  if (ByPlainCalls(units, components).Xml() != markup) {
    std::puts("the two ways make different documents");
    return 1;
  }
  const Bstr wide(markup);
  double seam = 1e9;
  double plain = 1e9;
  double reading = 1e9;
  double writing = 1e9;
  for (int i = 0; i < rounds; ++i) {
    xml::Document made;
    seam = std::min(seam, Timed([&] { made = ThroughTheSeam(units, accessories); }));
    writing = std::min(writing, Timed([&] { (void)made.Xml(); }));
    plain = std::min(plain, Timed([&] { ByPlainCalls(units, components); }));
    reading = std::min(reading, Timed([&] { ByMarkup(wide); }));
  }
  std::printf("%d units of %d components, ms: seam %.1f, plain calls %.1f, reading markup %.1f, writing it %.1f\n",
              units, components, seam, plain, reading, writing);
  std::printf("seam beside plain calls: %.2f\n", seam / plain);
  return 0;
}

}  // namespace
}  // namespace parvex

int main(int argc, char** argv) {
  const auto number = [&](int at, int otherwise) { return argc > at ? std::atoi(argv[at]) : otherwise; };
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int result = parvex::Run(number(1, 1000), number(2, 30), number(3, 3));
  CoUninitialize();
  return result;
}
