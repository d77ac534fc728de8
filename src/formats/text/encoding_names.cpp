#include "formats/text/encoding_names.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "formats/text/text.h"

namespace parvex {
namespace {

struct Named {
  std::string_view name;
  unsigned codePage;
};

// Beside those that end in their number.
constexpr Named kNames[] = {
    {"UTF-8", 65001},
    {"UTF8", 65001},
    {"UNICODE-1-1-UTF-8", 65001},
    {"UNICODE-2-0-UTF-8", 65001},
    {"UTF-16", 1200},
    {"UTF-16LE", 1200},
    {"UCS-2", 1200},
    {"ISO-10646-UCS-2", 1200},
    {"UNICODE", 1200},
    {"UTF-16BE", 1201},
    {"UNICODEFFFE", 1201},
    {"UTF-7", 65000},
    {"UNICODE-1-1-UTF-7", 65000},
    {"US-ASCII", 20127},
    {"ASCII", 20127},
    {"US", 20127},
    {"ANSI_X3.4-1968", 20127},
    {"ANSI_X3.4-1986", 20127},
    {"ISO646-US", 20127},
    {"ISO-IR-6", 20127},
    {"CSASCII", 20127},
    {"LATIN1", 28591},
    {"L1", 28591},
    {"ISO-IR-100", 28591},
    {"CSISOLATIN1", 28591},
    {"CP819", 28591},
    {"IBM819", 28591},
    {"LATIN2", 28592},
    {"L2", 28592},
    {"CSISOLATIN2", 28592},
    {"LATIN3", 28593},
    {"L3", 28593},
    {"CSISOLATIN3", 28593},
    {"LATIN4", 28594},
    {"L4", 28594},
    {"CSISOLATIN4", 28594},
    {"CYRILLIC", 28595},
    {"CSISOLATINCYRILLIC", 28595},
    {"ARABIC", 28596},
    {"ECMA-114", 28596},
    {"CSISOLATINARABIC", 28596},
    {"GREEK", 28597},
    {"GREEK8", 28597},
    {"ECMA-118", 28597},
    {"ELOT_928", 28597},
    {"CSISOLATINGREEK", 28597},
    {"HEBREW", 28598},
    {"VISUAL", 28598},
    {"CSISOLATINHEBREW", 28598},
    {"ISO-8859-8-I", 28598},
    {"LOGICAL", 28598},
    {"LATIN5", 28599},
    {"L5", 28599},
    {"CSISOLATIN5", 28599},
    {"LATIN9", 28605},
    {"L9", 28605},
    {"CSISOLATIN9", 28605},
    {"TIS-620", 874},
    {"ISO-8859-11", 874},
    {"DOS-874", 874},
    {"DOS-720", 720},
    {"DOS-862", 862},
    {"IBM00858", 858},
    {"CP00858", 858},
    {"PC-MULTILINGUAL-850+EURO", 858},
    {"SHIFT_JIS", 932},
    {"SHIFT-JIS", 932},
    {"SJIS", 932},
    {"X-SJIS", 932},
    {"X-MS-CP932", 932},
    {"MS_KANJI", 932},
    {"CSSHIFTJIS", 932},
    {"WINDOWS-31J", 932},
    {"CSWINDOWS31J", 932},
    {"EUC-JP", 51932},
    {"X-EUC", 51932},
    {"X-EUC-JP", 51932},
    {"CSEUCPKDFMTJAPANESE", 51932},
    {"ISO-2022-JP", 50220},
    {"CSISO2022JP", 50220},
    {"GB2312", 936},
    {"GB_2312-80", 936},
    {"CSGB2312", 936},
    {"CSISO58GB231280", 936},
    {"CN-GB", 936},
    {"CHINESE", 936},
    {"EUC-CN", 936},
    {"X-EUC-CN", 936},
    {"GBK", 936},
    {"GB18030", 54936},
    {"HZ-GB-2312", 52936},
    {"BIG5", 950},
    {"CN-BIG5", 950},
    {"CSBIG5", 950},
    {"X-X-BIG5", 950},
    {"KS_C_5601-1987", 949},
    {"KS_C_5601-1989", 949},
    {"KS_C_5601", 949},
    {"KSC_5601", 949},
    {"KSC5601", 949},
    {"CSKSC56011987", 949},
    {"KOREAN", 949},
    {"EUC-KR", 949},
    {"CSEUCKR", 949},
    {"UHC", 949},
    {"ISO-2022-KR", 50225},
    {"CSISO2022KR", 50225},
    {"JOHAB", 1361},
    {"KOI8-R", 20866},
    {"KOI8", 20866},
    {"KOI", 20866},
    {"CSKOI8R", 20866},
    {"KOI8-U", 21866},
    {"KOI8-RU", 21866},
    {"MACINTOSH", 10000},
};

// The pages of DOS and Windows that are named by their number.
constexpr unsigned kNumbered[] = {437, 737, 775, 850, 852, 855, 857,  858,  860,  861,  862,  863,  864,  865,  866,
                                  869, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};
constexpr std::string_view kBeforeNumbers[] = {"WINDOWS-", "X-CP", "CP", "IBM"};

constexpr unsigned kIsoParts[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 15};
constexpr std::string_view kBeforeIsoParts[] = {"ISO-8859-", "ISO8859-", "ISO_8859-"};

/// The number behind the first of these beginnings that the name has.
template <std::size_t count>
std::optional<unsigned> NumberBehind(std::string_view name, const std::string_view (&beginnings)[count]) {
  for (const std::string_view beginning : beginnings) {
    if (name.starts_with(beginning)) {
      const char* const end = name.data() + name.size();
      unsigned number = 0;
      const auto read = std::from_chars(name.data() + beginning.size(), end, number);
      return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
    }
  }
  return std::nullopt;
}

template <std::size_t count>
bool Contains(const unsigned (&numbers)[count], unsigned number) {
  return std::find(std::begin(numbers), std::end(numbers), number) != std::end(numbers);
}

}  // namespace

std::optional<unsigned> CodePageNamed(std::string_view encoding) {
  const std::string name = ToUpper(encoding);
  for (const Named& named : kNames) {
    if (named.name == name) {
      return named.codePage;
    }
  }
  if (const auto part = NumberBehind(name, kBeforeIsoParts); part && Contains(kIsoParts, *part)) {
    return 28590 + *part;
  }
  const auto number = NumberBehind(name, kBeforeNumbers);
  return number && Contains(kNumbered, *number) ? number : std::nullopt;
}

}  // namespace parvex
