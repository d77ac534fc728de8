#include "adapters/msxml/markup_stream.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "adapters/windows/com_object.h"
#include "formats/text/encoded_text.h"
#include "formats/text/unicode.h"

namespace parvex::xml {
namespace {

/// Takes what is written to it, and does nothing else that a stream may do.
class WrittenText : public windows::ComObject<IStream> {
 public:
  std::string text;

  HRESULT STDMETHODCALLTYPE Write(const void* bytes, ULONG count, ULONG* written) override {
    try {
      text.append(static_cast<const char*>(bytes), count);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (const std::length_error&) {
      return E_OUTOFMEMORY;
    }
    if (written != nullptr) {
      *written = count;
    }
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }

  HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};

/// Without a byte order mark, and with CR LF at its end.
std::string AsMarkup(std::string text) {
  if (const std::string_view mark = MarkOf(TextEncoding::Utf8); text.starts_with(mark)) {
    text.erase(0, mark.size());
  }
  text.erase(text.find_last_not_of("\r\n") + 1);
  return text += "\r\n";
}

}  // namespace

std::optional<std::string> MarkupByStream(const ComDocument& document) {
  const auto stream = windows::MakeCom<WrittenText>();
  windows::Variant destination;
  V_VT(&destination.Get()) = VT_UNKNOWN;
  V_UNKNOWN(&destination.Get()) = windows::ComPointer<IUnknown>::Share(stream.Get()).Detach();
  if (FAILED(document->save(destination.Get()))) {
    return std::nullopt;
  }
  if (stream->text.empty() || !IsWellFormed(stream->text)) {
    return std::nullopt;
  }
  return AsMarkup(std::move(stream->text));
}

}  // namespace parvex::xml
