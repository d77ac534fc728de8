#include "legacy_standin/reports/report_server.h"

#include <algorithm>
#include <array>

#include "legacy_standin/late_bound/late_bound_members.h"
#include "legacy_standin/reports/bitmap.h"
#include "legacy_standin/reports/rtf_text.h"
#include "seams/member_errors.h"

namespace parvex::standin {
namespace {

using automation::Argument;
using automation::Value;

constexpr std::array<std::string_view, 7> kProperties = {"action",  "ClientID",  "command",    "OutputType",
                                                         "Project", "ProjectID", "OutputUnits"};
constexpr std::array<std::string_view, 6> kCategories = {"UnitReport",         "PerformanceReport", "CertifiedDrawing",
                                                         "GuideSpecification", "AcousticSummary",   "Custom"};
constexpr std::string_view kPreviewClient = "NGORLA";
constexpr std::string_view kSubmittalClient = "NGSubmittal";

template <typename List>
bool Holds(const List& list, std::string_view text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

/// The tag's value that a line of a definition shows.
std::string ValueOf(const xml::Node& line, const xml::Document& tag) {
  const xml::Node product = tag.First("//Product");
  return product ? product.Attribute(line.Attribute("product").value_or("")).value_or("") : std::string();
}

std::string TitleOf(const xml::Document& definition, const std::string& reportName) {
  return definition.Root().Attribute("title").value_or(reportName);
}

}  // namespace

std::string ReportsFolder(const Application& application) { return application.Root() + "\\Bin\\Reports\\Temp"; }

Value ReportServer::Get(std::string_view member) {
  FailWhereTold(application_.settings.reportServer.failAt, *this, member);
  if (!Holds(kProperties, member)) {
    RefuseMember(*this, member);
  }
  return Property(member);
}

void ReportServer::Put(std::string_view member, const Value& value) {
  FailWhereTold(application_.settings.reportServer.failAt, *this, member);
  if (!Holds(kProperties, member)) {
    RefuseMember(*this, member);
  }
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) {
    throw automation::WrongArgumentType(Name(), member, 1);
  }
  properties_[std::string(member)] = *text;
}

Value ReportServer::Call(std::string_view member, std::span<Argument> arguments) {
  FailWhereTold(application_.settings.reportServer.failAt, *this, member);
  if (member == "Reset") {
    TextArguments(*this, member, arguments, 0);
    Reset();
  } else if (member == "AddTag") {
    AddTag(TextArguments(*this, member, arguments, 5, Passed::ByReference));
  } else if (member == "AddReport") {
    AddReport(TextArguments(*this, member, arguments, 5, Passed::ByReference));
  } else if (member == "MakeReport") {
    TextArguments(*this, member, arguments, 1, Passed::ByReference);
    return MakeReport();
  } else {
    RefuseMember(*this, member);
  }
  return {};
}

void ReportServer::Reset() {
  properties_.clear();
  tags_.clear();
  reports_.clear();
}

void ReportServer::AddTag(const std::vector<std::string>& texts) {
  const xml::Document data = xml::Document::Parse(texts[1]);
  if (data.IsEmpty()) {
    RefuseValue(*this, "AddTag", "the data of \"" + texts[4] + "\" is no XML document: " + data.ParseError());
  }
  if (texts[2] != texts[3]) {
    RefuseValue(*this, "AddTag", "the group is once \"" + texts[2] + "\" and once \"" + texts[3] + "\"");
  }
  tags_.push_back({texts[0], texts[2], texts[4], data});
}

void ReportServer::AddReport(const std::vector<std::string>& texts) {
  if (!Holds(kCategories, texts[1])) {
    RefuseValue(*this, "AddReport", "unknown category \"" + texts[1] + "\"");
  }
  const xml::Document definition = xml::Document::Load(application_.files.ReadAll(texts[0]));
  if (definition.IsEmpty()) {
    RefuseValue(*this, "AddReport", texts[0] + " is no XML document: " + definition.ParseError());
  }
  reports_.push_back({texts[0], texts[1], texts[2], FindTag(texts[3], texts[4]), definition});
}

bool ReportServer::MakeReport() const {
  RequireProperty("action", "Preview");
  RequireProperty("command", "runReport");
  RequireProperty("OutputType", "RTF");
  const bool makes = application_.settings.reportServer.makeReport && !reports_.empty();
  WriteRequest(makes);
  if (!makes) {
    return false;
  }
  if (Property("ClientID") == kSubmittalClient) {
    WriteSubmittal(reports_.back());
  } else {
    RequireProperty("ClientID", kPreviewClient);
    WriteRichText();
  }
  return true;
}

std::string ReportServer::Property(std::string_view name) const {
  const auto found = properties_.find(name);
  return found == properties_.end() ? std::string() : found->second;
}

void ReportServer::RequireProperty(std::string_view name, std::string_view value) const {
  if (Property(name) != value) {
    RefuseValue(*this, "MakeReport",
                std::string(name) + " is \"" + Property(name) + "\" and not \"" + std::string(value) + "\"");
  }
}

std::size_t ReportServer::FindTag(std::string_view pdsg, std::string_view name) const {
  for (std::size_t i = tags_.size(); i > 0; --i) {
    if (tags_[i - 1].pdsg == pdsg && tags_[i - 1].name == name) {
      return i - 1;
    }
  }
  RefuseValue(*this, "AddReport", "no tag \"" + std::string(name) + "\" of " + std::string(pdsg) + " was added");
}

std::vector<std::string> ReportServer::LinesOf(const Report& report) const {
  const Tag& tag = tags_[report.tag];
  std::vector<std::string> lines = {"Project: " + Property("Project") + " (" + Property("ProjectID") + ")",
                                    "Tag: " + tag.name + " (" + tag.pdsg + ")"};
  if (const std::string units = Property("OutputUnits"); !units.empty()) {
    lines.push_back("Units: " + units);
  }
  for (const xml::Node& line : report.definition.All("/*/line")) {
    lines.push_back(line.Attribute("label").value_or("") + ": " + ValueOf(line, tag.data));
  }
  return lines;
}

void ReportServer::WriteRichText() const {
  RtfText preview;
  for (std::size_t i = 0; i < reports_.size(); ++i) {
    const std::string title = TitleOf(reports_[i].definition, reports_[i].name);
    RtfText one;
    one.Heading(title);
    preview.Heading(title);
    for (const std::string& line : LinesOf(reports_[i])) {
      one.Line(line);
      preview.Line(line);
    }
    const std::string working = "rpt" + std::to_string(i + 1);
    Write(working + ".rtf", one.Bytes());
    Write(working + ".te", title + "\r\n");
  }
  Write("Preview.rtf", preview.Bytes());
}

void ReportServer::WriteSubmittal(const Report& report) const {
  const xml::Document submittal = xml::Document::Parse("<NGreport><root/></NGreport>");
  const xml::Node root = submittal.Root().FirstChild();
  const std::string title = TitleOf(report.definition, report.name);
  xml::AppendElement(root, "title", title);
  RtfText text;
  text.Heading(title);
  for (const std::string& line : LinesOf(report)) {
    xml::AppendElement(root, "line", line);
    text.Line(line);
  }
  Write("rpt1.rtf", text.Bytes());
  for (const xml::Node& part : report.definition.All("/*/chart | /*/image | /*/section")) {
    if (part.Name() != "chart") {
      root.Append(part.Clone());
      continue;
    }
    // A picture of the server's own: its reader consumes it.
    const std::string fileName = "chart" + std::to_string(report.tag + 1) + ".bmp";
    Write(fileName, MakeBitmap(48, 24, 0x2060A0));
    xml::AppendElement(root, "image", ReportsFolder(application_) + "\\" + fileName);
  }
  Write("NGreport.xml", submittal.Bytes());
}

void ReportServer::WriteRequest(bool made) const {
  const xml::Document request = xml::Document::Parse("<Request/>");
  request.Root().SetAttribute("made", made ? "True" : "False");
  for (const std::string_view name : kProperties) {
    xml::AppendElement(request.Root(), name, Property(name));
  }
  for (const Tag& tag : tags_) {
    const xml::Node node = xml::AppendElement(request.Root(), "Tag");
    xml::AppendElement(node, "TemplatesFolder", tag.templatesFolder);
    xml::AppendElement(node, "PDSG", tag.pdsg);
    xml::AppendElement(node, "Name", tag.name);
    xml::AppendElement(node, "Data").Append(tag.data.Root().Clone());
  }
  for (const Report& report : reports_) {
    const xml::Node node = xml::AppendElement(request.Root(), "Report");
    xml::AppendElement(node, "Template", report.templatePath);
    xml::AppendElement(node, "Category", report.category);
    xml::AppendElement(node, "Name", report.name);
    xml::AppendElement(node, "Tag", tags_[report.tag].name);
  }
  Write("Request.xml", request.Bytes());
}

void ReportServer::Write(const std::string& fileName, std::string_view bytes) const {
  const std::string folder = ReportsFolder(application_);
  application_.files.CreateFolder(folder);
  application_.files.Replace(folder + "\\" + fileName, bytes);
}

}  // namespace parvex::standin
