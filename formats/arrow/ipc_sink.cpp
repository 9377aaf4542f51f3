// Arrow: the file format of its IPC, of record batches whose buffers are compressed by zstd.
//
// Texts are plain, not in a dictionary: the format cannot go back from one, and a type should not
// depend on how many texts differ.
//
// Tested by tests/formats/typed_files.py
#include "formats/arrow/arrow_sink.h"

#include <arrow/ipc/writer.h>
#include <arrow/util/compression.h>

namespace qvej {

namespace {

class IpcSink final : public ArrowSink {
   public:
    using ArrowSink::ArrowSink;
    ~IpcSink() override { stream_->cutOff(); }

    void flush() override {
        if (holdsRows()) {
            encode();
        }
    }

   private:
    void encode() override { stream_->check(writer().WriteRecordBatch(*takeRows())); }
    void close() override {
        flush();
        stream_->check(writer().Close());
    }
    arrow::ipc::RecordBatchWriter& writer() {
        if (writer_ == nullptr) {
            arrow::ipc::IpcWriteOptions options = arrow::ipc::IpcWriteOptions::Defaults();
            options.codec = stream_->check(arrow::util::Codec::Create(arrow::Compression::ZSTD));
            options.use_threads = threads_;
            options.memory_pool = &memory_;
            writer_ = stream_->check(arrow::ipc::MakeFileWriter(stream_, schema_, options));
        }
        return *writer_;
    }

    std::shared_ptr<arrow::ipc::RecordBatchWriter> writer_;  // once there is something to write
};

}  // namespace

std::unique_ptr<Sink> makeIpcSink(Writer out, const SinkParms& parms) {
    return std::make_unique<IpcSink>(std::move(out), parms);
}

}  // namespace qvej
