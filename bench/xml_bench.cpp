// How the XML seam compares with the library below it, in one run: the same document written by both, built through
// nodes and directly as text, parsed, and selected from.

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlwriter.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "seams/xml.h"

namespace {

using parvex::xml::Document;
using parvex::xml::Node;

constexpr int kUnits = 1000;
constexpr int kComponents = 30;
constexpr int kRounds = 7;

// Processor time of one call in milliseconds, best of several rounds. Every round is a process of its own that starts
// with `prepare`, so that each finds the heap as fresh as the next: trees in a heap full of holes cost several times as
// much.
template <class Prepare, class Work>
double Milliseconds(Prepare prepare, Work work) {
  double best = 1e300;
  for (int round = 0; round < kRounds; ++round) {
    int ends[2];
    if (pipe(ends) != 0) {
      std::perror("pipe");
      std::exit(1);
    }
    const pid_t child = fork();
    if (child == 0) {
      auto prepared = prepare();
      const std::clock_t start = std::clock();
      work(prepared);
      const double taken = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
      _exit(write(ends[1], &taken, sizeof taken) == sizeof taken ? 0 : 1);
    }
    double taken = 0;
    if (child < 0 || read(ends[0], &taken, sizeof taken) != sizeof taken) {
      std::perror("measuring");
      std::exit(1);
    }
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    best = std::min(best, taken);
  }
  return best;
}

void Leaf(const Document& document, const Node& parent, const char* name, std::string_view text) {
  parent.Append(document.CreateElement(name)).SetText(text);
}

void AddComponent(const Document& document, const Node& components, int number) {
  const Node component = components.Append(document.CreateElement("COMPONENT"));
  component.SetAttribute("SEQUENCE", std::to_string(number));
  component.SetAttribute("TYPE", "ACCESSORY");
  component.SetAttribute("PARTNUMBER", "ACC-4711-" + std::to_string(number));
  component.SetAttribute("QUANTITY", "2");
  component.SetAttribute("PRICE", "1234.50");
  Leaf(document, component, "DESCRIPTION", "Coil guard, 5 < 7 mm & louvered, field installed");
  const Node list = component.Append(document.CreateElement("ATTRIBUTES_LIST"));
  Leaf(document, list, "DELIVERYGROUP", "");
  Leaf(document, list, "SUPPLIER", "Korvane");
  Leaf(document, list, "TYPEOFSALE", "1");
  Leaf(document, list, "PREORDERREQ", "0");
  Leaf(document, list, "TON", "12.5");
  Leaf(document, list, "CFM", "5000");
  Leaf(document, list, "ATTRIBUTE1", "plain");
}

Document Built() {
  Document document = Document::New();
  const Node root = document.Append(document.CreateElement("BASEUNITS"));
  for (int unit = 1; unit <= kUnits; ++unit) {
    const Node element = root.Append(document.CreateElement("BASEUNIT"));
    element.SetAttribute("SEQUENCE", std::to_string(unit));
    const Node components = element.Append(document.CreateElement("COMPONENTS"));
    for (int number = 1; number <= kComponents; ++number) {
      AddComponent(document, components, number);
    }
  }
  return document;
}

void LibraryLeaf(xmlNode* parent, const char* name, const char* text) {
  xmlNewTextChild(parent, nullptr, BAD_CAST name, *text == '\0' ? nullptr : BAD_CAST text);
}

// The same tree through the library's own calls.
xmlDoc* BuiltByTheLibrary() {
  xmlDoc* document = xmlNewDoc(BAD_CAST "1.0");
  xmlNode* root = xmlNewDocNode(document, nullptr, BAD_CAST "BASEUNITS", nullptr);
  xmlDocSetRootElement(document, root);
  for (int unit = 1; unit <= kUnits; ++unit) {
    xmlNode* element = xmlNewChild(root, nullptr, BAD_CAST "BASEUNIT", nullptr);
    xmlNewProp(element, BAD_CAST "SEQUENCE", BAD_CAST std::to_string(unit).c_str());
    xmlNode* components = xmlNewChild(element, nullptr, BAD_CAST "COMPONENTS", nullptr);
    for (int number = 1; number <= kComponents; ++number) {
      xmlNode* component = xmlNewChild(components, nullptr, BAD_CAST "COMPONENT", nullptr);
      xmlNewProp(component, BAD_CAST "SEQUENCE", BAD_CAST std::to_string(number).c_str());
      xmlNewProp(component, BAD_CAST "TYPE", BAD_CAST "ACCESSORY");
      xmlNewProp(component, BAD_CAST "PARTNUMBER", BAD_CAST("ACC-4711-" + std::to_string(number)).c_str());
      xmlNewProp(component, BAD_CAST "QUANTITY", BAD_CAST "2");
      xmlNewProp(component, BAD_CAST "PRICE", BAD_CAST "1234.50");
      LibraryLeaf(component, "DESCRIPTION", "Coil guard, 5 < 7 mm & louvered, field installed");
      xmlNode* list = xmlNewChild(component, nullptr, BAD_CAST "ATTRIBUTES_LIST", nullptr);
      LibraryLeaf(list, "DELIVERYGROUP", "");
      LibraryLeaf(list, "SUPPLIER", "Korvane");
      LibraryLeaf(list, "TYPEOFSALE", "1");
      LibraryLeaf(list, "PREORDERREQ", "0");
      LibraryLeaf(list, "TON", "12.5");
      LibraryLeaf(list, "CFM", "5000");
      LibraryLeaf(list, "ATTRIBUTE1", "plain");
    }
  }
  return document;
}

void StreamLeaf(xmlTextWriter* writer, const char* name, const char* text) {
  xmlTextWriterStartElement(writer, BAD_CAST name);
  if (*text != '\0') {
    xmlTextWriterWriteString(writer, BAD_CAST text);
  }
  xmlTextWriterEndElement(writer);
}

void StreamAttribute(xmlTextWriter* writer, const char* name, const char* value) {
  xmlTextWriterWriteAttribute(writer, BAD_CAST name, BAD_CAST value);
}

// The same markup through the library's streaming writer, which keeps no tree.
std::size_t Streamed() {
  xmlBuffer* buffer = xmlBufferCreate();
  xmlBufferSetAllocationScheme(buffer, XML_BUFFER_ALLOC_DOUBLEIT);
  xmlTextWriter* writer = xmlNewTextWriterMemory(buffer, 0);
  xmlTextWriterStartElement(writer, BAD_CAST "BASEUNITS");
  for (int unit = 1; unit <= kUnits; ++unit) {
    xmlTextWriterStartElement(writer, BAD_CAST "BASEUNIT");
    StreamAttribute(writer, "SEQUENCE", std::to_string(unit).c_str());
    xmlTextWriterStartElement(writer, BAD_CAST "COMPONENTS");
    for (int number = 1; number <= kComponents; ++number) {
      xmlTextWriterStartElement(writer, BAD_CAST "COMPONENT");
      StreamAttribute(writer, "SEQUENCE", std::to_string(number).c_str());
      StreamAttribute(writer, "TYPE", "ACCESSORY");
      StreamAttribute(writer, "PARTNUMBER", ("ACC-4711-" + std::to_string(number)).c_str());
      StreamAttribute(writer, "QUANTITY", "2");
      StreamAttribute(writer, "PRICE", "1234.50");
      StreamLeaf(writer, "DESCRIPTION", "Coil guard, 5 < 7 mm & louvered, field installed");
      xmlTextWriterStartElement(writer, BAD_CAST "ATTRIBUTES_LIST");
      StreamLeaf(writer, "DELIVERYGROUP", "");
      StreamLeaf(writer, "SUPPLIER", "Korvane");
      StreamLeaf(writer, "TYPEOFSALE", "1");
      StreamLeaf(writer, "PREORDERREQ", "0");
      StreamLeaf(writer, "TON", "12.5");
      StreamLeaf(writer, "CFM", "5000");
      StreamLeaf(writer, "ATTRIBUTE1", "plain");
      xmlTextWriterEndElement(writer);
      xmlTextWriterEndElement(writer);
    }
    xmlTextWriterEndElement(writer);
    xmlTextWriterEndElement(writer);
  }
  xmlTextWriterEndElement(writer);
  xmlFreeTextWriter(writer);
  const std::size_t size = static_cast<std::size_t>(xmlBufferLength(buffer));
  xmlBufferFree(buffer);
  return size;
}

std::size_t Dumped(xmlDoc* document) {
  xmlBuffer* buffer = xmlBufferCreate();
  xmlBufferSetAllocationScheme(buffer, XML_BUFFER_ALLOC_DOUBLEIT);
  xmlNodeDump(buffer, document, xmlDocGetRootElement(document), 0, 0);
  const std::size_t size = static_cast<std::size_t>(xmlBufferLength(buffer));
  xmlBufferFree(buffer);
  return size;
}

xmlDoc* ParsedByTheLibrary(const std::string& markup) {
  return xmlReadMemory(markup.data(), static_cast<int>(markup.size()), nullptr, nullptr, XML_PARSE_HUGE);
}

void Report(const char* what, double ours, double theirs) {
  std::printf("%-44s %9.2f ms %9.2f ms   x %.2f\n", what, ours, theirs, theirs / ours);
}

}  // namespace

