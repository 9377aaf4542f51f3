// A running engine: the operation table, and the portable host, which all engines share.
//
//     qvej::Engine engine;
//     qvej::Document document(engine);
//     document.feed(text);
//     document.finish();
//     for (const qvej::Table& table : document.tables()) {
//         qvej::Cursor cursor(document, table);
//         while (cursor.next()) { ... cursor.cell(i) ... }
//     }
//
// Lifetimes nest: Engine, Document, Cursor.  One engine serves any number of documents, on any
// threads; limits and notes are a matter of each document (DocumentOptions).  Engines are made and
// ended on any thread and in any order: the first starts the host and makes it the global one of
// the process, the last stops it.  A program that starts hosts of its own (qvportable.h) does so
// while there is no Engine.  All else follows the threading rule of qvejmap.h.
//
// Tested by tests/client/client_test.cpp and tests/client/engine_test.cpp
#pragma once

#include "qvejmapx.h"

#include "handle.h"

#include <cstdint>
#include <string_view>

namespace qvej {

class Engine {
   public:
    // `headers`: that the caller was compiled with.  Throws QV_UNSUPPORTED when headers and
    // libraries are not of one version; QV_NOMEM.
    explicit Engine(int32_t headers = QVEJMAPX_VERSION);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Id of a document encoding by its name in any case.  0: documents in it cannot be read as they
    // are (they can be converted to UTF-8 first).
    [[nodiscard]] QVCEI encodingId(std::string_view name) const;

    // Bytes of memory that are still available.  With a budget (0: none) no more than it leaves,
    // less what the process holds.
    [[nodiscard]] uint64_t availableMemory(uint64_t budget = 0) const;

    // Formats and informats.
    [[nodiscard]] QVFMTh formats() const { return formats_.get(); }

    // The engine's own tables, for what this class does not wrap.  They live as long as it does.
    [[nodiscard]] UserJMAP_S* operations() const { return operations_; }
    [[nodiscard]] QVHndlp host() const { return host_; }

   private:
    void end();

    QVHndlp host_ = nullptr;
    UserJMAP_S* operations_ = nullptr;
    Handle<QVFMT> formats_;
};

}  // namespace qvej
