// The automatic map as a JSON document.
//
//   document = {"DATASETS":[ table* ]}
//   table    = {"DSNAME":string,"TABLEPATH":path [,"VARIABLES":[ column+ ]]}
//   column   = {"NAME":string,"TYPE":word,"PATH":path [,"CURRENT_LENGTH":integer]}
//   word     = "ORDINAL" | "NUMERIC" | "CHARACTER"
//   path     = string with "/" between components
//
// CURRENT_LENGTH is there for character columns only.  The document is compact: no blanks.
//
// Tested by tests/mapdoc/map_writer_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Operations of the public table.

// The document, in the writer's own buffer, which lives until GetAutoMapBufFree.  Returns QV_NOMEM
// or the first failing status of the writer; call GetAutoMapBufFree then too.
QVStatus GetAutoMapBuf(QVEJMAPJsonContexth inh, char** buf, QVStrSize* bufLen, QVJnlh jnl);

// Ends the writer and its buffer.  QV_OK when there is none, else the writer's status.
QVStatus GetAutoMapBufFree(QVEJMAPJsonContexth inh);

}  // namespace jmap
