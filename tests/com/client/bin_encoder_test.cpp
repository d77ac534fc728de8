#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

#include "parvex_idl.h"
#include "tests/com/com_session.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

class BinEncoder : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::remove(path); }
  void TearDown() override { std::filesystem::remove(path); }

  std::string Encoded(SAFEARRAY* bytes) {
    Bstr base64;
    EXPECT_EQ(encoder->EncodeArr(&bytes, base64.Out()), S_OK);
    return base64.Text();
  }
  /// The decoded bytes; their array starts at 0.
  std::string Decoded(std::string_view base64) {
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(encoder->DecodeArr(Bstr(base64).Get(), &array), S_OK);
    return TextOfBytes(array);
  }
  /// The bytes of an array that starts at 0, which is destroyed.
  static std::string TextOfBytes(SAFEARRAY* array) {
    LONG lower = -1;
    LONG upper = -99;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    EXPECT_EQ(lower, 0);
    char* data = nullptr;
    SafeArrayAccessData(array, reinterpret_cast<void**>(&data));
    std::string bytes(data, static_cast<std::size_t>(upper - lower + 1));
    SafeArrayUnaccessData(array);
    SafeArrayDestroy(array);
    return bytes;
  }
  static SAFEARRAY* Bytes(std::string_view bytes, LONG lower = 0) {
    SAFEARRAYBOUND bound = {static_cast<ULONG>(bytes.size()), lower};
    SAFEARRAY* array = SafeArrayCreate(VT_UI1, 1, &bound);
    void* data = nullptr;
    SafeArrayAccessData(array, &data);
    if (!bytes.empty()) {
      std::memcpy(data, bytes.data(), bytes.size());
    }
    SafeArrayUnaccessData(array);
    return array;
  }

  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("parvex-com-" + std::to_string(GetCurrentProcessId()) + ".bin");
  const Bstr fileName{path.string()};
  const ComPointer<IcBinEncoder> encoder = Make<cBinEncoder, IcBinEncoder>();
};

TEST_F(BinEncoder, TextsTravelThereAndBack) {
  Bstr base64;
  ASSERT_EQ(encoder->Encode(Bstr("Man").Get(), base64.Out()), S_OK);
  EXPECT_EQ(base64.Text(), "TWFu");
  Bstr text;
  ASSERT_EQ(encoder->Decode(base64.Get(), text.Out()), S_OK);
  EXPECT_EQ(text.Text(), "Man");
}

TEST_F(BinEncoder, EmptyTextsGiveEmptyTexts) {
  const Bstr allocated("");
  for (BSTR empty : {static_cast<BSTR>(nullptr), allocated.Get()}) {
    Bstr text;
    ASSERT_EQ(encoder->Encode(empty, text.Out()), S_OK);
    EXPECT_EQ(text.Text(), "");
    ASSERT_EQ(encoder->Decode(empty, text.Out()), S_OK);
    EXPECT_EQ(text.Text(), "");
  }
}

TEST_F(BinEncoder, ArraysTravelThereAndBackWhateverTheirBounds) {
  for (const LONG lower : {0, 1, -5}) {
    SAFEARRAY* bytes = Bytes(std::string_view("\0\x01\xFF\0", 4), lower);
    EXPECT_EQ(Encoded(bytes), "AAH/AA==") << lower;
    SafeArrayDestroy(bytes);
  }
  EXPECT_EQ(Decoded("AAH/\r\nAA=="), std::string_view("\0\x01\xFF\0", 4));
}

TEST_F(BinEncoder, HalfOfASurrogatePairCountsWithTheLowEightBitsOfItsCode) {
  // DC62 and D842 end like "b" and "B".
  const wchar_t units[] = {0xDC62, 0xD842, L'T', L'W', 0xD842};
  BSTR text = SysAllocStringLen(units, 5);
  SAFEARRAY* array = nullptr;
  ASSERT_EQ(encoder->DecodeArr(text, &array), S_OK);
  EXPECT_EQ(TextOfBytes(array), Decoded("bBTWB"));
  Bstr decoded;
  ASSERT_EQ(encoder->Decode(text, decoded.Out()), S_OK);
  Bstr expected;
  ASSERT_EQ(encoder->Decode(Bstr("bBTWB").Get(), expected.Out()), S_OK);
  EXPECT_EQ(decoded.Text(), expected.Text());
  SysFreeString(text);
}

