// Which tables a document has, by its automatic map and by the user's.
//
// Tested by tests/frame/catalogue_test.cpp and tests/automap/lengths_test.cpp
#pragma once

#include "qvejmap.h"

namespace jmap {

// The operations of the public table; contracts in qvejmap.h.
QVStatus GetAutoMap(QVEJMAPJsonContexth inh, QVMemPtr* m);
QVStatus GetUserMap(QVEJMAPJsonContexth inh, QVMemPtr* m, QVPoolh pool, INFORMATINFO** ii);
QVStatus GetDsName(QVEJMAPJsonContexth inh, QVMemPtr m, uint64_t index, char* dsname,
                   int16_t* dsnameLen);
QVStatus MemberExist(QVEJMAPJsonContexth inh, QVMemPtr m, int16_t nameLen, char* name);
QVStatus GetAlldataInfo(QVEJMAPJsonContexth inh, int32_t** i);

}  // namespace jmap
