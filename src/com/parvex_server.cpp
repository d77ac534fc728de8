#include "com/parvex_classes.h"
#include "com_server/server.h"
#include "parvex_idl.h"

namespace {

// Under it the system finds the surrogate process, where one was asked for.
constexpr GUID kApplication = {0x5c1c5a5e, 0x3a2f, 0x4a4b, {0x9f, 0x4d, 0x27, 0x6e, 0x0b, 0xd1, 0xc0, 0x47}};

}  // namespace

parvex::com::Server parvex::com::ThisServer() { return {ParvexClasses(), &LIBID_Parvex, nullptr, &kApplication}; }
