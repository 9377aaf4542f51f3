// Opens and ends a document.
//
// Tested by tests/frame/document_test.cpp
#pragma once

#include "qvejmap.h"

namespace jmap {

// The operations of the public table; contracts in qvejmap.h.
QVStatus JsonInit(QVExtensionh inh, QVEJMAPJsonInitParms* parms, QVEJMAPJsonContexth* inctx,
                  QVJnlh jnl);
QVStatus Term(QVEJMAPJsonContexth inh, QVJnlh jnl);

}  // namespace jmap
