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

// Opens the table of `inmap` (null: a map without tables) that has the name, in any case; failing
// that ALLDATA, by its exact name.  JMAP_NOTABLE when there is none, QV_NOMEM.
QVStatus ReadInit(QVEJMAPJsonContexth inh, QVMemPtr inmap, char* dsname, QVStrSize dsnameLen,
                  QVEJMAPReadInitParms* rip, QVEJMAPReadContexth* inrctx);

// From the first row again.  Ordinals restart; retained values stay.  Returns QV_OK.
QVStatus ReadReset(QVEJMAPReadContexth inrctx);

// Closes the table; the handle is gone.  Returns QV_OK.
QVStatus ReadTerm(QVEJMAPReadContexth rctx);

// Opens a table that is already found.
//   name       what the read context is called: cut to 32 bytes
//   doAlldata  `ds` is the ALLDATA table
//   rip        null: no flags
// Returns QV_OK with `*out` set, or QV_NOMEM.  Kept: on failure the read pool, once made, is left
// to the host.
[[nodiscard]] QVStatus openTable(QVEJMAPJsonContexth inh, DSINFO* ds, std::string_view name,
                                 bool doAlldata, const QVEJMAPReadInitParms* rip,
                                 QVEJMAPReadContexth* out);

}  // namespace jmap
