#include "adapters/posix/code_pages.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>

namespace parvex::posix {

namespace {

constexpr std::array<std::uint16_t, 13> kAsked{874, 932, 936, 949, 950, 1250, 1251, 1253, 1254, 1255, 1256, 1257, 1258};

/// One direction of a conversion.
class Converter {
 public:
  Converter(const std::string& to, const std::string& from) : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (IsOpen()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  /// What cannot be converted is replaced, a byte at a time; without a replacement it ends the conversion, and the
  /// answer is no.
  bool Convert(std::string_view text, std::string_view replacement, std::string& result) {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    char* from = const_cast<char*>(text.data());
    for (std::size_t left = text.size(); left > 0;) {
      if (Step(&from, &left, result)) continue;
      Step(nullptr, nullptr, result);
      if (replacement.empty()) return false;
      result += replacement;
      ++from;
      --left;
    }
    // A character may have been held back for an accent to follow it.
    Step(nullptr, nullptr, result);
    return true;
  }

 private:
  /// Whether it can go on from there.
  bool Step(char** from, std::size_t* left, std::string& result) {
    std::array<char, 1024> room;
    char* to = room.data();
    std::size_t free = room.size();
    const bool failed = iconv(handle_, from, left, &to, &free) == static_cast<std::size_t>(-1);
    const bool full = failed && errno == E2BIG;
    result.append(room.data(), to);
    return !failed || full;
  }

  iconv_t handle_;
};

class IconvCodec : public jet::TextCodec {
 public:
  explicit IconvCodec(const std::string& name) : decoder_("UTF-8", name), encoder_(name, "UTF-8") {}

  bool IsKnown() const { return decoder_.IsOpen() && encoder_.IsOpen(); }

  std::string Decode(std::string_view bytes) override {
    std::string text;
    decoder_.Convert(bytes, "\uFFFD", text);
    return text;
  }

  std::optional<std::string> Encode(std::string_view utf8) override {
    std::string bytes;
    // A conversion may also put a look-alike in the place of what the code page lacks.
    if (!encoder_.Convert(utf8, "", bytes) || Decode(bytes) != utf8) return std::nullopt;
    return bytes;
  }

 private:
  Converter decoder_;
  Converter encoder_;
};

}  // namespace

std::shared_ptr<jet::TextCodec> CodePageOf(std::uint16_t number) {
  if (std::find(kAsked.begin(), kAsked.end(), number) == kAsked.end()) return jet::WesternCodePage(number);
  auto codec = std::make_shared<IconvCodec>("CP" + std::to_string(number));
  return codec->IsKnown() ? codec : nullptr;
}

}  // namespace parvex::posix