int main() {
  const std::string markup = Built().Root().Xml();
  xmlDoc* check = BuiltByTheLibrary();
  if (Dumped(check) != markup.size() || Streamed() != markup.size()) {
    std::puts("the ways of writing differ");
    return 1;
  }
  xmlFreeDoc(check);
  malloc_trim(0);  // or every round would begin with copies of the pages that these trees left behind
  std::printf("%d units, %d components each, %.1f MB\n", kUnits, kComponents, static_cast<double>(markup.size()) / 1e6);
  std::printf("%-44s %12s %12s   %s\n", "", "seam", "library", "library / seam");

  const auto nothing = [] { return 0; };
  const auto parsed = [&] { return ParsedByTheLibrary(markup); };
  Report("write what was built (library: xmlNodeDump)",
         Milliseconds(Built, [](Document& built) { built.Root().Xml(); }), Milliseconds(BuiltByTheLibrary, Dumped));
  Report("write what was parsed",
         Milliseconds([&] { return Document::Parse(markup); }, [](Document& document) { document.Root().Xml(); }),
         Milliseconds(parsed, Dumped));
  Report("build and free (library: xmlNewChild)", Milliseconds(nothing, [](int) { Built(); }),
         Milliseconds(nothing, [](int) { xmlFreeDoc(BuiltByTheLibrary()); }));
  Report("build, write, free", Milliseconds(nothing, [](int) { Built().Xml(); }), Milliseconds(nothing, [](int) {
           xmlDoc* built = BuiltByTheLibrary();
           Dumped(built);
           xmlFreeDoc(built);
         }));
  Report("build, write, free (library: xmlTextWriter)", Milliseconds(nothing, [](int) { Built().Xml(); }),
         Milliseconds(nothing, [](int) { Streamed(); }));
  Report("parse and free (library: xmlReadMemory)", Milliseconds(nothing, [&](int) { Document::Parse(markup); }),
         Milliseconds(nothing, [&](int) { xmlFreeDoc(ParsedByTheLibrary(markup)); }));

  constexpr int kSelections = 100'000;
  const double selection = Milliseconds([] { return Built().First("//COMPONENT"); },
                                        [](Node& component) {
                                          for (int i = 0; i < kSelections; ++i) {
                                            component.First("descendant::SUPPLIER");
                                          }
                                        });
  std::printf("one selection in a component: %.2f us\n", selection * 1000 / kSelections);
  return 0;
}
