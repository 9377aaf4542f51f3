// A sink that writes text.
//
// Tested by tests/formats/conformance.py
#pragma once

#include "formats/sink.h"
#include "formats/writer.h"

#include <memory>
#include <string_view>
#include <utility>

namespace qvej {

class RowsText final : public Piece {
   public:
    explicit RowsText(Writer::Text text) : text_(std::move(text)) {}
    [[nodiscard]] std::string_view text() const { return {text_.bytes.get(), text_.size}; }

   private:
    Writer::Text text_;
};

class TextSink : public Sink {
   public:
    void end() override { out_.release(); }
    [[nodiscard]] std::size_t held() const override { return out_.held(); }
    void flush() override { out_.release(); }
    [[nodiscard]] std::unique_ptr<Piece> piece() final {
        return std::make_unique<RowsText>(out_.take());
    }
    void append(std::unique_ptr<Piece> piece) final {
        out_.append(static_cast<const RowsText&>(*piece).text());
    }
    bool rest() override {
        out_.release();
        return true;
    }

   protected:
    explicit TextSink(Writer out) : out_(std::move(out)) {}

    Writer out_;
};

}  // namespace qvej
