#include "adapters/msxml/handle_box.h"

#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

// Handles belong to the thread that made them, and so does what they know.
thread_local unsigned moves = 0;

}  // namespace

DOMNodeType TypeOf(Box& box) {
  if (box.type == NODE_INVALID) {
    box.type = TypeOf(box.node);
  }
  return box.type;
}

const ComElement& ElementOf(Box& box) {
  if (!box.element && TypeOf(box) == NODE_ELEMENT) {
    box.element = AsElement(box.node);
  }
  return box.element;
}

const ComDocument& DocumentOf(Box& box) {
  if (!box.document || (box.asOf != moves && TypeOf(box) != NODE_DOCUMENT)) {
    box.document = DocumentOf(box.node);
    box.asOf = moves;
  }
  return box.document;
}

ComDocument KnownDocument(const Box& box) {
  return box.asOf == moves || box.type == NODE_DOCUMENT ? box.document : ComDocument();
}

void ForgetDocuments() { ++moves; }

Node Adapter::HandleOn(ComNode com, ComDocument document, DOMNodeType type) {
  Node node;
  if (com) {
    auto* box = new Box(std::move(com));
    box->type = type;
    box->document = std::move(document);
    box->asOf = moves;
    node.handle_ = box;
  }
  return node;
}

Node Adapter::HandleOnElement(ComElement com, ComDocument document) {
  Node node = HandleOn(ComNode::Share(com.Get()), std::move(document), NODE_ELEMENT);
  if (node) {
    BoxOf(node, "an element").element = std::move(com);
  }
  return node;
}

Document Adapter::DocumentOn(ComDocument com) {
  Document document;
  ComNode node = ComNode::Share(com.Get());
  document.node_ = HandleOn(std::move(node), std::move(com), NODE_DOCUMENT);
  return document;
}

void Adapter::RaiseMissing(const char* asked) {
  throw MakeRuntimeError(RuntimeError::ObjectNotSet, std::string(asked) + " was asked of a missing node");
}

}  // namespace parvex::xml
