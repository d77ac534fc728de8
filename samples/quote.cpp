// Exports the units of a project as a quote document, and shows how failures look. Early bound.

#include <msxml2.h>
#include <oleauto.h>
#include <shellapi.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "parvex_idl.h"

namespace {

// Reports the failure of a call with what the component says about it, and ends the program.
void Require(HRESULT result, const char* call) {
  if (FAILED(result)) {
    std::printf("%s failed: %08lX\n", call, static_cast<unsigned long>(result));
    std::exit(1);
  }
}

std::string Narrow(const std::wstring& text) {
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(), size, nullptr, nullptr);
  return narrow;
}

// The text, whose BSTR is let go.
std::wstring Take(BSTR text) {
  const std::wstring taken = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return taken;
}

std::wstring Escaped(const std::wstring& text) {
  std::wstring escaped;
  for (const wchar_t c : text) {
    escaped += c == L'&' ? L"&amp;" : c == L'<' ? L"&lt;" : std::wstring(1, c);
  }
  return escaped;
}

HRESULT PullText(ILegacyORLAPull* parvex, const std::wstring& command, std::wstring& reply) {
  BSTR given = SysAllocStringLen(command.data(), static_cast<UINT>(command.size()));
  BSTR answered = nullptr;
  const HRESULT result = parvex->PullNGORLA(&given, &answered);
  SysFreeString(given);
  reply = Take(answered);
  return result;
}

IXMLDOMDocument2* Parse(const std::wstring& text) {
  IXMLDOMDocument2* document = nullptr;
  CLSID classId;
  Require(CLSIDFromProgID(L"MSXML2.DOMDocument.3.0", &classId), "CLSIDFromProgID");
  Require(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                           reinterpret_cast<void**>(&document)),
          "creating a document");
  VARIANT_BOOL loaded = VARIANT_FALSE;
  document->put_async(VARIANT_FALSE);
  BSTR markup = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  document->loadXML(markup, &loaded);
  SysFreeString(markup);
  return document;
}

void PrintTexts(IXMLDOMDocument2* document, const wchar_t* path, const char* label) {
  BSTR expression = SysAllocString(path);
  IXMLDOMNodeList* nodes = nullptr;
  Require(document->selectNodes(expression, &nodes), "selectNodes");
  SysFreeString(expression);
  IXMLDOMNode* node = nullptr;
  while (nodes->nextNode(&node) == S_OK) {
    BSTR text = nullptr;
    node->get_text(&text);
    std::printf("%s%s\n", label, Narrow(Take(text)).c_str());
    node->Release();
  }
  nodes->Release();
}

long CountNodes(IXMLDOMDocument2* document, const wchar_t* path) {
  BSTR expression = SysAllocString(path);
  IXMLDOMNodeList* nodes = nullptr;
  Require(document->selectNodes(expression, &nodes), "selectNodes");
  SysFreeString(expression);
  long length = 0;
  nodes->get_length(&length);
  nodes->Release();
  return length;
}

void Run(const std::wstring& projectName) {
  ILegacyORLAPull* parvex = nullptr;
  Require(CoCreateInstance(CLSID_LegacyORLAPull, nullptr, CLSCTX_INPROC_SERVER, IID_ILegacyORLAPull,
                           reinterpret_cast<void**>(&parvex)),
          "creating Parvex.LegacyORLAPull");

  // 1. Pull takes a command as a document and answers with a document.
  IXMLDOMDocument2* command = Parse(L"<COMMAND><NAME>getProjectList</NAME></COMMAND>");
  domDocument* given = reinterpret_cast<domDocument*>(command);
  domDocument* answered = nullptr;
  Require(parvex->Pull(&given, &answered), "Pull");
  IXMLDOMDocument2* reply = reinterpret_cast<IXMLDOMDocument2*>(answered);
  PrintTexts(reply, L"//PROJECT/NAME", "Project: ");
  reply->Release();
  command->Release();

  // 2. PullNGORLA takes and gives text.
  std::wstring text;
  Require(PullText(parvex,
                   L"<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>"
                   L"<UserSelectionTransfer><ProjectName>" +
                       Escaped(projectName) + L"</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>",
                   text),
          "PullNGORLA");
  IXMLDOMDocument2* quote = Parse(text);
  std::printf("Tags in the quote: %ld\n", CountNodes(quote, L"//TAG"));
  quote->Release();

  // 3. The codec is a class of its own.
  IcBinEncoder* encoder = nullptr;
  Require(CoCreateInstance(CLSID_cBinEncoder, nullptr, CLSCTX_INPROC_SERVER, IID_IcBinEncoder,
                           reinterpret_cast<void**>(&encoder)),
          "creating Parvex.cBinEncoder");
  BSTR plain = SysAllocString(L"Man");
  BSTR base64 = nullptr;
  Require(encoder->Encode(plain, &base64), "Encode");
  SysFreeString(plain);
  std::printf("Base64 of Man: %s\n", Narrow(Take(base64)).c_str());
  encoder->Release();

  // 4. A command that fails for a known reason is answered with returnError -1.
  Require(PullText(parvex, L"<COMMAND><NAME>noSuchCommand</NAME></COMMAND>", text), "PullNGORLA");
  IXMLDOMDocument2* failed = Parse(text);
  PrintTexts(failed, L"//returnError | //errorMessage", "Failed reply: ");
  failed->Release();

  // 5. Everything else ends the call with an error, which says more than its number.
  const HRESULT result = PullText(parvex, L"<COMMAND/>", text);
  IErrorInfo* details = nullptr;
  BSTR source = nullptr;
  BSTR description = nullptr;
  if (FAILED(result) && GetErrorInfo(0, &details) == S_OK) {
    details->GetSource(&source);
    details->GetDescription(&description);
    details->Release();
  }
  std::printf("Failed call: %lX from %s: %s\n", static_cast<unsigned long>(result), Narrow(Take(source)).c_str(),
              Narrow(Take(description)).c_str());
  parvex->Release();
}

}  // namespace

int main() {
  int count = 0;
  LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::wstring projectName = count > 1 ? arguments[1] : L"Riverside Clinic";
  LocalFree(arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Run(projectName);
  CoUninitialize();
  return 0;
}
