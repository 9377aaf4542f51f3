// Trackers: hash tables from byte strings to pointers.
//
// Tested by tests/host/tracker_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

class Host;

// A new, empty tracker.  Its memory counts as the host's memory in use.
[[nodiscard]] QVTrackerh createTracker(Host& host, const QVChar* name, QVStrSize nameLen);

}  // namespace qvhost
