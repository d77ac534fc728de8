#include "adapters/msxml/ancestry.h"

#include <string>

namespace parvex::xml {
namespace {

/// The place of a node among the children of its parent, to put it back to.
class FormerPlace {
 public:
  explicit FormerPlace(const ComNode& node) : parent_(ParentOf(node)), next_(NextOf(node)) {}

  void Restore(const ComNode& node) const {
    ComNode moved;
    if (!parent_) {
      const ComNode holder = ParentOf(node);
      Check(holder->removeChild(node.Get(), moved.Out()), "taking out a node");
      return;
    }
    windows::Variant before;
    if (next_) {
      V_VT(&before.Get()) = VT_UNKNOWN;
      V_UNKNOWN(&before.Get()) = ComNode(next_).Detach();
    }
    Check(parent_->insertBefore(node.Get(), before.Get(), moved.Out()), "putting a node back");
  }

 private:
  ComNode parent_;  // null for a node that had none
  ComNode next_;
};

bool IsNamedAbove(const std::string& name, ComNode node) {
  for (; node; node = ParentOf(node)) {
    if (NameOf(node) == name) {
      return true;
    }
  }
  return false;
}

ComNode TopOf(ComNode node) {
  for (ComNode parent = ParentOf(node); parent; parent = ParentOf(node)) {
    node = std::move(parent);
  }
  return node;
}

}  // namespace

// Nodes have no identity to be compared by. But what becomes the top of `below` when `element` is put into a fragment
// of a document, which is part of none, tells whether `below` went with it.
bool IsAtOrAbove(Box& element, Box& below) {
  if (&element == &below) {
    return true;
  }
  if (element.isFresh || !IsNamedAbove(NameOf(element.node), below.node)) {
    return false;
  }
  const FormerPlace place(element.node);
  MsxmlPointer<IXMLDOMDocumentFragment> fragment;
  Check(DocumentOf(element)->createDocumentFragment(fragment.Out()), "making a fragment");
  ComNode moved;
  Check(fragment->appendChild(element.node.Get(), moved.Out()), "taking out a node");
  if (TypeOf(TopOf(below.node)) != NODE_DOCUMENT_FRAGMENT) {
    return false;
  }
  place.Restore(element.node);
  return true;
}

}  // namespace parvex::xml
