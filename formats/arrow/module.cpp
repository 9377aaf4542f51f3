// The module `arrow`: formats parquet and arrow.
//
// Tested by tests/formats/typed_files.py
#include "formats/module.h"

#include "formats/arrow/arrow_sink.h"
#include "formats/arrow/batch_sink.h"

#include <utility>

namespace {

std::unique_ptr<qvej::Sink> makeSink(std::string_view format, qvej::Writer out,
                                     const qvej::SinkParms& parms) {
    return parms.pieces          ? qvej::makeBatchSink(parms)
           : format == "parquet" ? qvej::makeParquetSink(std::move(out), parms)
                                 : qvej::makeIpcSink(std::move(out), parms);
}

}  // namespace

extern "C" __attribute__((visibility("default")))
const qvej::FormatModule qvejmapFormats = {qvej::formatBuild, makeSink, nullptr};
