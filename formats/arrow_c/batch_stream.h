// Batches as a stream of the Arrow C stream interface.
//
// Tested by tests/bindings/python/test_capsules.py
#pragma once

#include "formats/arrow_c/arrow_c.h"
#include "formats/arrow_c/record_batch.h"
#include "formats/arrow_c/table_fields.h"

#include <functional>
#include <memory>

namespace qvej {

// Gives the next batch, null after the last.  What it throws is told by the stream.
using NextBatch = std::function<std::shared_ptr<const RecordBatch>()>;

// Gives `out` a stream, which owns `next`.  Throws std::bad_alloc; `out` is untouched then.
void exportStream(TableFields fields, NextBatch next, ArrowArrayStream* out);

}  // namespace qvej