TEST_F(BinEncoder, AnEmptyTextDecodesToAnArrayWithoutElementsAndBack) {
  EXPECT_EQ(Decoded(""), "");
  EXPECT_EQ(Decoded("=\r\n="), "");
  SAFEARRAY* none = Bytes("");
  EXPECT_EQ(Encoded(none), "");
  SafeArrayDestroy(none);
  EXPECT_EQ(Encoded(nullptr), "");
}

TEST_F(BinEncoder, AnArrayOfSomethingElseIsRefused) {
  SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
  Bstr base64;
  for (SAFEARRAY* array : {SafeArrayCreate(VT_I4, 1, bounds), SafeArrayCreate(VT_UI1, 2, bounds)}) {
    EXPECT_EQ(encoder->EncodeArr(&array, base64.Out()), static_cast<HRESULT>(0x800A000D));
    EXPECT_THAT(TakeErrorInfo().description, HasSubstr("bytes"));
    SafeArrayDestroy(array);
  }
}

TEST_F(BinEncoder, AnArrayWithMoreElementsThanIndexesIsRefused) {
  SAFEARRAY* array = Bytes("abc");
  const SAFEARRAYBOUND own = array->rgsabound[0];
  constexpr LONG kFirst = std::numeric_limits<LONG>::min();
  constexpr LONG kLast = std::numeric_limits<LONG>::max();
  // Elements, the first index. The array's own memory holds three.
  for (const SAFEARRAYBOUND bound : {SAFEARRAYBOUND{0xFFFFFFFF, 0},
                                     {0x80000000, 0},
                                     {0x80000000, kFirst},
                                     {3, kLast},
                                     {3, kLast - 1},
                                     {0xFFFFFFFF, kFirst},
                                     {0xFFFFFFFF, kLast},
                                     {0x80000000, -1}}) {
    array->rgsabound[0] = bound;
    Bstr base64;
    EXPECT_EQ(encoder->EncodeArr(&array, base64.Out()), static_cast<HRESULT>(0x800A000D)) << bound.cElements;
    EXPECT_THAT(TakeErrorInfo().description, HasSubstr(std::to_string(bound.lLbound)));
  }
  for (const LONG lower : {kFirst, kLast - 2}) {
    array->rgsabound[0] = {3, lower};
    EXPECT_EQ(Encoded(array), "YWJj") << lower;
  }
  array->rgsabound[0] = own;
  SafeArrayDestroy(array);
}

TEST_F(BinEncoder, WritesANewFileAndReadsIt) {
  ASSERT_EQ(encoder->DecodeToFile(Bstr("TWFuTWE=").Get(), fileName.Get()), S_OK);
  EXPECT_EQ(std::filesystem::file_size(path), 5u);
  Bstr base64;
  ASSERT_EQ(encoder->EncodeFromFile(fileName.Get(), base64.Out()), S_OK);
  EXPECT_EQ(base64.Text(), "TWFuTWE=");
}

TEST_F(BinEncoder, AFileThatExistsIsRefusedWithTheCodecsOwnError) {
  std::ofstream(path) << "before";
  ASSERT_EQ(encoder->DecodeToFile(Bstr("TWFu").Get(), fileName.Get()), static_cast<HRESULT>(0x800403E8));
  const RaisedError raised = TakeErrorInfo();
  EXPECT_EQ(raised.source, "Base64.DecodeToFile");
  EXPECT_EQ(raised.description, "File already exists.");
  EXPECT_EQ(raised.interfaceId, __uuidof(IcBinEncoder));
  EXPECT_EQ(std::filesystem::file_size(path), 6u) << "nothing is written";
}

TEST_F(BinEncoder, AMissingFileAndAnEmptyOneAreErrors) {
  Bstr base64;
  EXPECT_EQ(encoder->EncodeFromFile(fileName.Get(), base64.Out()), static_cast<HRESULT>(0x800A0035));
  EXPECT_THAT(TakeErrorInfo().description, HasSubstr(path.filename().string()));
  std::ofstream(path).close();
  EXPECT_HRESULT_FAILED(encoder->EncodeFromFile(fileName.Get(), base64.Out()));
}

TEST_F(BinEncoder, AResultWithoutAPlaceIsAnError) {
  constexpr auto kInvalidCall = static_cast<HRESULT>(0x800A0005);
  const Bstr text("TWFu");
  EXPECT_EQ(encoder->Encode(text.Get(), nullptr), kInvalidCall);
  EXPECT_EQ(encoder->Decode(text.Get(), nullptr), kInvalidCall);
  EXPECT_EQ(encoder->DecodeArr(text.Get(), nullptr), kInvalidCall);
  EXPECT_EQ(encoder->EncodeArr(nullptr, nullptr), kInvalidCall);
}

}  // namespace
}  // namespace parvex::test
