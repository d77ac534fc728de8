#pragma once

#include "seams/automation.h"
#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/machine_locks.h"
#include "seams/message_boxes.h"
#include "seams/message_pump.h"
#include "seams/message_router.h"
#include "seams/notes.h"
#include "seams/private_profile.h"
#include "seams/processes.h"
#include "seams/progress.h"
#include "seams/project_database.h"
#include "seams/registry.h"

namespace parvex {

/// The machine that the system works on, seam by seam. XML documents are not among them: they are values (seams/xml.h).
/// The members are set, all but the last two, by whoever composes the machine; he owns them, and they outlive every
/// user of this. Who watches or replaces a seam copies the machine and sets one member.
struct Platform {
  Registry* registry = nullptr;
  PrivateProfile* privateProfile = nullptr;
  Files* files = nullptr;
  MachineLocks* locks = nullptr;
  Processes* processes = nullptr;
  MessagePump* messagePump = nullptr;
  MessageBoxes* messageBoxes = nullptr;
  MessageRouters* messageRouters = nullptr;
  automation::Automation* automation = nullptr;
  ProjectDatabases* projectDatabases = nullptr;
  CodePage* codePage = nullptr;
  // These two may stay null.
  Notes* notes = nullptr;        ///< who keeps notes; null when nobody does
  Progress* progress = nullptr;  ///< who is told of progress; null when nobody waits to see it
};

}  // namespace parvex
