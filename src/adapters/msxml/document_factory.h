#pragma once

#include "adapters/msxml/component_nodes.h"

namespace parvex::xml {

/// A new document of MSXML 3, by the class factory that ExpectManyDocuments keeps, or else by looking the class up.
HRESULT CreateDocument30(ComDocument& document);

}  // namespace parvex::xml
