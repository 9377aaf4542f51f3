// See arrow_stream.h.
#include "formats/arrow/arrow_stream.h"

#include "client/error.h"

namespace qvej {

arrow::Status ArrowStream::Write(const void* data, int64_t size) {
    if (closed_) {
        return arrow::Status::Invalid("the stream is closed");
    }
    try {
        out_.append(static_cast<const char*>(data), static_cast<std::size_t>(size));
    } catch (...) {
        failure_ = std::current_exception();
        closed_ = true;
        return arrow::Status::IOError("the file could not be written");
    }
    position_ += size;
    return arrow::Status::OK();
}

arrow::Status ArrowStream::Close() {
    if (closed_) {
        return arrow::Status::OK();
    }
    closed_ = true;
    try {
        out_.release();
    } catch (...) {
        failure_ = std::current_exception();
        return arrow::Status::IOError("the file could not be written");
    }
    return arrow::Status::OK();
}

void ArrowStream::check(const arrow::Status& status) const {
    if (failure_ != nullptr) {
        std::rethrow_exception(failure_);
    }
    checkArrow(status);
}

void checkArrow(const arrow::Status& status) {
    if (!status.ok()) {
        throw Error(status.IsOutOfMemory() ? QV_NOMEM : QV_INTERNAL, "Arrow: " + status.message());
    }
}

}  // namespace qvej
