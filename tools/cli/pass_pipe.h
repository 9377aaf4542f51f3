// The items of a pass, taken on a thread of their own.
//
// Tested by tests/tool/golden/convert.t
#pragma once

#include "client/table_pass.h"

#include <functional>

// Calls `take` for each item of the pass, in order.  With more than one thread, `take` runs beside
// the pass, on one other thread; signals are left to the calling one.  What either throws ends both
// and is thrown here.
void runPass(qvej::TablePass& pass, unsigned threads,
             const std::function<void(const qvej::PassItem&)>& take);
