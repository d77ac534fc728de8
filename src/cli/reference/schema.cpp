#include "cli/reference/schema.h"

#include <algorithm>
#include <vector>

#include "cli/reference/described_command.h"
#include "formats/text/escaped_markup.h"

namespace parvex::cli {
namespace {

using ElementList = std::span<const ElementReference>;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" elementFormDefault=\"qualified\">\n";
constexpr std::string_view kTail = "</xs:schema>\n";

std::string Indent(int depth) { return std::string(2 * static_cast<std::size_t>(depth), ' '); }

std::string OccursAttributes(Occurs occurs) {
  switch (occurs) {
    case Occurs::Once:
      return "";
    case Occurs::Optional:
      return " minOccurs=\"0\"";
    case Occurs::AnyNumber:
      return " minOccurs=\"0\" maxOccurs=\"unbounded\"";
    case Occurs::AtLeastOnce:
      return " maxOccurs=\"unbounded\"";
  }
  return "";
}

std::string Documentation(std::string_view text, int depth) {
  return text.empty() ? ""
                      : Indent(depth) + "<xs:annotation><xs:documentation>" + EscapedMarkup(text) +
                            "</xs:documentation></xs:annotation>\n";
}

std::vector<std::string_view> PartsOf(std::string_view list, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t begin = 0;;) {
    const std::size_t end = list.find(separator, begin);
    parts.push_back(list.substr(begin, end - begin));
    if (end == std::string_view::npos) {
      return parts;
    }
    begin = end + 1;
  }
}

/// The simple type of a text that is one of several.
std::string Enumeration(std::string_view values, int depth) {
  std::string type = Indent(depth) + "<xs:simpleType>\n" + Indent(depth + 1) + "<xs:restriction base=\"xs:string\">\n";
  for (const std::string_view value : PartsOf(values, '|')) {
    type += Indent(depth + 2) + "<xs:enumeration value=\"" + EscapedMarkup(value) + "\"/>\n";
  }
  return type + Indent(depth + 1) + "</xs:restriction>\n" + Indent(depth) + "</xs:simpleType>\n";
}

std::string Attributes(std::string_view attributes, int depth) {
  if (attributes.empty()) {
    return "";
  }
  std::string text;
  for (std::string_view name : PartsOf(attributes, ' ')) {
    const bool mayBeMissing = name.ends_with('?');
    name.remove_suffix(mayBeMissing ? 1 : 0);
    text += Indent(depth) + "<xs:attribute name=\"" + std::string(name) + "\" type=\"xs:string\"" +
            (mayBeMissing ? "" : " use=\"required\"") + "/>\n";
  }
  return text;
}

/// The elements of the list that belong to its first one, with it.
ElementList Subtree(ElementList elements) {
  std::size_t size = 1;
  while (size < elements.size() && elements[size].level > elements.front().level) {
    ++size;
  }
  return elements.first(size);
}

/// The first elements, each with all that belongs to it.
std::vector<ElementList> Subtrees(ElementList elements) {
  std::vector<ElementList> trees;
  while (!elements.empty()) {
    trees.push_back(Subtree(elements));
    elements = elements.subspan(trees.back().size());
  }
  return trees;
}

std::string Declaration(ElementList tree, int depth, bool isGlobal);

/// What stands in an element, without its attributes; `depth` is that of the particle.
std::string Particle(ElementList tree, int depth) {
  const ElementReference& element = tree.front();
  if (element.content == Content::Open) {
    return Indent(depth) + "<xs:sequence>\n" + Indent(depth + 1) +
           "<xs:any processContents=\"skip\" minOccurs=\"0\" maxOccurs=\"unbounded\"/>\n" + Indent(depth) +
           "</xs:sequence>\n";
  }
  const bool anyOrder = element.content == Content::AnyOrder;
  const std::string tag = anyOrder ? "xs:choice" : "xs:sequence";
  std::string particle = Indent(depth) + "<" + tag + (anyOrder ? OccursAttributes(Occurs::AnyNumber) : "") + ">\n";
  for (const ElementList child : Subtrees(tree.subspan(1))) {
    particle += Declaration(child, depth + 1, false);
  }
  return particle + Indent(depth) + "</" + tag + ">\n";
}

std::string TypeOfText(const ElementReference& element, int depth) {
  if (element.attributes.empty()) {
    return Enumeration(element.values, depth);
  }
  // Texts with attributes are of any value here: a restricted one would need a type with a name.
  return Indent(depth) + "<xs:complexType>\n" + Indent(depth + 1) + "<xs:simpleContent>\n" + Indent(depth + 2) +
         "<xs:extension base=\"xs:string\">\n" + Attributes(element.attributes, depth + 3) + Indent(depth + 2) +
         "</xs:extension>\n" + Indent(depth + 1) + "</xs:simpleContent>\n" + Indent(depth) + "</xs:complexType>\n";
}

std::string Declaration(ElementList tree, int depth, bool isGlobal) {
  const ElementReference& element = tree.front();
  const std::string start = Indent(depth) + "<xs:element name=\"" + std::string(element.name) + "\"";
  const std::string occurs = isGlobal ? "" : OccursAttributes(element.occurs);
  if (element.content == Content::Text && element.values.empty() && element.attributes.empty()) {
    const std::string typed = start + " type=\"xs:string\"" + occurs;
    return element.meaning.empty()
               ? typed + "/>\n"
               : typed + ">\n" + Documentation(element.meaning, depth + 1) + Indent(depth) + "</xs:element>\n";
  }
  std::string text = start + occurs + ">\n" + Documentation(element.meaning, depth + 1);
  if (element.content == Content::Text) {
    text += TypeOfText(element, depth + 1);
  } else {
    const bool isOpen = element.content == Content::Open;
    text += Indent(depth + 1) + (isOpen ? "<xs:complexType mixed=\"true\">\n" : "<xs:complexType>\n") +
            Particle(tree, depth + 2) + Attributes(element.attributes, depth + 2) +
            (isOpen ? Indent(depth + 2) + "<xs:anyAttribute processContents=\"skip\"/>\n" : "") + Indent(depth + 1) +
            "</xs:complexType>\n";
  }
  return text + Indent(depth) + "</xs:element>\n";
}

/// One root that commands answer with in different shapes: one or the other.
std::string ChoiceOfRoots(const std::vector<ElementList>& shapes) {
  std::string text = "  <xs:element name=\"" + std::string(shapes.front().front().name) + "\">\n";
  std::string meaning;
  std::string choice;
  for (const ElementList shape : shapes) {
    meaning += (meaning.empty() ? "" : "; or ") + std::string(shape.front().meaning);
    choice += Particle(shape, 4);
  }
  return text + Documentation(meaning, 2) + "    <xs:complexType>\n      <xs:choice>\n" + choice +
         "      </xs:choice>\n    </xs:complexType>\n  </xs:element>\n";
}

/// Whether an element stands in the value of a parameter, as far as the example goes.
bool StandsInParameter(const CommandReference& reference, std::string_view name) {
  return std::ranges::any_of(reference.parameters, [&](const ParameterReference& parameter) {
    return parameter.isMarkup && parameter.example.find("<" + std::string(name) + ">") != std::string_view::npos;
  });
}

std::string NameOfCommand(const DescribedCommand& command) {
  std::string about = std::string(command.entry->summary) + ". Served by " + EntryPointsOf(command) + ".";
  for (const ParameterReference& parameter : command.Reference().parameters) {
    about += " " + std::string(parameter.name) + (parameter.isNeeded ? " (needed): " : ": ") +
             std::string(parameter.meaning) + ".";
  }
  return "      <xs:enumeration value=\"" + std::string(command.entry->name) + "\">\n" + Documentation(about, 4) +
         "      </xs:enumeration>\n";
}

constexpr std::string_view kParameterType =
    "  <xs:complexType name=\"Parameter\">\n"
    "    <xs:sequence>\n"
    "      <xs:element name=\"NAME\" type=\"xs:token\"/>\n"
    "      <xs:element name=\"VALUE\" maxOccurs=\"unbounded\">\n"
    "        <xs:complexType mixed=\"true\">\n"
    "          <xs:sequence>\n"
    "            <xs:any processContents=\"skip\" minOccurs=\"0\" maxOccurs=\"unbounded\"/>\n"
    "          </xs:sequence>\n"
    "        </xs:complexType>\n"
    "      </xs:element>\n"
    "    </xs:sequence>\n"
    "  </xs:complexType>\n";

}  // namespace

