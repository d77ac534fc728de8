#include "adapters/libxml2/select.h"

#include <libxml/xpath.h>

#include <memory>
#include <new>
#include <string>

#include "adapters/libxml2/library_memory.h"
#include "formats/text/xml_characters.h"
#include "seams/automation_error.h"

namespace parvex::xml {
namespace {

constexpr std::size_t kLongestExpression = 1'000'000;

struct Freed {
  void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
  void operator()(xmlXPathCompExpr* compiled) const { xmlXPathFreeCompExpr(compiled); }
  void operator()(xmlXPathObject* value) const { xmlXPathFreeObject(value); }
};
using Compiled = std::unique_ptr<xmlXPathCompExpr, Freed>;
using Value = std::unique_ptr<xmlXPathObject, Freed>;

[[noreturn]] void RefuseExpression(std::string_view expression) {
  throw MakeRuntimeError(RuntimeError::InvalidCall,
                         "the XPath expression " + Quoted(expression) + " cannot select nodes");
}

// What the library says itself is not passed on: another component would say it otherwise. Newer libraries tell the
// error as const.
template <class Error>
void Keep(void*, Error*) {}

// What a thread keeps between selections.
class Selector {
 public:
  Selector() : context_(xmlXPathNewContext(nullptr)) {
    if (context_ == nullptr) {
      throw std::bad_alloc();
    }
    context_->error = Keep;
  }

  Value Evaluate(xmlNode* start, std::string_view expression, const LibraryMemory& memory) {
    const Compiled compiled = Compile(expression, memory);
    context_->doc = start->doc;
    context_->node = start;
    context_->depth = 0;  // the library does not count back after an error
    Value value(xmlXPathCompiledEval(compiled.get(), context_.get()));
    context_->doc = nullptr;
    context_->node = nullptr;
    memory.Check();
    if (value == nullptr) {
      RefuseExpression(expression);
    }
    return value;
  }

 private:
  Compiled Compile(std::string_view expression, const LibraryMemory& memory) {
    if (FindForbidden(expression) != std::string_view::npos || expression.size() > kLongestExpression) {
      RefuseExpression(expression);
    }
    context_->depth = 0;
    Compiled compiled(xmlXPathCtxtCompile(context_.get(), Chars(std::string(expression).c_str())));
    memory.Check();
    if (compiled == nullptr) {
      RefuseExpression(expression);
    }
    return compiled;
  }

  std::unique_ptr<xmlXPathContext, Freed> context_;
};

// While a selection from a node without parent runs, its tree stands alone: what else hangs in limbo is none of its
// siblings.
class Alone {
 public:
  explicit Alone(xmlNode* start) {
    xmlNode* top = start;
    while (!IsDocument(top) && !IsParentless(top)) {
      top = top->parent;
    }
    if (!IsDocument(top)) {
      top_ = top;
      parent_ = top->parent;
      prev_ = top->prev;
      next_ = top->next;
      top->parent = top->prev = top->next = nullptr;
    }
  }
  ~Alone() {
    if (top_ != nullptr) {
      top_->parent = parent_;
      top_->prev = prev_;
      top_->next = next_;
    }
  }
  Alone(const Alone&) = delete;
  Alone& operator=(const Alone&) = delete;

 private:
  xmlNode* top_ = nullptr;
  xmlNode* parent_ = nullptr;
  xmlNode* prev_ = nullptr;
  xmlNode* next_ = nullptr;
};

}  // namespace

std::vector<xmlNode*> Select(xmlNode* start, std::string_view expression) {
  const LibraryMemory memory;
  thread_local Selector selector;
  const Quiet quiet;
  const Alone alone(start);
  const Value value = selector.Evaluate(start, expression, memory);
  if (value->type != XPATH_NODESET) {
    RefuseExpression(expression);
  }
  std::vector<xmlNode*> nodes;
  const xmlNodeSet* set = value->nodesetval;
  for (int i = 0; set != nullptr && i < set->nodeNr; ++i) {
    if (set->nodeTab[i]->type == XML_NAMESPACE_DECL) {
      RefuseExpression(expression);
    }
    nodes.push_back(set->nodeTab[i]);
  }
  return nodes;
}

}  // namespace parvex::xml
