#pragma once

#include <memory>

#include "hybris/unit_model.h"
#include "seams/platform.h"

namespace parvex {

class NamedBlobs;

// How the lines of a tag become base units. An accessory line is one of three things: a further base unit (its
// BaseUnit1 is "BU" and a number greater than 1), a base unit with stored data of its own (no BaseUnit1, but a
// FileName), or a loose accessory, which is attached to base units.

/// The base units of a tag: `first`, filled by the caller, and those that accessories make, in their order. An
/// accessory that becomes a base unit for its file gets the BaseUnit1 "XX1", deliberately: the mark keeps it out of
/// SelectLooseAccessories.
BaseUnits BuildBaseUnits(const Platform& platform, std::shared_ptr<BaseUnit> first, const Accessories& accessories,
                         NamedBlobs* named = nullptr);

/// A base unit from an accessory line; its SAP configuration is the accessory's stored text, or the SAPDATA element in
/// it.
std::shared_ptr<BaseUnit> BaseUnitFromAccessory(const Platform& platform, const Accessory& accessory,
                                                NamedBlobs* named = nullptr);

/// The accessories with an empty BaseUnit1 (a blank is not empty), in their order.
Accessories SelectLooseAccessories(const Accessories& accessories);

// Attaching gives every base unit its list, in the order of the lines. The number of a line's base unit is 1 for an
// empty BaseUnit2, otherwise what follows its first four characters, read as a number and rounded to the nearest whole
// one (halves to the even neighbour). A line whose number is no base unit's stays unattached. A BaseUnit2 of one to
// three characters is an error (5), deliberately without a guard, as soon as there is a base unit to attach to.

/// A first base unit whose BaseUnit1 is "BU2" gets every accessory, besides the base unit that has its number.
void AttachAccessories(const BaseUnits& baseUnits, const Accessories& accessories);

/// The same for warranties; and a first base unit "BU1" also gets those with the number 0. That this holds for
/// warranties only is deliberate.
void AttachWarranties(const BaseUnits& baseUnits, const Warranties& warranties);

}  // namespace parvex
