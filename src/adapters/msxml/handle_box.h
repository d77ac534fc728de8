#pragma once

#include <string>
#include <utility>

#include "adapters/msxml/component_nodes.h"
#include "seams/automation_error.h"
#include "seams/xml.h"

namespace parvex::xml {

/// What a handle points to: one reference to the component's node. The component gives a node another address each time
/// it is asked for, so two handles mean the same box only when one was copied from the other.
struct Box {
  ComNode node;
  std::string refusal;  // of a document: why its text was not even given to the component
  unsigned handles = 1;
};

/// The one door between handles and the component's nodes.
struct Adapter {
  /// A null handle raises "object not set"; `asked` names what was asked of it.
  static const ComNode& Com(const Node& node, const char* asked) {
    if (node.handle_ == nullptr) {
      throw MakeRuntimeError(RuntimeError::ObjectNotSet, std::string(asked) + " was asked of a missing node");
    }
    return static_cast<Box*>(node.handle_)->node;
  }

  static Node HandleOn(ComNode com) {
    Node node;
    if (com) {
      node.handle_ = new Box{std::move(com), {}};
    }
    return node;
  }

  /// Another node for a handle and all its copies.
  static void PutInPlace(const Node& node, ComNode com) { static_cast<Box*>(node.handle_)->node = std::move(com); }

  static Document DocumentOn(const ComDocument& com) {
    Document document;
    document.node_ = HandleOn(ComNode::Share(com.Get()));
    return document;
  }

  static Box* BoxOf(const Document& document) { return static_cast<Box*>(document.node_.handle_); }
};

}  // namespace parvex::xml
