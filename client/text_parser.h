// The parser on its own: the text of a document as events, without the engine.
//
// Tested by tests/tool/golden/find.t
#pragma once

#include "qvehost.h"

#include "document.h"
#include "handle.h"
#include "text_consumer.h"

#include <functional>
#include <string_view>

namespace qvej {

class TextParser final : public TextConsumer {
   public:
    // `callbacks` must live as long, and must not throw; one that gives JMAP_INCOMPLETE says that a
    // scalar is no document.  Of the options `lines`, `sequence`, `columnOf` and `maxDepth`
    // count.  Throws QV_NOMEM.
    TextParser(const Engine& engine, JSNParseCB& callbacks, const DocumentOptions& options);

    void feed(std::string_view text) override;
    void finish() override;
    [[nodiscard]] Place end() const override;

    // Within a callback: where its token begins.
    [[nodiscard]] Spot spot() const {
        return {parser_->line(parser_.get()), parser_->eventColumn(parser_.get())};
    }

   private:
    [[noreturn]] void fail(QVStatus status) const;

    std::function<int64_t(int64_t)> columnOf_;
    Handle<QVJSON> json_;
    Handle<JSNParser> parser_;
};

}  // namespace qvej
