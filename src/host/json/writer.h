// The JSON writer of the module "qvejson".
//
// The document is compact: no blanks and no line ends.  In strings only these are escaped:
//
//     quote, backslash          \" \\ respectively
//     08 09 0A 0C 0D            \b \t \n \f \r respectively
//     other bytes below 20      \u00xx, lower case
//     bytes that are no text    \ufffd
//
// "No text" is, in UTF-8, each longest beginning of a valid sequence that does not go on validly
// (at least one byte), and in a code page each byte that it assigns no character.  So the document
// is valid whatever it is given.  All other bytes stand as they came.
//
// Calls out of place (a value where a name is due, closing what is not open, asking for the
// document while it is open) give QV_UNSUPPORTED and write nothing.
//
// Tested by tests/host/writer_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

// Makes a writer for one document.  Null when the two encodings differ or are no document's, when
// a pool, a stream or other flags than JSN_WRITER_FLAGS are asked for, or when there is no memory.
// It is ended by its `generic.destroy`, and its buffer with it.
[[nodiscard]] JSNWriterh createWriter(QVJSONh json, const JSNWriterParms* parms);

}  // namespace qvhost
