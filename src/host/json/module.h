// The built-in module "qvejson": the parser and the writer, as the table QVJSON.
//
// Tested by tests/json/
#pragma once

#include "qvehost.h"

namespace qvhost {

// Makes an instance.  Null when there is no memory.
QVExtensionh qvejsonEntry(QVHndlp hndl, QVJnlh jnl);

}  // namespace qvhost
