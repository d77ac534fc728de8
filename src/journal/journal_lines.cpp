#include "journal/journal_lines.h"

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <variant>

namespace parvex::journal {
namespace {

Json ToJson(std::monostate) { return nullptr; }

template <typename Scalar>
Json ToJson(const Scalar& value) {
  return value;
}

Json ToJson(const automation::ObjectRef& object) {
  return object ? Json::object({{"object", object->Name()}}) : Json(nullptr);
}

Json ToJson(const automation::CollectionRef& items) {
  if (!items) {
    return nullptr;
  }
  Json pairs = Json::array();
  for (const auto& [key, item] : *items) {
    pairs.push_back(Json::array({key, ValueJson(item.value)}));
  }
  return pairs;
}

std::string Hex(std::uint32_t number) {
  char text[11];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
  return text;
}

std::uint32_t NumberFromHex(const std::string& text) {
  std::size_t read = 0;
  const unsigned long number = std::stoul(text, &read, 16);
  if (read != text.size() || number > 0xFFFFFFFFul) {
    throw std::invalid_argument("\"" + text + "\" is no error number");
  }
  return static_cast<std::uint32_t>(number);
}

}  // namespace

void WriteLine(std::ostream& out, const Json& line) {
  out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n' << std::flush;
}

Json ErrorJson(const AutomationError& error) {
  return {{"number", Hex(error.Number())}, {"source", error.Source()}, {"description", error.Description()}};
}

AutomationError ErrorFromJson(const Json& error) {
  return AutomationError(NumberFromHex(error.at("number").get<std::string>()), error.at("source").get<std::string>(),
                         error.at("description").get<std::string>());
}

Json ValueJson(const automation::Value& value) {
  return std::visit([](const auto& held) { return ToJson(held); }, value);
}

Json MessageBoxJson(std::string_view text, std::string_view caption, MessageBoxes::Icon icon) {
  return {{"kind", "messageBox"},
          {"text", std::string(text)},
          {"caption", std::string(caption)},
          {"icon", icon == MessageBoxes::Icon::Stop ? "stop" : "none"}};
}

Json NoteJson(std::string_view about, std::string_view text) {
  return {{"kind", "note"}, {"about", std::string(about)}, {"text", std::string(text)}};
}

Json FindingJson(std::string_view text) { return {{"kind", "finding"}, {"text", std::string(text)}}; }

}  // namespace parvex::journal
