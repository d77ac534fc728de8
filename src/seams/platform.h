#pragma once

#include "seams/automation.h"
#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/message_boxes.h"
#include "seams/message_pump.h"
#include "seams/message_router.h"
#include "seams/private_profile.h"
#include "seams/processes.h"
#include "seams/project_database.h"
#include "seams/registry.h"

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
