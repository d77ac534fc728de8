#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::xml {

// XML documents as the front end and the legacy application see them: the behaviour of MSXML 3 with white space not
// preserved, asynchronous loading off and XPath selection. All text is UTF-8.
//
// Document and Node are light handles, cheap to copy. A node keeps the tree it lives in alive, also after it was moved
// into another document, and stays valid when its parent's content is replaced (it is then a node without parent).
// Documents, and the handles on their nodes, belong to the thread that made them.
//
// Handles cannot be compared: the component gives a node another address each time it is asked for. Two handles on one
// node are known by what is written through one and read through the other.
//
// A handle may be null ("no node", "no document"); asking a null handle for anything but its truth value raises "object
// not set" (RuntimeError::ObjectNotSet), naming what was asked. What cannot be done with a node raises "invalid call"
// (RuntimeError::InvalidCall), naming the node and the value that was refused, and changes nothing.
//
// Text that XML cannot carry is refused that way, so that nothing is lost silently and every document can be read
// again: control characters other than tab, line feed and carriage return, U+FFFE, U+FFFF, and bytes that are not
// UTF-8.

class Document;

class Node {
 public:
  Node() noexcept = default;
  Node(const Node& other) noexcept;
  Node(Node&& other) noexcept;
  Node& operator=(const Node& other) noexcept;
  Node& operator=(Node&& other) noexcept;
  ~Node();

  explicit operator bool() const noexcept { return handle_ != nullptr; }

  bool IsElement() const;
  /// The name of an element or attribute as written (with its prefix), the target of a processing instruction; "#text",
  /// "#cdata-section", "#comment" or "#document" for others.
  std::string Name() const;

  /// The text of the node and its descendants, outer blanks trimmed, CR LF read as LF; text of CDATA sections is left
  /// as it is. White space that was dropped between two elements reads as one blank. Nothing is trimmed where
  /// xml:space="preserve" is in force; the value of an attribute and the text of a comment stand as they are.
  std::string Text() const;
  /// Replaces all content of an element by one text (no child for an empty text), or the value of an attribute, a text
  /// or a CDATA section. Documents, comments and others refuse it.
  void SetText(std::string_view text) const;

  /// The value of an attribute, nothing when the element has none of that name.
  std::optional<std::string> Attribute(std::string_view name) const;
  /// Sets an attribute, behind those that exist when it is new. An empty value is an attribute with an empty value.
  /// Refused: what is no name, a prefix that is not declared here, namespace declarations.
  void SetAttribute(std::string_view name, std::string_view value) const;

  /// The node's markup on one line, `<A/>` for an empty element, without a final line break. A document node's markup
  /// carries its declaration, when there is one, without the encoding, and ends with CR LF (empty for an empty
  /// document).
  std::string Xml() const;

  /// The first node, in document order, that an XPath 1.0 expression selects from here; a null node when there is none.
  /// An absolute expression begins at the node's document. An expression that cannot be parsed, or whose value is not a
  /// set of nodes, raises an error that quotes it. Cost: that of all nodes that the expression visits; keep nodes in
  /// hand instead of selecting them again.
  Node First(std::string_view xpath) const;
  /// All nodes that an XPath expression selects from here, in document order.
  std::vector<Node> All(std::string_view xpath) const;

  /// Null for a document, an attribute, and a node without parent.
  Node Parent() const;
  Node FirstChild() const;
  Node NextSibling() const;
  /// The first child element of that name; a null node when there is none. Cost: the children before it.
  Node Child(std::string_view name) const;
  /// The next sibling element of that name; a null node when there is none.
  Node Next(std::string_view name) const;
  /// The first element of that name below this node, in document order; a null node when there is none. What ".//NAME"
  /// selects first for a name without prefix, without the cost of an expression.
  Node Descendant(std::string_view name) const;

  /// Appends `child` as the last child and returns it. A node of another place or another document is moved. Refused: a
  /// node into itself or its own descendants, attributes and documents as children, a second root, text outside the
  /// root.
  Node Append(const Node& child) const;
  /// Takes the node out of its tree; it stays valid and can be appended elsewhere. Attributes and documents refuse it.
  void Remove() const;
  /// A deep copy without parent, owned by the same document.
  Node Clone() const;

  /// A hint that what is below this node is complete and will hardly be looked at before it is written. It may be kept
  /// in less memory until somebody looks, at the cost of reading it again. Nothing changes that can be seen. It does
  /// nothing while there are handles on nodes below, nor in a document that was searched by an expression.
  void Fold() const;

  /// The document that the node lives in now.
  Document Owner() const;

 private:
  friend class Document;
  friend struct Adapter;
  void* handle_ = nullptr;  // the adapter's node, with one reference held
};

class Document {
 public:
  /// A null handle. Documents are made by New, Parse and Load.
  Document() noexcept = default;

  explicit operator bool() const noexcept { return static_cast<bool>(node_); }

  /// A new, empty document.
  static Document New();
  /// A new document with the content of `text`; empty when the text does not parse, or passes a bound: 1,000 elements
  /// in each other are one of those in docs/bounds.md. An encoding named in the text's declaration is not looked at:
  /// the text is UTF-8.
  static Document Parse(std::string_view text);
  /// A new document from the bytes of a file, decoded as its byte order mark or declaration says, UTF-8 otherwise;
  /// empty when they do not parse or are not valid in their encoding.
  static Document Load(std::string_view bytes);

  /// Why the last Parse or Load left this document empty, with line and column; empty when it did not fail.
  std::string ParseError() const;

  /// Whether the document has no root element.
  bool IsEmpty() const;
  /// The root element; a null node for an empty document.
  Node Root() const;
  /// The document itself as a node, from which relative expressions start.
  const Node& AsNode() const { return node_; }

  /// A new element (its name without colon) or CDATA section of this document without parent.
  Node CreateElement(std::string_view name) const;
  Node CreateCData(std::string_view text) const;

  Node First(std::string_view xpath) const { return node_.First(xpath); }
  std::vector<Node> All(std::string_view xpath) const { return node_.All(xpath); }
  /// Appends to the document element; the `child` of an empty document becomes its document element.
  Node Append(const Node& child) const;

  std::string Xml() const { return node_.Xml(); }
  /// The same text, handed over in pieces from its beginning to its end: an adapter may make them one by one, so that a
  /// large document is not held as a text too. What `take` throws ends it. Nothing for an empty document.
  void WriteXml(const std::function<void(std::string_view piece)>& take) const;
  /// The content of a file that holds this document: its markup in the encoding that the declaration names (UTF-16 with
  /// byte order mark), UTF-8 without one or when the name is not known, which the declaration then says. Characters
  /// that the encoding lacks become character references; in a name, comment or instruction they are refused.
  std::string Bytes() const;

 private:
  friend class Node;
  friend struct Adapter;
  Node node_;
};

/// While what this returns lives, this thread makes documents faster: what each would look up is kept. To be let go by
/// the same thread, before it leaves its apartment. Null where nothing is kept.
std::shared_ptr<void> ExpectManyDocuments();

/// Appends a new element that holds one text (nothing for an empty text), and returns it. Refused: what CreateElement,
/// Append and SetText refuse; a text that is refused leaves an empty element.
Node AppendElement(const Node& parent, std::string_view name, std::string_view text = {});

}  // namespace parvex::xml
