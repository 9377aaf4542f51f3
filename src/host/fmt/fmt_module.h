// The built-in module "qvefmt": formats and informats.
//
// Tested by tests/host/fmt_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

// Makes an instance.  Null when there is no memory.
QVExtensionh qvefmtEntry(QVHndlp hndl, QVJnlh jnl);

}  // namespace qvhost
