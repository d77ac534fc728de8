#pragma once

#include "adapters/windows/failures.h"

namespace parvex::com {

// A server's methods end as those of every object that goes out to COM.
using windows::CurrentFailure;
using windows::Failure;
using windows::FillException;
using windows::Guarded;
using windows::RaiseErrorInfo;

}  // namespace parvex::com
