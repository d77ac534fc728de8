#include "legacy_standin/reports/bitmap.h"

namespace parvex::standin {
namespace {

constexpr int kHeaders = 54;
constexpr int kFrame = 2;  // pixels

void Append(std::string& bytes, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) {
    bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  }
}

std::uint32_t Pixel(int x, int y, int width, int height, std::uint32_t colour) {
  const bool frame = x < kFrame || y < kFrame || x >= width - kFrame || y >= height - kFrame;
  const auto shade = static_cast<std::uint32_t>(255 * x / width);
  return frame ? colour : shade << 16 | shade << 8 | (colour & 0xFF);
}

}  // namespace

std::string MakeBitmap(int width, int height, std::uint32_t colour) {
  const int row = (width * 3 + 3) / 4 * 4;  // rows fill whole groups of four bytes
  std::string bytes = "BM";
  Append(bytes, static_cast<std::uint32_t>(kHeaders + row * height), 4);
  Append(bytes, 0, 4);
  Append(bytes, kHeaders, 4);
  Append(bytes, 40, 4);  // size of the second header
  Append(bytes, static_cast<std::uint32_t>(width), 4);
  Append(bytes, static_cast<std::uint32_t>(height), 4);
  Append(bytes, 1, 2);   // planes
  Append(bytes, 24, 2);  // bits a pixel
  bytes.resize(kHeaders);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      Append(bytes, Pixel(x, y, width, height, colour), 3);
    }
    bytes.resize(static_cast<std::size_t>(kHeaders + row * (y + 1)));
  }
  return bytes;
}

}  // namespace parvex::standin
