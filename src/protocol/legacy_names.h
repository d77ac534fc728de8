#pragma once

#include <string_view>

namespace parvex::legacy {

// Names of the legacy application's own classes and members, as far as they are driven late bound. Its installation
// fixes them; this is their one place.

inline constexpr std::string_view kBuilderClass = "KDQU470.CKDBuilder";
inline constexpr std::string_view kReportServerClass = "KDRPTSV47.CRemoteInterface";
inline constexpr std::string_view kScheduleRequestClass = "KDQU470.CKDScheduleRequest";

/// The service broker's one call: service name, operation name, argument collection, consumer's part.
inline constexpr std::string_view kBrokerCall = "CallService";

}  // namespace parvex::legacy
