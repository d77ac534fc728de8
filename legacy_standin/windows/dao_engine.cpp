// The substitute for the database engine as an in-process server. It is for machines without the real engine, whose
// place in the registry it never takes; the manifests beside it offer it without any registration.

#include "legacy_standin/database_engine/dao_engine.h"

#include <array>

#include "adapters/windows/exposed_object.h"
#include "adapters/windows/system_files.h"
#include "adapters/windows/wide_text.h"
#include "com_server/server.h"
#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

using com::ComClass;
using windows::ComPointer;

// An engine of others knows nothing of the locks that our runs hold while they change a file.
class EnginesFiles : public windows::SystemFiles {
 public:
  std::shared_ptr<void> HoldForChange(std::string_view) override { return nullptr; }
};

ComPointer<IUnknown> MakeEngine(const std::string& programmaticId) {
  static EnginesFiles files;
  for (const LateBoundClass& offered : DaoClasses(files)) {
    if (offered.programmaticId == programmaticId) {
      return windows::ExposeObject(offered.create()).As<IUnknown>(IID_IUnknown);
    }
  }
  return {};
}

ComClass Engine(const CLSID& id, const char* programmaticId) {
  return {id, windows::Widen(programmaticId), L"Substitute database engine",
          [programmaticId] { return MakeEngine(programmaticId); }};
}

// The manifests name the same identifiers.
std::span<const ComClass> Classes() {
  static const std::array kClasses = {
      Engine({0x17e448ec, 0x2df1, 0x4cc3, {0x96, 0x7e, 0x59, 0x62, 0x4c, 0x35, 0x64, 0x58}}, kOlderDaoEngine),
      Engine({0x2960f529, 0x3fd4, 0x4948, {0xb1, 0xc5, 0xa1, 0xe4, 0xd3, 0x90, 0xc4, 0x22}}, kNewerDaoEngine)};
  return kClasses;
}

void RefuseWhereARealEngineIs() {
  for (const ComClass& c : Classes()) {
    CLSID registered;
    if (SUCCEEDED(CLSIDFromProgID(c.programmaticId.c_str(), &registered)) && registered != c.id) {
      throw MakeRuntimeError(RuntimeError::InvalidCall,
                             windows::Narrow(c.programmaticId) + " is registered already: a real engine is installed");
    }
  }
}

}  // namespace
}  // namespace parvex::standin

parvex::com::Server parvex::com::ThisServer() {
  return {standin::Classes(), nullptr, standin::RefuseWhereARealEngineIs};
}
