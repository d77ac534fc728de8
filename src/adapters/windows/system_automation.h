#pragma once

#include <oaidl.h>

#include "adapters/windows/com_pointer.h"
#include "seams/automation.h"

namespace parvex::windows {

/// Late binding through IDispatch.
class SystemAutomation : public automation::Automation {
 public:
  automation::ObjectRef Create(std::string_view programmaticId) override;
};

/// An automation object that somebody else made, by the name that errors and the journal give it.
automation::ObjectRef WrapDispatch(ComPointer<IDispatch> dispatch, std::string name);

/// Conversions for objects that are implemented here and driven from outside. An object from outside becomes a wrapped
/// reference named `name`; an object of this system goes out as the dispatch interface it was wrapped from, or behind a
/// dispatch interface of its own. A keyed collection goes out as an object with Count, Item, Add, Remove and an
/// enumerator.
automation::Value FromVariant(const VARIANT& value, const std::string& name);
Variant ToVariant(const automation::Value& value);

/// Puts an object of this system behind a dispatch interface. Members are named to it as they come; its errors become
/// exceptions of the automation protocol.
ComPointer<IDispatch> ExposeObject(automation::ObjectRef object);

}  // namespace parvex::windows
