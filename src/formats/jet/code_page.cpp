#include "formats/jet/code_page.h"

#include "formats/text/windows_1252.h"

namespace parvex::jet {

namespace {

class Western : public TextCodec {
 public:
  std::string Decode(std::string_view bytes) override { return codePage_.FromAnsi(bytes); }

  std::optional<std::string> Encode(std::string_view utf8) override {
    std::string bytes = codePage_.ToAnsi(utf8);
    // What the code page lacks has become a question mark.
    if (codePage_.FromAnsi(bytes) != utf8) return std::nullopt;
    return bytes;
  }

 private:
  posix::Windows1252 codePage_;
};

}  // namespace

std::shared_ptr<TextCodec> WesternCodePage(std::uint16_t number) {
  return number == 1252 ? std::make_shared<Western>() : nullptr;
}

}  // namespace parvex::jet
