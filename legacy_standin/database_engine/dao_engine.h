#pragma once

#include <vector>

#include "legacy_standin/late_bound/late_bound_class.h"
#include "seams/files.h"

namespace parvex::standin {

inline constexpr const char* kOlderDaoEngine = "DAO.DBEngine.36";
inline constexpr const char* kNewerDaoEngine = "DAO.DBEngine.120";

/// A substitute for the database engine, under both of its programmatic identifiers: the automation objects over real
/// Jet 3 and Jet 4 files, for machines without the engine. docs/jet-databases.md lists the members that are there.
/// Values have the types of their columns, failures the engine's own numbers. `files` has to outlive the objects.
std::vector<LateBoundClass> DaoClasses(Files& files);

}  // namespace parvex::standin
