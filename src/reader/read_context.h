// Opening, rewinding and closing one table for reading.
//
// Everything of an open table lives in a pool of its own, "qvejmap read pool", and ends with it.
//
// Tested by tests/reader/read_context_test.cpp
#pragma once

#include "core/readctx.h"

#include <string_view>

namespace jmap {

// Operations of the public table.

// Opens the table of `inmap` (null: a map without tables) that has the name in any case.  When
// there is none, opens ALLDATA if it has exactly this name.  Else JMAP_NOTABLE.  QV_NOMEM.
QVStatus ReadInit(QVEJMAPJsonContexth inh, QVMemPtr inmap, char* dsname, QVStrSize dsnameLen,
                  QVEJMAPReadInitParms* rip, QVEJMAPReadContexth* inrctx);

// From the first row again.  Ordinals restart; retained values stay.  Returns QV_OK.
QVStatus ReadReset(QVEJMAPReadContexth inrctx);

// Closes the table; the handle is gone.  Returns QV_OK.
QVStatus ReadTerm(QVEJMAPReadContexth rctx);

// Opens a table that is already found.
//   name       name of the read context, cut to 32 bytes
//   doAlldata  `ds` is the ALLDATA table
//   rip        null: no flags
// Returns QV_OK with `*out` set, or QV_NOMEM.  Kept: on failure the read pool is not ended; it
// lives until the host stops.
[[nodiscard]] QVStatus openTable(QVEJMAPJsonContexth inh, DSINFO* ds, std::string_view name,
                                 bool doAlldata, const QVEJMAPReadInitParms* rip,
                                 QVEJMAPReadContexth* out);

}  // namespace jmap
