// The items of a pass, taken on a thread of their own.
//
// Tested by tests/tool/golden/convert.t
#pragma once

#include "table_pass.h"

#include <functional>
#include <span>

namespace qvej {

// Calls `take` for the items of the pass, some at a time, in order.  With more than one thread,
// `take` runs on a second thread while the pass goes on; signals go to the calling one.  What
// either throws ends both and is thrown here.
void runPass(TablePass& pass, unsigned threads,
             const std::function<void(std::span<const PassItem>)>& take);

}  // namespace qvej
