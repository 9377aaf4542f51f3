// A user's map, read from its JSON document.
//
// The document has the form that map_writer.h describes.  Keys may be in any case, and a column may
// also have
//
//   LENGTH   = integer
//   FORMAT   = [string [,integer [,integer]]]      name, width, decimals
//   INFORMAT = the same; a name that begins with "?": bad values are not to be reported
//   LABEL    = string
//   OPTIONS  = [ ("RETAIN" | "NORETAIN")* ]
//
// The parse is a state machine (map_states.h).  It uses the context of the document, so it must
// begin after the document's last buffer.
//
// Tested by tests/mapdoc/map_reader_test.cpp
#pragma once

#include "qvejmap.h"

namespace jmap {

// The operations of the public table; contracts in qvejmap.h.
QVStatus MapInit(QVEJMAPJsonContexth inh, QVEJMAPMapInitParms* parms, QVEJMAPMapContexth* inctx,
                 QVJnlh jnl);
QVStatus MapInput(QVEJMAPMapContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                  QVJnlh jnl);
QVStatus MapTerm(QVEJMAPJsonContexth inh, QVEJMAPMapContexth* mctx, QVJnlh jnl);

}  // namespace jmap