std::string RequestSchema() {
  std::string names;
  std::vector<ElementList> besideParameters;
  for (const DescribedCommand& command : DescribedCommands()) {
    names += NameOfCommand(command);
    for (const ElementList tree : Subtrees(command.Reference().elements)) {
      if (!StandsInParameter(command.Reference(), tree.front().name)) {
        besideParameters.push_back(tree);
      }
    }
  }
  std::string others;
  for (const ElementList tree : besideParameters) {
    std::vector<ElementReference> elements(tree.begin(), tree.end());
    elements.front().occurs = Occurs::Optional;
    others += Declaration(elements, 4, false);
  }
  return std::string(kHead) + Documentation("Command documents, the requests of the protocol.", 1) +
         "  <xs:element name=\"COMMAND\">\n    <xs:complexType>\n      <xs:sequence>\n"
         "        <xs:element name=\"NAME\" type=\"CommandName\"/>\n"
         "        <xs:element name=\"PARAMETER\" type=\"Parameter\" minOccurs=\"0\" maxOccurs=\"unbounded\"/>\n" +
         others +
         "      </xs:sequence>\n    </xs:complexType>\n"
         "    <xs:unique name=\"NameOfParameter\">\n      <xs:selector xpath=\"PARAMETER\"/>\n"
         "      <xs:field xpath=\"NAME\"/>\n    </xs:unique>\n  </xs:element>\n" +
         std::string(kParameterType) +
         "  <xs:simpleType name=\"CommandName\">\n    <xs:restriction base=\"xs:token\">\n" + names +
         "    </xs:restriction>\n  </xs:simpleType>\n" + std::string(kTail);
}

std::string ReplySchema() {
  std::vector<std::vector<ElementList>> roots = {{ElementList(kEnvelopeReference)}};
  for (const DescribedCommand& command : DescribedCommands()) {
    const ElementList reply = command.Reference().reply;
    if (reply.empty()) {
      continue;
    }
    const auto known = std::ranges::find_if(
        roots, [&](const auto& shapes) { return shapes.front().front().name == reply.front().name; });
    if (known == roots.end()) {
      roots.push_back({reply});
    } else if (std::ranges::none_of(*known, [&](ElementList shape) { return shape.data() == reply.data(); })) {
      known->push_back(reply);
    }
  }
  std::string declarations;
  for (const auto& shapes : roots) {
    declarations += shapes.size() == 1 ? Declaration(shapes.front(), 1, true) : ChoiceOfRoots(shapes);
  }
  return std::string(kHead) + Documentation("Replies of the protocol; PROJECT with TAGS is the quote document.", 1) +
         declarations + std::string(kTail);
}

}  // namespace parvex::cli
