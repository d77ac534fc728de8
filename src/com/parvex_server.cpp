#include "com/parvex_classes.h"
#include "com_server/server.h"
#include "parvex_idl.h"

parvex::com::Server parvex::com::ThisServer() { return {ParvexClasses(), &LIBID_Parvex}; }
