#pragma once

#include "platform/automation.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/message_pump.h"
#include "platform/message_router.h"
#include "platform/private_profile.h"
#include "platform/processes.h"
#include "platform/project_database.h"
#include "platform/registry.h"

namespace parvex {

/// The machine that the system works on, seam by seam. XML documents are not among them: they are values
/// (platform/xml.h). The members are owned by whoever composes the machine and outlive every user of this.
struct Platform {
  Registry& registry;
  PrivateProfile& privateProfile;
  Files& files;
  Processes& processes;
  MessagePump& messagePump;
  MessageBoxes& messageBoxes;
  MessageRouters& messageRouters;
  automation::Automation& automation;
  ProjectDatabases& projectDatabases;
  CodePage& codePage;
};

}  // namespace parvex
