#include "masking/places.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "formats/text/text.h"

namespace parvex::masking {
namespace {

struct Named {
  std::string_view name;
  Place place;
};

constexpr auto kNamed = std::to_array<Named>({
    {"ADDRESS", Place::Name},
    {"ARCHITECT", Place::Name},
    {"ATTENTION", Place::Name},
    {"AUTHOR", Place::Name},
    {"BUILDING", Place::Name},
    {"CITY", Place::Name},
    {"COMPANY", Place::Name},
    {"COMPANYNAME", Place::Name},
    {"CONTACT", Place::Name},
    {"CONTACTINITIALS", Place::Name},
    {"CONTACTNAME", Place::Name},
    {"CONTACTNUMBER", Place::Name},
    {"CONTACTPERSON", Place::Name},
    {"CONTRACTOR", Place::Name},
    {"COUNTRY", Place::Name},
    {"CREATEDBY", Place::Name},
    {"CUSTOMER", Place::Name},
    {"CUSTOMERNAME", Place::Name},
    {"DESTINATIONPROJECT", Place::Name},
    {"EMAIL", Place::Name},
    {"EMAILADDRESS", Place::Name},
    {"EMAILID", Place::Name},
    {"ENGINEER", Place::Name},
    {"FAX", Place::Name},
    {"FAXNUMBER", Place::Name},
    {"FIRSTNAME", Place::Name},
    {"INITIALS", Place::Name},
    {"JOBNAME", Place::Name},
    {"LASTNAME", Place::Name},
    {"LEGACYPROJECTNAME", Place::Name},
    {"LOCATION", Place::Name},
    {"MARKFOR", Place::Name},
    {"MOBILE", Place::Name},
    {"MODIFIEDBY", Place::Name},
    {"NEWPROJECTNAME", Place::Name},
    {"NEWTAGNAME", Place::Name},
    {"OWNERNAME", Place::Name},
    {"PHONE", Place::Name},
    {"PHONENUMBER", Place::Name},
    {"POSTALCODE", Place::Name},
    {"POSTCODE", Place::Name},
    {"PROJECTID", Place::Name},
    {"PROJECTNAME", Place::Name},
    {"PROJNAME", Place::Name},
    {"SALESENGINEER", Place::Name},
    {"SALESMAN", Place::Name},
    {"SALESPERSON", Place::Name},
    {"SITE", Place::Name},
    {"SOURCEPROJECT", Place::Name},
    {"STREET", Place::Name},
    {"TAGNAME", Place::Name},
    {"TELEPHONE", Place::Name},
    {"USERNAME", Place::Name},
    {"ZIPCODE", Place::Name},
    {"COMMENT", Place::Description},
    {"COMMENTS", Place::Description},
    {"DESCRIPTION", Place::Description},
    {"DESCRIPTIONS", Place::Description},
    {"ETODESCRIPTION", Place::Description},
    {"EXTENDEDDESCRIPTION", Place::Description},
    {"LONGDESCRIPTION", Place::Description},
    {"MEMO", Place::Description},
    {"NOTE", Place::Description},
    {"NOTES", Place::Description},
    {"PROJECTDESCRIPTION", Place::Description},
    {"REMARK", Place::Description},
    {"REMARKS", Place::Description},
    {"SHORTDESCRIPTION", Place::Description},
    {"SPECIALINSTRUCTIONS", Place::Description},
    {"TAGDESCRIPTION", Place::Description},
    {"AMOUNT", Place::Price},
    {"COST", Place::Price},
    {"COMMISSION", Place::Price},
    {"DISCOUNT", Place::Price},
    {"EXTENDEDPRICE", Place::Price},
    {"LISTPRICE", Place::Price},
    {"MARGIN", Place::Price},
    {"MASTERPRICE", Place::Price},
    {"MULTIPLIER", Place::Price},
    {"NETPRICE", Place::Price},
    {"PRICE", Place::Price},
    {"SALESPRICE", Place::Price},
    {"TOTALCOST", Place::Price},
    {"TOTALPRICE", Place::Price},
    {"UNITCOST", Place::Price},
    {"UNITPRICE", Place::Price},
    {"ARCHIVEFILE", Place::Path},
    {"FILENAME", Place::Path},
    {"FILESPEC", Place::Path},
    {"FOLDER", Place::Path},
    {"NEWPROJECTPATH", Place::Path},
    {"PATH", Place::Path},
    {"PROJECTPATH", Place::Path},
    {"BLOB", Place::Packed},
});

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

Place PlaceOfKey(std::string_view key) {
  const auto found = std::find_if(kNamed.begin(), kNamed.end(), [&](const Named& one) { return one.name == key; });
  return found == kNamed.end() ? Place::Other : found->place;
}

}  // namespace

Place PlaceNamed(std::string_view name) {
  std::string key;
  for (const char c : name) {
    if (c != '_' && c != ' ' && c != '-') {
      key.push_back(c);
    }
  }
  while (!key.empty() && (key.back() == ':' || (key.back() >= '0' && key.back() <= '9'))) {
    key.pop_back();
  }
  const std::string upper = ToUpper(key);
  if (const Place place = PlaceOfKey(upper); place != Place::Other) {
    return place;
  }
  const std::size_t prefix = static_cast<std::size_t>(
      std::find_if(key.begin(), key.end(), [](char c) { return c >= 'A' && c <= 'Z'; }) - key.begin());
  return prefix > 0 && prefix <= 3 && prefix < key.size() ? PlaceOfKey(upper.substr(prefix)) : Place::Other;
}

Place PlaceOfElement(std::string_view element, std::string_view parent, std::string_view named) {
  if (element == "NAME") {
    return IsOneOf(parent, {"TAG", "PROTOTAG", "PROJECT", "CUSTOMER", "CONTACT", "USER"}) ? Place::Name : Place::Other;
  }
  return element == "VALUE" ? PlaceNamed(named) : PlaceNamed(element);
}

std::string_view ProtocolTexts() {
  return R"(A Project of that name already exists
Acoustics Data
Certified Drawing Data
Command Line
Copy of
Corner Weights Report
Custom Controls Sheet
Detailed Performance Report
ECO Design
Equipment Schedule
Error in getReport
Error in getReports
Extended Description
ETO Description
Feature Sheet
Field Wiring Diagram
Guide Specifications
IniFile Logic Error
No Error
No Report names were specified
No Report was generated
Only units that originated in ORLA can be returned to ORLA
Performance Output Summary
Returning Applied Chiller Tags to ORLA is not supported
Specification Sheet
System Error: Unable to read BinPath
Tag document BLOB is missing
Tag document PDSG is missing
The Report could not be generated
The Reports could not be generated
This Tag did not originate from Legacy ORLA. Cannot Import it
Unit Report
Unrecognized Report
Unrecognized or Failed Command
User Canceled
BACNet Points List
Workflow Service runBuilder QuoteBuilder Consumer Builder
object not set
no component is registered as
the tag data the command document the Hybris document
cannot read cannot write cannot remove cannot rename it is read-only
file not found path not found permission denied disk full the folder does not exist
more than accessories base units blanket items components of one base unit extended description lines
it does not parse as XML file line column
the database is damaged not a Jet database an encrypted Jet database cannot be read
Korvane Tessel Bin Temp Projects Archives Reports Templates Drawings GSpec Code Blobs
Windows System32 Users Public Program Files Documents and Settings AppData Local
HBInput.ini QBInput.ini QBOutput.ini output.ini ubout.ini input.ini QPblob.tmp NGreport.xml
Project.mdb Options.xml Tools.xml TagUpdateInfo.xml UIKeys.txt KDCustomRpt_Cfg.xml
KDQ47 KDQU470 KDRPTSV47 CKDBuilder CRemoteInterface CKDScheduleRequest kdwfm470.exe
OrlaImportNoUI OrlaProjectImport ToolBarActive TreeViewActive SplitterPosition
Config TagIndex TagData Custom Preview English Metric Letter True False Yes No OK Cancel None
Header Action Reason XML RTF ini mdb blb bmp dxf tmp exe dll
Standard Unit Report Tag Project Tags Projects Name Value Data Product Application System
Pull PullNGORLA Parvex LegacyORLAPull HKEY_LOCAL_MACHINE HKEY_CURRENT_USER SOFTWARE
router automation process messageBox registry file database note nested once before after)";
}

}  // namespace parvex::masking
