// See arrow_sink.h.
#include "formats/arrow/arrow_sink.h"

#include "formats/arrow/arrow_table.h"

#include <utility>

namespace qvej {

ArrowSink::ArrowSink(Writer out, const SinkParms& parms)
    : table_(parms.schema->tables[parms.position]),
      threads_(parms.options.threads > 1),
      stream_(std::make_shared<ArrowStream>(std::move(out))),
      schema_(arrowSchema(*parms.schema, parms.position)),
      rows_(table_, schema_, &memory_),
      left_(table_.rows) {}

void ArrowSink::finish() {
    close();
    stream_->check(stream_->Close());
}

}  // namespace qvej
