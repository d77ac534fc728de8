// The document of an export by a bare Windows program: the ini file is read once, each blob once, the document is made
// by the fewest calls of MSXML and saved. It knows what export/make_selection.py writes and nothing else, and checks
// nothing.
//
//   bare_export_windows TARGET     the selection on drive C, the document into the file TARGET

#include <windows.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>

#include "bench/plain_msxml_calls.h"
#include "codec/bin_encoder.h"

namespace parvex {
namespace {

using bench::Element;
using bench::PlainCalls;
using windows::ComPointer;

constexpr CLSID kDomDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
constexpr IID kDomDocument = {0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

std::string ReadFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary | std::ios::ate);
  std::string bytes(static_cast<std::size_t>(file.tellg()), '\0');
  file.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

std::wstring FromAnsi(std::string_view bytes) {
  std::wstring text(bytes.size(), L'\0');
  text.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                                           text.data(), static_cast<int>(text.size()))));
  return text;
}

using Section = std::unordered_map<std::wstring_view, std::wstring_view>;
using Selection = std::unordered_map<std::wstring_view, Section>;

/// Views into `text`, whose lines end in CR LF.
Selection Parse(std::wstring_view text) {
  Selection selection;
  Section* section = nullptr;
  while (!text.empty()) {
    const std::size_t end = text.find(L"\r\n");
    const std::wstring_view line = text.substr(0, end);
    text.remove_prefix(end + 2);
    if (const std::size_t sign = line.find(L'='); sign != std::wstring_view::npos) {
      section->emplace(line.substr(0, sign), line.substr(sign + 1));
    } else {
      section = &selection[line.substr(1, line.size() - 2)];
    }
  }
  return selection;
}

std::wstring_view ValueOf(const Section& section, const std::wstring& key) {
  const auto found = section.find(key);
  return found == section.end() ? std::wstring_view() : found->second;
}

std::wstring_view NumberOf(std::wstring_view yesOrNo) { return yesOrNo == L"Y" ? L"1" : L"0"; }

/// The value of the first attribute of that name, in a blob whose entries are stored as they are.
std::wstring StoredAttribute(std::string_view blob, std::string_view name) {
  const std::size_t begin = blob.find(std::string(name) + "=\"") + name.size() + 2;
  return FromAnsi(blob.substr(begin, blob.find('"', begin) - begin));
}

struct Component {
  std::wstring_view type, partNumber, quantity, price, description, supplier, typeOfSale, preOrder;
};

void AppendComponent(const PlainCalls& calls, const Element& components, int sequence, const Component& from) {
  const Element component = calls.Append(components.Get(), L"COMPONENT");
  PlainCalls::Set(component, L"SEQUENCE", std::to_wstring(sequence));
  PlainCalls::Set(component, L"TYPE", from.type);
  PlainCalls::Set(component, L"PARTNUMBER", from.partNumber);
  PlainCalls::Set(component, L"QUANTITY", from.quantity);
  PlainCalls::Set(component, L"PRICE", from.price);
  calls.Append(component.Get(), L"DESCRIPTION", from.description);
  const Element attributes = calls.Append(component.Get(), L"ATTRIBUTES_LIST");
  calls.Append(attributes.Get(), L"DELIVERYGROUP");
  calls.Append(attributes.Get(), L"SUPPLIER", from.supplier);
  calls.Append(attributes.Get(), L"TYPEOFSALE", from.typeOfSale);
  calls.Append(attributes.Get(), L"PREORDERREQ", from.preOrder);
}

void AppendComponents(const PlainCalls& calls, const Element& components, const Section& accessories,
                      const Section& warranties) {
  int sequence = 0;
  for (int i = 1;; ++i) {
    const auto get = [&, at = L":" + std::to_wstring(i)](const wchar_t* key) { return ValueOf(accessories, key + at); };
    if (get(L"PartNumber").empty()) {
      break;
    }
    AppendComponent(calls, components, ++sequence,
                    {L"ACCESSORY", get(L"PartNumber"), get(L"Quantity"), get(L"MasterPrice"), get(L"Description"),
                     get(L"Supplier"), get(L"TypeOfSale"), NumberOf(get(L"preorderreq"))});
  }
  for (int i = 1;; ++i) {
    const auto get = [&, at = L":" + std::to_wstring(i)](const wchar_t* key) { return ValueOf(warranties, key + at); };
    if (get(L"Name").empty()) {
      break;
    }
    AppendComponent(calls, components, ++sequence,
                    {L"WARRANTY", get(L"Name"), get(L"Quantity"), get(L"MasterPrice"), get(L"Description"), L"Korvane",
                     L"", NumberOf(get(L"preorderreq"))});
  }
}

