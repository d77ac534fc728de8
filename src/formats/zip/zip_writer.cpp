#include "formats/zip/zip_writer.h"

#include <zlib.h>

#include <stdexcept>

#include "formats/zip/checksum.h"
#include "formats/zip/written_records.h"
#include "formats/zip/zip_records.h"

namespace parvex {
namespace {

// A deflate stream without the zlib header and trailer.
std::string Deflate(std::string_view bytes) {
  constexpr int kRawStream = -MAX_WBITS;
  constexpr int kDefaultMemory = 8;
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawStream, kDefaultMemory, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    throw std::runtime_error("zlib does not start");
  }
  std::string deflated(deflateBound(&stream, bytes.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(deflated.data());
  stream.avail_out = static_cast<uInt>(deflated.size());
  const int result = deflate(&stream, Z_FINISH);
  deflated.resize(stream.total_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) {
    throw std::runtime_error("zlib does not finish a stream");
  }
  return deflated;
}

}  // namespace

void ZipWriter::Add(std::string_view name, std::string_view bytes, bool deflate) {
  const std::string data = deflate ? Deflate(bytes) : std::string(bytes);
  const std::string fields = EntryFields({.name = name,
                                          .method = deflate ? kDeflated : kStored,
                                          .checksum = ChecksumOf(bytes),
                                          .packedLength = static_cast<std::uint32_t>(data.size()),
                                          .length = static_cast<std::uint32_t>(bytes.size())});
  directory_ += DirectoryRecord(name, fields, static_cast<std::uint32_t>(localRecords_.size()));
  localRecords_.append(LocalRecord(name, fields)).append(data);
  ++entries_;
}

std::string ZipWriter::Finish() const {
  return localRecords_ + directory_ + EndRecord(entries_, directory_.size(), localRecords_.size());
}

}  // namespace parvex
