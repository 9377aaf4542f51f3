// A user's map on its way into a document.  Internal to Document::useMap.
//
// Tested by tests/tool/golden/map_check.t
#pragma once

#include "document.h"

namespace qvej {

// Has the engine read the map `text` (UTF-8) for a finished document.  Throws MapError, with the
// place in `text`; QV_UNMAPPABLE; QV_NOMEM.
void parseUserMap(const Document& document, std::string_view text);

// The map, completed from the document, and with the default widths and lengths of informats.
QVMemPtr completeUserMap(const Document& document);

// Throws MapError for the first format or informat that cannot be used.
void checkConversions(const Engine& engine, const std::vector<Table>& tables,
                      std::string_view text);

// The informat or format of a column; null: it has none.  Throws a QV_FMT_ status.
Handle<QVInformat> openInformat(const Engine& engine, const Column& column);
Handle<QVFormat> openFormat(const Engine& engine, const Column& column);

}  // namespace qvej
