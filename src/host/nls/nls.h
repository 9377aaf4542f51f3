// The national-language service of the host: document encodings, transcoders, string services.
//
// Tested by tests/host/nls_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

class Host;

// Makes the service of a host; it is ended by its `generic.destroy`.  Null when there is no memory.
QVNLSh createNls(Host& host);

}  // namespace qvhost
