// Which tables a document has.
//
// Tested by tests/frame/catalogue_test.cpp
#pragma once

#include "qvejmap.h"

namespace jmap {

// The operations of the public table; contracts in qvejmap.h.
QVStatus GetAutoMap(QVEJMAPJsonContexth inh, QVMemPtr* m);
QVStatus GetDsName(QVEJMAPJsonContexth inh, QVMemPtr m, uint64_t index, char* dsname,
                   int16_t* dsnameLen);
QVStatus MemberExist(QVEJMAPJsonContexth inh, QVMemPtr m, int16_t nameLen, char* name);
QVStatus GetAlldataInfo(QVEJMAPJsonContexth inh, int32_t** i);

}  // namespace jmap
