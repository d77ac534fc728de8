#include "formats/zip/written_records.h"

#include <algorithm>

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

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::string EntryFields(const EntryShape& entry) {
  std::string fields;
  Put16(fields, kVersionNeeded);
  Put16(fields, IsAscii(entry.name) ? 0 : kNameIsUtf8);
  Put16(fields, entry.method);
  Put16(fields, 0);  // midnight
  Put16(fields, kFirstDay);
  Put32(fields, entry.checksum);
  Put32(fields, entry.packedLength);
  Put32(fields, entry.length);
  Put16(fields, static_cast<std::uint16_t>(entry.name.size()));
  Put16(fields, 0);  // no extra field
  return fields;
}

std::string LocalRecord(std::string_view name, std::string_view fields) {
  std::string record;
  Put32(record, local_record::kSignature);
  return record.append(fields).append(name);
}

std::string DirectoryRecord(std::string_view name, std::string_view fields, std::uint32_t offset) {
  std::string record;
  Put32(record, directory_record::kSignature);
  Put16(record, kVersionNeeded);  // made by that version, on the DOS file system
  record += fields;
  Put16(record, 0);  // no comment
  Put16(record, 0);  // on the first disk
  Put16(record, 0);  // internal attributes
  Put32(record, 0);  // external attributes
  Put32(record, offset);
  return record.append(name);
}

std::string EndRecord(std::uint16_t entries, std::size_t directoryLength, std::uint64_t directoryOffset) {
  std::string record;
  Put32(record, end_record::kSignature);
  Put16(record, 0);  // this disk
  Put16(record, 0);  // the directory's disk
  Put16(record, entries);
  Put16(record, entries);
  Put32(record, static_cast<std::uint32_t>(directoryLength));
  Put32(record, static_cast<std::uint32_t>(directoryOffset));
  Put16(record, 0);  // no comment
  return record;
}

}  // namespace parvex
