#include "adapters/posix/sleeping_pump.h"

#include <thread>

namespace parvex::posix {

void SleepingPump::Sleep(std::chrono::milliseconds duration) { std::this_thread::sleep_for(duration); }

}  // namespace parvex::posix
