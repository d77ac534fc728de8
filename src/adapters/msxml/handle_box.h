#pragma once

#include <string>
#include <utility>

#include "adapters/msxml/component_nodes.h"
#include "seams/xml.h"

namespace parvex::xml {

/// What a handle points to: one reference to the component's node, and what is known of it, so that nobody asks twice.
/// The component gives a node another address each time it is asked for, so two handles mean the same box only when one
/// was copied from the other.
struct Box {
  explicit Box(ComNode com) : node(std::move(com)) {}

  ComNode node;
  DOMNodeType type = NODE_INVALID;  ///< not yet asked for
  ComElement element;               ///< the node as an element; null until it is asked for
  ComDocument document;             ///< the one that the node lived in at `asOf`; null until it is asked for
  unsigned asOf = 0;
  /// A node of our making that was never appended, got no child, and was never a place to search from: no other box
  /// holds it, nothing is below it, and it is below nothing.
  bool isFresh = false;
  bool isOurs = false;  ///< a document of our making
  std::string refusal;  ///< of a document: why its text was not even given to the component
  unsigned handles = 1;
};

/// Does not change while the node lives.
DOMNodeType TypeOf(Box& box);
/// The node as an element; null for one that is none.
const ComElement& ElementOf(Box& box);
/// The document that the node lives in now.
const ComDocument& DocumentOf(Box& box);
/// The same when it is known without a question, null otherwise.
ComDocument KnownDocument(const Box& box);

/// After a node with others below it has gone from one document into another, what any box knows of its document may be
/// wrong: each asks again.
void ForgetDocuments();

/// The one door between handles and the component's nodes.
struct Adapter {
  /// A null handle raises "object not set"; `asked` names what was asked of it.
  static Box& BoxOf(const Node& node, const char* asked) {
    if (node.handle_ == nullptr) {
      RaiseMissing(asked);
    }
    return *static_cast<Box*>(node.handle_);
  }

  /// A handle on a node of that document, which is null when nobody knows; a null handle on a null node.
  static Node HandleOn(ComNode com, ComDocument document, DOMNodeType type = NODE_INVALID);
  static Node HandleOnElement(ComElement com, ComDocument document);
  /// The same handle, on a node that was made just now.
  static Node Fresh(Node node) {
    BoxOf(node, "a new node").isFresh = true;
    return node;
  }
  static Document DocumentOn(ComDocument com);

  static Box& BoxOf(const Document& document, const char* asked) { return BoxOf(document.node_, asked); }

 private:
  [[noreturn]] static void RaiseMissing(const char* asked);
};

}  // namespace parvex::xml
