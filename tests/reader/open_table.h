// One open table of a scanned document, for tests that look at single calls.
#pragma once

#include "core/readctx.h"
#include "tests/automap/hand_map.h"

#include <bit>
#include <cstring>

namespace jmap::test {

class OpenTable {
   public:
    // Of the automatic map.
    OpenTable(const Scan& scan, std::string name, uint64_t flags = 0)
        : OpenTable(scan, scan.automap(), std::move(name), flags) {}
    // Of any map.
    OpenTable(const Scan& scan, QVMemPtr map, std::string name, uint64_t flags = 0) : scan_(scan) {
        QVEJMAPReadInitParms rip = {flags};
        status = engine()->ReadInit(scan.doc(), map, name.data(), lengthOf(name), &rip, &rctx);
    }
    ~OpenTable() {
        if (rctx != nullptr) {
            EXPECT_QV_OK(engine()->ReadTerm(rctx));
        }
    }

    [[nodiscard]] UserJMAP_S* engine() const { return scan_.engine(); }
    [[nodiscard]] JMAP_READPRIVATE* rp() const { return readContextOf(rctx); }
    QVStatus read() { return engine()->Read(rctx); }
    std::string rows() { return Scan::rowsOf(engine(), rctx); }
    [[nodiscard]] std::string_view row() const { return view(rctx->obsbuf, rctx->obsbufLen); }
    // The row buffers of all rows up to `end`, for comparing many rows.
    std::string bytes(QVStatus end = QV_EOF) {
        std::string all;
        QVStatus rc = QV_OK;
        while ((rc = read()) == QV_OK) {
            all += row();
        }
        EXPECT_QV(end, rc);
        return all;
    }
    void reset() { EXPECT_QV_OK(engine()->ReadReset(rctx)); }

    // A cell, blanks included; a number's missing value as "~".
    [[nodiscard]] std::string cell(int64_t i) const {
        const VARIABLEINFO& column = rctx->varinfo[i];
        const char* at = rctx->obsbuf + column.offset;
        if (column.vartype == VARTYPE_CHARACTER) {
            return {at, static_cast<size_t>(column.length)};
        }
        double number = 0;
        std::memcpy(&number, at, sizeof number);
        if (std::bit_cast<uint64_t>(number) == QVEJMAP_MISSING_BITS) {
            return "~";
        }
        return (testing::Message() << number).GetString();
    }

    QVEJMAPReadContexth rctx = nullptr;
    QVStatus status = QV_OK;  // of ReadInit

   private:
    const Scan& scan_;
};

}  // namespace jmap::test
