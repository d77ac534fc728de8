#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <string>

#include "adapters/msxml/msxml_pointer.h"
#include "adapters/windows/machine.h"
#include "adapters/windows/wide_text.h"
#include "formats/zip/zip_writer.h"
#include "hybris/export_driver.h"
#include "seams/xml.h"

// What a whole export asks of MSXML. This program holds the adapter a second time, built with its calls counted.

namespace parvex::test {
namespace {

/// COM, and a folder of its own in the system's temporary one, without a final backslash.
class QuoteDocumentCalls : public testing::Test {
 protected:
  QuoteDocumentCalls() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    folder_ = windows::Narrow(temporary) + "parvex-calls-" + std::to_string(GetCurrentProcessId());
    machine_.GetFiles().CreateFolder(folder_);
  }
  ~QuoteDocumentCalls() override {
    machine_.GetFiles().RemoveFolder(folder_);
    CoUninitialize();
  }

  std::string Path(const std::string& name) const { return folder_ + "\\" + name; }

  void WriteBlob(const std::string& name) {
    ZipWriter archive;
    archive.Add("Tag", "<Tag><Product TagVersion=\"3.9N\" lTagID=\"7\"/><SapData>s</SapData></Tag>\r\n", true);
    machine_.GetFiles().Replace(Path(name), archive.Finish());
  }

  windows::Machine machine_;

 private:
  std::string folder_;
};

/// Lines of one tag, as the quote builder writes them.
std::string TagLines(int number, int accessories, const std::string& blob) {
  const std::string tag = std::to_string(number);
  std::string lines = "[PartNumber" + tag + "]\r\nPartNumber=38AUZ" + tag + "\r\nPDSG=38AQ1\r\nMarkFor=RTU-" + tag +
                      "\r\nFileName=" + blob +
                      "\r\nDescription=A unit & its curb\r\nQuantity=2\r\nMasterPrice=12.5\r\n"
                      "Supplier=Korvane\r\nTypeOfSale=1A\r\nTon=12.5\r\nCFM=4999.6\r\nPreOrderReq=N\r\nETO=N\r\n"
                      "Attribute1=a1\r\nAttribute2=a2\r\nBaseUnit1=BU1\r\nBaseUnit2=\r\n[Accessory" +
                      tag + "]\r\n";
  for (int i = 1; i <= accessories; ++i) {
    const std::string at = ":" + std::to_string(i) + "=";
    lines += "PartNumber" + at + "CRACC\r\nDescription" + at + "An accessory <of> a unit\r\nMasterPrice" + at +
             "1.5\r\nQuantity" + at + "1\r\nTypeOfSale" + at + "2B\r\nSupplier" + at + "Tessel\r\nBaseUnit2" + at +
             "BASE1\r\npreorderreq" + at + "Y\r\n";
  }
  return lines + "[Warranty" + tag + "]\r\nName:1=W5Y\r\nQuantity:1=1\r\nDescription:1=Five years\r\nMasterPrice:1=99" +
         "\r\nBaseUnit2:1=BASE1\r\npreorderreq:1=N\r\n";
}

/// Counts what an export of so many tags asks, its markup included, by the elements that it makes.
struct Asked {
  double anElement;
  std::size_t elements;
};

Asked AskedByExport(const Platform& platform, const std::string& selection) {
  const unsigned long long before = xml::msxmlCalls;
  const xml::Document document = BuildHybrisTagDocument(platform, selection, "P");
  const std::string markup = document.Xml();
  const unsigned long long calls = xml::msxmlCalls - before;
  const std::size_t elements = document.All("//*").size();
  std::printf("%zu elements, %llu calls, %.2f an element\n", elements, calls,
              static_cast<double>(calls) / static_cast<double>(elements));
  return {static_cast<double>(calls) / static_cast<double>(elements), elements};
}

TEST_F(QuoteDocumentCalls, AreAtMostSixAnElement) {
  constexpr int kTags = 5;
  constexpr int kAccessories = 30;
  std::string selection = "[Header]\r\nAction=OK\r\n";
  for (int number = 1; number <= kTags; ++number) {
    const std::string blob = "tag" + std::to_string(number) + ".blb";
    WriteBlob(blob);
    selection += TagLines(number, kAccessories, Path(blob));
  }
  machine_.GetFiles().Replace(Path("QBOutput.ini"), selection);
  const Asked asked = AskedByExport(machine_.AsPlatform(), Path("QBOutput.ini"));
  EXPECT_GE(asked.elements, kTags * (kAccessories + 1) * 7u);
  EXPECT_LE(asked.anElement, 6);
  EXPECT_GE(asked.anElement, 2) << "an element is made and appended, at least: is anything counted?";
}

}  // namespace
}  // namespace parvex::test
