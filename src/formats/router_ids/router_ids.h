#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "seams/own_settings.h"

namespace parvex {

// By which class the legacy application's message router is created, and by which of its interfaces it is held. Each
// installation has its own two identifiers; they are kept in the registry, where components and programs of this system
// find them at run time.

struct RouterIds {
  std::string classId;      ///< with braces
  std::string interfaceId;  ///< of the interface that has SendRequestMessage

  bool operator==(const RouterIds&) const = default;
};

/// Those under which the substitute application registers its router.
inline constexpr std::string_view kSubstituteRouterClass = "{196AAAC4-3B30-44CD-BF13-4C212B3BCD3D}";
inline constexpr std::string_view kSubstituteRouterInterface = "{E3B59D45-E9F2-4852-95E0-C034FE2B0A22}";
/// Whether both are the substitute's, in any letter case.
bool AreSubstitutes(const RouterIds& ids);

/// The key below a hive, and the two values in it.
inline constexpr std::string_view kRouterIdsKey = "SOFTWARE\\Parvex\\Router";
inline constexpr std::string_view kRouterClassValue = "ClassId";
inline constexpr std::string_view kRouterInterfaceValue = "InterfaceId";

/// Identifiers with the place that they come from.
struct FoundRouterIds {
  RouterIds ids;
  std::string place;  ///< "HKEY_CURRENT_USER\SOFTWARE\Parvex\Router", or "this build"
};

/// The identifiers in force: the current user's, else the machine's, else `builtIn`. The first place that has either
/// value counts, alone: an identifier of one place is never used with one of another. So a value that is missing beside
/// the other one, or that is no identifier in braces, is an AutomationError (429) that names the value and its place.
FoundRouterIds RouterIdsInForce(OwnSettings& settings, const RouterIds& builtIn);
/// The same with those of this build, which PARVEX_ROUTER_CLSID and PARVEX_ROUTER_IID give.
FoundRouterIds RouterIdsInForce(OwnSettings& settings);

/// Writes both into the current user's key or the machine's, and gives the place. An AutomationError when the registry
/// refuses.
std::string SaveRouterIds(OwnSettings& settings, RegistryHive hive, const RouterIds& ids);

/// The two lines by which the identifiers are told and given to a build: -DPARVEX_ROUTER_CLSID={...} and
/// -DPARVEX_ROUTER_IID={...}.
std::string AsLines(const RouterIds& ids);
/// The identifiers of such lines; nothing when `text` is anything else.
std::optional<RouterIds> FromLines(std::string_view text);

/// Whether a text is an identifier as the registry holds it: {8-4-4-4-12 hexadecimal digits}.
bool IsIdentifier(std::string_view text);

}  // namespace parvex
