#include "formats/router_ids/router_ids.h"

#include <algorithm>

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::string_view kPattern = "{00000000-0000-0000-0000-000000000000}";
constexpr std::string_view kClassLine = "-DPARVEX_ROUTER_CLSID=";
constexpr std::string_view kInterfaceLine = "-DPARVEX_ROUTER_IID=";
constexpr std::string_view kThisBuild = "this build";
// No identifier is nearly as long: what is longer is not repeated in an error.
constexpr std::size_t kLongestQuoted = 100;

std::string PlaceOf(RegistryHive hive) {
  return (hive == RegistryHive::CurrentUser ? "HKEY_CURRENT_USER\\" : "HKEY_LOCAL_MACHINE\\") +
         std::string(kRouterIdsKey);
}

AutomationError Refusal(std::string_view value, std::string_view place, const std::string& why) {
  return MakeRuntimeError(
      RuntimeError::CannotCreateObject,
      "the message router cannot be found: " + std::string(value) + " of " + std::string(place) + " " + why);
}

std::string Required(const std::optional<std::string>& text, std::string_view value, std::string_view other,
                     std::string_view place) {
  if (!text) {
    throw Refusal(value, place, "is missing beside " + std::string(other));
  }
  if (!IsIdentifier(*text)) {
    throw Refusal(
        value, place,
        "is no identifier in braces: " +
            (text->size() <= kLongestQuoted ? Quoted(*text) : std::to_string(text->size()) + " bytes of text"));
  }
  return *text;
}

FoundRouterIds Checked(const std::optional<std::string>& classId, const std::optional<std::string>& interfaceId,
                       std::string_view place) {
  return {{Required(classId, kRouterClassValue, kRouterInterfaceValue, place),
           Required(interfaceId, kRouterInterfaceValue, kRouterClassValue, place)},
          std::string(place)};
}

// The identifier behind `name` at the beginning of the text, of which the line is taken.
std::optional<std::string> TakeLine(std::string_view& text, std::string_view name) {
  if (!text.starts_with(name)) {
    return std::nullopt;
  }
  text.remove_prefix(name.size());
  const std::string_view id = text.substr(0, kPattern.size());
  text.remove_prefix(id.size());
  if (text.starts_with('\r')) {
    text.remove_prefix(1);
  }
  if (!IsIdentifier(id) || (!text.empty() && !text.starts_with('\n'))) {
    return std::nullopt;
  }
  text.remove_prefix(std::min<std::size_t>(text.size(), 1));
  return std::string(id);
}

}  // namespace

bool AreSubstitutes(const RouterIds& ids) {
  return EqualIgnoringCase(ids.classId, kSubstituteRouterClass) &&
         EqualIgnoringCase(ids.interfaceId, kSubstituteRouterInterface);
}

FoundRouterIds RouterIdsInForce(OwnSettings& settings, const RouterIds& builtIn) {
  for (const RegistryHive hive : {RegistryHive::CurrentUser, RegistryHive::LocalMachine}) {
    const std::optional<std::string> classId = settings.Read(hive, kRouterIdsKey, kRouterClassValue);
    const std::optional<std::string> interfaceId = settings.Read(hive, kRouterIdsKey, kRouterInterfaceValue);
    if (classId || interfaceId) {
      return Checked(classId, interfaceId, PlaceOf(hive));
    }
  }
  return Checked(builtIn.classId, builtIn.interfaceId, kThisBuild);
}

FoundRouterIds RouterIdsInForce(OwnSettings& settings) {
  return RouterIdsInForce(settings, {PARVEX_ROUTER_CLSID, PARVEX_ROUTER_IID});
}

std::string SaveRouterIds(OwnSettings& settings, RegistryHive hive, const RouterIds& ids) {
  settings.Write(hive, kRouterIdsKey, kRouterClassValue, ids.classId);
  settings.Write(hive, kRouterIdsKey, kRouterInterfaceValue, ids.interfaceId);
  return PlaceOf(hive);
}

std::string AsLines(const RouterIds& ids) {
  return std::string(kClassLine) + ids.classId + "\n" + std::string(kInterfaceLine) + ids.interfaceId + "\n";
}

std::optional<RouterIds> FromLines(std::string_view text) {
  const std::optional<std::string> classId = TakeLine(text, kClassLine);
  const std::optional<std::string> interfaceId = TakeLine(text, kInterfaceLine);
  return classId && interfaceId && text.empty() ? std::optional(RouterIds{*classId, *interfaceId}) : std::nullopt;
}

bool IsIdentifier(std::string_view text) {
  return std::ranges::equal(text, kPattern, [](char c, char pattern) {
    const bool isDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    return pattern == '0' ? isDigit : c == pattern;
  });
}

}  // namespace parvex
