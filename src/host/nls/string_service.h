// Operations on texts of a document encoding.
//
// All document encodings have ASCII in common and are compared byte by byte, so the operations are
// the same for each.
//
// Tested by tests/host/nls_test.cpp, tests/host/number_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

// QV_UNSUPPORTED when `cei` is no document encoding.  The service is ended by its
// `generic.destroy`.
[[nodiscard]] QVStatus createStringService(QVHndlp host, QVCEI cei, QVStringServiceh* service);

}  // namespace qvhost
