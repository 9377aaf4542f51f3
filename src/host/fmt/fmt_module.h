// The built-in module "qvefmt": formats and informats.
//
// It carries no operation yet.  The engine asks for it when it starts and keeps the handle, so it
// has to load, answer its version and be released.
//
// Tested by tests/host/zlib_test.cpp (with the other modules' heads)
#pragma once

#include "qvehost.h"

namespace qvhost {

// Makes an instance.  Null when there is no memory.
QVExtensionh qvefmtEntry(QVHndlp hndl, QVJnlh jnl);

}  // namespace qvhost
