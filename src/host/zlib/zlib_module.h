// The built-in module "qvezlib": zlib, as the table QVZLIB.
//
// Tested by tests/frame/equality_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

// Makes an instance.  Null when there is no memory.
QVExtensionh qvezlibEntry(QVHndlp hndl, QVJnlh jnl);

}  // namespace qvhost
