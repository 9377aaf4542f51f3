// Parquet: row groups, columns compressed by zstd, with statistics.
//
// Texts go by a dictionary, until it gets large; whole numbers, dates and times as differences.
// A row group is encoded on all threads and kept in memory until it is complete.
//
// Tested by tests/formats/typed_files.py
#include "formats/arrow/arrow_sink.h"

#include <parquet/arrow/writer.h>
#include <parquet/properties.h>

#include <limits>

namespace qvej {

namespace {

constexpr int64_t kMostRows = int64_t{1} << 20;  // of a row group, but for its last batch

std::shared_ptr<parquet::WriterProperties> propertiesOf(const TableSchema& table,
                                                        const arrow::Schema& schema,
                                                        arrow::MemoryPool* memory) {
    parquet::WriterProperties::Builder properties;
    properties.memory_pool(memory);
    properties.compression(parquet::Compression::ZSTD);
    properties.max_row_group_length(std::numeric_limits<int64_t>::max());  // the sink ends them
    properties.created_by("qvejmap " QVEJMAP_VERSION);
    for (std::size_t c = 0; c < table.fields.size(); ++c) {
        const DataType::Kind kind = table.fields[c].type.kind;
        if (kind == DataType::BIGINT || kind == DataType::DATE || kind == DataType::TIMESTAMP) {
            const std::string& name = schema.field(static_cast<int>(c))->name();
            properties.disable_dictionary(name);
            properties.encoding(name, parquet::Encoding::DELTA_BINARY_PACKED);
        }
    }
    return properties.build();
}

class ParquetSink final : public ArrowSink {
   public:
    using ArrowSink::ArrowSink;
    ~ParquetSink() override { stream_->cutOff(); }

    // More rows will come.
    void flush() override {
        if (groupOpen_) {
            encodeRest();
            openGroup();
        } else if (holdsRows()) {
            writeSmallGroup();
        }
    }

   private:
    void encode() override {
        if (!groupOpen_ || groupRows_ >= kMostRows) {
            openGroup();
        }
        const std::shared_ptr<arrow::RecordBatch> rows = takeRows();
        groupRows_ += rows->num_rows();
        stream_->check(writer().WriteRecordBatch(*rows));
    }
    void encodeRest() {
        if (holdsRows()) {
            encode();
        }
    }
    void close() override {
        if (groupOpen_) {
            encodeRest();
        } else if (holdsRows()) {
            writeSmallGroup();
        }
        stream_->check(writer().Close());
        writer_.reset();
    }
    // Ends the row group that is open, too.
    void openGroup() {
        stream_->check(writer().NewBufferedRowGroup());
        groupOpen_ = true;
        groupRows_ = 0;
    }
    // The rows as a row group, which does without buffers and threads.
    void writeSmallGroup() {
        stream_->check(writer().NewRowGroup());
        const std::shared_ptr<arrow::RecordBatch> rows = takeRows();
        for (const std::shared_ptr<arrow::Array>& column : rows->columns()) {
            stream_->check(writer().WriteColumnChunk(*column));
        }
    }
    parquet::arrow::FileWriter& writer() {
        if (writer_ == nullptr) {
            parquet::ArrowWriterProperties::Builder properties;
            properties.store_schema();
            properties.set_use_threads(threads_);
            writer_ = stream_->check(parquet::arrow::FileWriter::Open(
                *schema_, &memory_, stream_, propertiesOf(table_, *schema_, &memory_),
                properties.build()));
        }
        return *writer_;
    }

    std::unique_ptr<parquet::arrow::FileWriter> writer_;  // once there is something to write
    bool groupOpen_ = false;
    int64_t groupRows_ = 0;
};

}  // namespace

std::unique_ptr<Sink> makeParquetSink(Writer out, const SinkParms& parms) {
    return std::make_unique<ParquetSink>(std::move(out), parms);
}

}  // namespace qvej
