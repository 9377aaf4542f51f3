// What the JSON parser reports, turned into records.
//
// The eight handlers keep the nesting stack.  They write a record for every value, and a marker for
// each container boundary that can begin a row.  Scalar elements of arrays get names: the array's
// member name ("element" without one) and a running number.
//
// Tested by tests/scan/events_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// One more text of the document begins, or the first of several: see jmapBeginText.  Returns how
// many markers of the root component there are.
uint64_t beginText(JMAP_PRIVATE* p);

// Sets the eight callbacks of a scan.
void installScanCallbacks(JSNParseCB* cb);

// Each handler returns QV_OK; QV_NOMEM; JMAP_PARSE for an end that does not fit its start; a status
// of the record stream.  A failure does not restore the stack and the stream.
[[nodiscard]] QVStatus farrayStart(JSNParseCB* cb);
[[nodiscard]] QVStatus farrayEnd(JSNParseCB* cb);
[[nodiscard]] QVStatus fobjectStart(JSNParseCB* cb);
[[nodiscard]] QVStatus fobjectEnd(JSNParseCB* cb);
[[nodiscard]] QVStatus fnull(JSNParseCB* cb);
[[nodiscard]] QVStatus fboolean(JSNParseCB* cb, QVBoolean myboo);
[[nodiscard]] QVStatus fnumber(JSNParseCB* cb, const char* str, QVStrSize length, int32_t flags);
[[nodiscard]] QVStatus fstring(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength,
                               int32_t flags);

// Records a scalar under the member name on top of the stack; inside an array a name is made first.
// Without an enclosing container `vrc` and the result are JMAP_INCOMPLETE.
[[nodiscard]] QVStatus gotValue(JMAP_PRIVATE* p, const char* str, QVStrSize strLen, VALTYPE type);

}  // namespace jmap