void AppendTag(const PlainCalls& calls, const Element& tags, Selection& selection, const std::wstring& number) {
  const Section& section = selection[L"PartNumber" + number];
  const auto get = [&](const wchar_t* key) { return ValueOf(section, key); };
  const std::wstring_view fileName = get(L"FileName");
  const std::string blob = ReadFile(std::string(fileName.begin(), fileName.end()));
  const std::string base64 = EncodeBase64(blob);

  const Element tag = calls.Append(tags.Get(), L"TAG");
  const Element attributes = calls.Append(tag.Get(), L"ATTRIBUTES_LIST");
  calls.Append(attributes.Get(), L"BUILDVERSION", StoredAttribute(blob, "TagVersion"));
  calls.Append(attributes.Get(), L"MARKFOR", get(L"MarkFor"));
  calls.Append(attributes.Get(), L"PDSG", get(L"PDSG"));
  calls.Append(attributes.Get(), L"LEGACY_TAGID", StoredAttribute(blob, "lTagID"));
  calls.AppendCData(calls.Append(attributes.Get(), L"BLOB"), std::wstring(base64.begin(), base64.end()));

  const Element unit = calls.Append(calls.Append(tag.Get(), L"BASEUNITS").Get(), L"BASEUNIT");
  PlainCalls::Set(unit, L"PARTNUMBER", get(L"PartNumber"));
  PlainCalls::Set(unit, L"ID", get(L"PartNumber").substr(0, 3));
  PlainCalls::Set(unit, L"QUANTITY", get(L"Quantity"));
  PlainCalls::Set(unit, L"PRICE", get(L"MasterPrice"));
  PlainCalls::Set(unit, L"SEQUENCE", L"1");
  calls.Append(calls.Append(unit.Get(), L"EXTENDED_DESCRIPTIONS").Get(), L"DESCRIPTION", get(L"Description"));
  const Element list = calls.Append(unit.Get(), L"ATTRIBUTES_LIST");
  calls.Append(list.Get(), L"DELIVERYGROUP");
  calls.Append(list.Get(), L"SUPPLIER", get(L"Supplier"));
  calls.Append(list.Get(), L"TYPEOFSALE", get(L"TypeOfSale"));
  calls.Append(list.Get(), L"TON", get(L"Ton"));
  const double cfm = std::stod(std::wstring(get(L"CFM")));
  calls.Append(list.Get(), L"CFM", std::to_wstring(static_cast<int>(std::floor(cfm + 0.5))));
  for (const wchar_t* slot : {L"1", L"2", L"3", L"4", L"5"}) {
    calls.Append(list.Get(), std::wstring(L"ATTRIBUTE") + slot, ValueOf(section, std::wstring(L"Attribute") + slot));
  }
  calls.Append(list.Get(), L"PREORDERREQ", NumberOf(get(L"PreOrderReq")));
  PlainCalls::Set(calls.Append(list.Get(), L"ETO", NumberOf(get(L"ETO"))), L"ETODESCRIPTION", L"");
  AppendComponents(calls, calls.Append(unit.Get(), L"COMPONENTS"), selection[L"Accessory" + number],
                   selection[L"Warranty" + number]);
  calls.Append(unit.Get(), L"SAP_XML");
}

int Export(std::string_view target) {
  ComPointer<IXMLDOMDocument> document;
  if (FAILED(CoCreateInstance(kDomDocument30, nullptr, CLSCTX_INPROC_SERVER, kDomDocument,
                              reinterpret_cast<void**>(document.Out())))) {
    std::fputs("MSXML 3 cannot be created\n", stderr);
    return 1;
  }
  const std::wstring text = FromAnsi(ReadFile("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini"));
  Selection selection = Parse(text);

  const PlainCalls calls(document);
  const Element project = calls.Append(document.Get(), L"PROJECT");
  const Element attributes = calls.Append(project.Get(), L"ATTRIBUTES_LIST");
  PlainCalls::Set(calls.Append(attributes.Get(), L"JOB"), L"LEGACY_PROJECTNAME", L"");
  for (const wchar_t* name : {L"CUSTOMER", L"SALESPERSON", L"BRAND"}) {
    calls.Append(attributes.Get(), name);
  }
  const Element tags = calls.Append(project.Get(), L"TAGS");
  for (int i = 1; selection.contains(L"PartNumber" + std::to_wstring(i)); ++i) {
    AppendTag(calls, tags, selection, std::to_wstring(i));
  }

  windows::Variant file;
  V_VT(&file.Get()) = VT_BSTR;
  V_BSTR(&file.Get()) = windows::Bstr(target).Detach();
  return SUCCEEDED(document->save(file.Get())) ? 0 : 1;
}

}  // namespace
}  // namespace parvex

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: bare_export_windows TARGET\n", stderr);
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int result = parvex::Export(argv[1]);
  CoUninitialize();
  return result;
}
