#pragma once

#include <objbase.h>

namespace parvex::windows {

/// COM on a program's own thread, single-threaded, for as long as this lives.
class Apartment {
 public:
  Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

}  // namespace parvex::windows
