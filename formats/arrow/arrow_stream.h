// What Apache Arrow writes goes to a Writer, and what fails there or in the library is thrown.
//
// Tested by tests/formats/typed_files.py and tests/formats/full_disk.py
#pragma once

#include "formats/writer.h"

#include <arrow/io/interfaces.h>
#include <arrow/result.h>
#include <arrow/status.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <utility>

namespace qvej {

class ArrowStream final : public arrow::io::OutputStream {
   public:
    explicit ArrowStream(Writer out) : out_(std::move(out)) {}

    arrow::Status Write(const void* data, int64_t size) override;
    arrow::Status Close() override;
    [[nodiscard]] bool closed() const override { return closed_; }
    [[nodiscard]] arrow::Result<int64_t> Tell() const override { return position_; }

    // From now on nothing is written: the library's objects end their files when they are
    // destroyed.
    void cutOff() { closed_ = true; }

    // Throws what went wrong in a call of the library that used this stream.
    void check(const arrow::Status& status) const;
    template <class Value>
    Value check(arrow::Result<Value> result) const {
        check(result.status());
        return std::move(result).ValueUnsafe();
    }

   private:
    Writer out_;
    int64_t position_ = 0;
    bool closed_ = false;
    std::exception_ptr failure_;  // of the writer
};

// Throws Error for every status but OK.
void checkArrow(const arrow::Status& status);

}  // namespace qvej
