// Takes the place of a document's parser when the document is several texts: each of them gets a
// parser of its own, and all give their events to the same callbacks.
//
//     TextRelay ─► parser of the first text  ─┐
//               ─► parser of the second text ─┴─► events of the engine, or of a Reshaper
//
// To the engine all texts are one: `parse` says that it needs more until the last one has ended.
//
// Tested by tests/client/several_texts_test.cpp
#pragma once

#include "qvehost.h"

#include "handle.h"

#include <cstdint>

namespace qvej {

class TextRelay final : private JSNParser {
   public:
    // `host`: where the module "qvejson" is.  `parms`: what a parser of one text would be made
    // with.  It ends with the table's `destroy`.  Throws Error (QV_NOMEM).
    TextRelay(QVHndlp host, const JSNParserParms& parms);
    ~TextRelay() = default;
    TextRelay(const TextRelay&) = delete;
    TextRelay& operator=(const TextRelay&) = delete;

    [[nodiscard]] JSNParserh parser() { return this; }

    // Who gets the events, before the first text.
    void setCallbacks(JSNParseCB& callbacks) { parms_.callbacks = &callbacks; }

    // A text begins.  Throws Error (QV_NOMEM).
    void begin(const JSNTextRules& rules);

    // What is parsed next, an empty buffer, ends the text.
    void end() { ending_ = true; }

    // The line that the table gives says in which text it is, counted from 0.
    [[nodiscard]] static std::size_t textOf(int64_t line) {
        return static_cast<std::size_t>(line >> kLineBits);
    }
    [[nodiscard]] static int64_t lineIn(std::size_t text, int64_t line) {
        return line | (static_cast<int64_t>(text) << kLineBits);
    }
    [[nodiscard]] static int64_t lineOf(int64_t line) {
        return line & ((int64_t{1} << kLineBits) - 1);
    }

   private:
    static constexpr int kLineBits = 40;

    static TextRelay& of(JSNParserh self) { return static_cast<TextRelay&>(*self); }
    static QVStatus parseText(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done);
    static QVStatus destroyRelay(QVGeneric* self);
    template <auto Slot>
    static int64_t asked(JSNParserh self);

    JSNParserParms parms_;
    int64_t texts_ = 0;  // that have begun
    bool ending_ = false;
    Handle<QVJSON> json_;
    Handle<JSNParser> parser_;  // of the text that began last; null: none yet
};

}  // namespace qvej
