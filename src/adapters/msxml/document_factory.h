#pragma once

#include "adapters/msxml/component_nodes.h"

namespace parvex::xml {

/// A new document of MSXML 3, by the class factory that ExpectManyDocuments keeps, or else by looking the class up.
HRESULT CreateDocument30(ComDocument& document);

/// The class of such documents.
inline constexpr CLSID kDomDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

}  // namespace parvex::xml
