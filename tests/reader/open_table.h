// One open table of a scanned document, for tests that look at single calls.
#pragma once

#include "core/readctx.h"
#include "testkit/hand_map.h"

namespace jmap::test {

class OpenTable {
   public:
    // Of the automatic map.
    OpenTable(const Scan& scan, std::string name, uint64_t flags = 0)
        : OpenTable(scan, scan.automap(), std::move(name), flags) {}
    // Of any map.
    OpenTable(const Scan& scan, QVMemPtr map, std::string name, uint64_t flags = 0)
        : engine(scan.engine()) {
        QVEJMAPReadInitParms rip = {flags};
        status = engine->ReadInit(scan.doc(), map, name.data(), lengthOf(name), &rip, &rctx);
    }
    ~OpenTable() { EXPECT_QV_OK(rctx == nullptr ? QV_OK : engine->ReadTerm(rctx)); }

    [[nodiscard]] JMAP_READPRIVATE* rp() const { return readContextOf(rctx); }
    QVStatus read() { return engine->Read(rctx); }
    // The rows up to the end or a failure, as `Scan::rows` shows them.
    std::string rows() { return Scan::rowsOf(engine, rctx); }
    [[nodiscard]] std::string_view row() const { return view(rctx->obsbuf, rctx->obsbufLen); }
    void reset() { EXPECT_QV_OK(engine->ReadReset(rctx)); }

    UserJMAP_S* engine;
    QVEJMAPReadContexth rctx = nullptr;
    QVStatus status = QV_OK;  // of ReadInit
};

}  // namespace jmap::test
