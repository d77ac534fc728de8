#include "formats/zip/zip_writer.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>

#include "formats/zip/zip_records.h"

namespace parvex {
namespace {

constexpr std::uint16_t kVersionNeeded = 20;
constexpr std::uint16_t kFirstDay = 0x0021;  // 1 January 1980

void Put16(std::string& out, std::uint16_t value) {
  out.push_back(static_cast<char>(value & 0xFF));
  out.push_back(static_cast<char>(value >> 8));
}

void Put32(std::string& out, std::uint32_t value) {
  Put16(out, static_cast<std::uint16_t>(value & 0xFFFF));
  Put16(out, static_cast<std::uint16_t>(value >> 16));
}

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

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

void ZipWriter::Add(std::string_view name, std::string_view bytes, bool deflate) {
  const std::string data = deflate ? Deflate(bytes) : std::string(bytes);
  // What the record of an entry and its line in the directory have in common.
  std::string shared;
  Put16(shared, kVersionNeeded);
  Put16(shared, IsAscii(name) ? 0 : kNameIsUtf8);
  Put16(shared, deflate ? kDeflated : kStored);
  Put16(shared, 0);  // midnight
  Put16(shared, kFirstDay);
  Put32(shared, static_cast<std::uint32_t>(
                    crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()))));
  Put32(shared, static_cast<std::uint32_t>(data.size()));
  Put32(shared, static_cast<std::uint32_t>(bytes.size()));
  Put16(shared, static_cast<std::uint16_t>(name.size()));
  Put16(shared, 0);  // no extra field

  Put32(directory_, directory_record::kSignature);
  Put16(directory_, kVersionNeeded);  // made by that version, on the DOS file system
  directory_ += shared;
  Put16(directory_, 0);  // no comment
  Put16(directory_, 0);  // on the first disk
  Put16(directory_, 0);  // internal attributes
  Put32(directory_, 0);  // external attributes
  Put32(directory_, static_cast<std::uint32_t>(localRecords_.size()));
  directory_ += name;

  Put32(localRecords_, local_record::kSignature);
  localRecords_.append(shared).append(name).append(data);
  ++entries_;
}

std::string ZipWriter::Finish() const {
  std::string archive = localRecords_ + directory_;
  Put32(archive, end_record::kSignature);
  Put16(archive, 0);  // this disk
  Put16(archive, 0);  // the directory's disk
  Put16(archive, entries_);
  Put16(archive, entries_);
  Put32(archive, static_cast<std::uint32_t>(directory_.size()));
  Put32(archive, static_cast<std::uint32_t>(localRecords_.size()));
  Put16(archive, 0);  // no comment
  return archive;
}

}  // namespace parvex
