// A sink that writes text.
//
// Tested by tests/formats/conformance.py
#pragma once

#include "formats/sink.h"
#include "formats/writer.h"

#include <utility>

namespace qvej {

class TextSink : public Sink {
   public:
    void end() override { out_.release(); }
    [[nodiscard]] std::size_t held() const override { return out_.held(); }
    void flush() override { out_.release(); }
    bool rest() override {
        out_.release();
        return true;
    }

   protected:
    explicit TextSink(Writer out) : out_(std::move(out)) {}

    Writer out_;
};

}  // namespace qvej
