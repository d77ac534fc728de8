#pragma once

#include <cstdint>
#include <string>

namespace parvex::standin {

/// A picture file (Windows bitmap, 24 bits a pixel): a frame of this colour (0xRRGGBB) around a shade of it.
std::string MakeBitmap(int width, int height, std::uint32_t colour);

}  // namespace parvex::standin
