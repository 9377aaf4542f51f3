// A running engine: the portable host and the engine's operation table, ended together.
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
// Lifetimes nest: Engine, Document, Cursor.  One engine serves any number of documents.  While it
// lives its host is the process's global one, so engines are made and ended on one thread and in
// reverse order; all else follows the threading rule of qvejmap.h.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "qvejmapx.h"

#include "handle.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace qvej {

struct EngineOptions {
    uint64_t memoryBudget = 0;  // bytes; what the memory query counts down from; 0: the machine's
    uint64_t maxDepth = 0;      // nesting limit of documents; 0: none
    // Takes each diagnostic note (UTF-8, no line end).  Must not throw.  Empty: notes are dropped.
    std::function<void(std::string_view)> journal = {};
    int32_t headers = QVEJMAPX_VERSION;  // that the caller was compiled with
};

class Engine {
   public:
    // Throws QV_UNSUPPORTED when headers and libraries are not of one version; QV_NOMEM.
    explicit Engine(EngineOptions options = {});
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Id of a document encoding by its name in any case.  0: documents in it cannot be read as they
    // are (they can be converted to UTF-8 first).
    [[nodiscard]] QVCEI encodingId(std::string_view name) const;

    // Bytes of memory that are still available; counted from the budget when there is one.
    [[nodiscard]] uint64_t availableMemory() const;

    // Formats and informats.
    [[nodiscard]] QVFMTh formats() const { return formats_.get(); }

    // The engine's own tables, for what this class does not wrap.  They live as long as it does.
    [[nodiscard]] UserJMAP_S* operations() const { return operations_; }
    [[nodiscard]] QVHndlp host() const { return host_; }

   private:
    EngineOptions options_;
    QVHndlp host_ = nullptr;
    UserJMAP_S* operations_ = nullptr;
    Handle<QVFMT> formats_;
};

}  // namespace qvej
