// Feeds a document to the parser and finishes it.
//
// What JsonInput does after each status of the parser:
//
//     status          not the last buffer          the last buffer
//     QV_OK           hashes released, QV_OK       document finished, QV_OK
//     QV_NEEDMORE     QV_OK                        document finished, QV_OK
//     QV_EOF          QV_OK                        hashes released, JMAP_INCOMPLETE
//     anything else   hashes released, ERRORINFO   hashes released, ERRORINFO
//
// Tested by tests/frame/driver_test.cpp
#include "driver.h"

#include "automap/discovery.h"
#include "automap/map_dump.h"
#include "core/context.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "reader/row_walk.h"
#include "scan/path_stats.h"
#include "scan/record_block.h"

#include <cstring>

namespace jmap {
namespace {

// Tells the caller, once, that blocks go to the cache file.
void tellCaching(JMAP_PRIVATE* p, QVBoolean* caching) noexcept {
    if (p->usingTemp && !p->usingTempMsg) {
        *caching = 1;
        p->usingTempMsg = true;
    }
}

void noteCompression(JMAP_PRIVATE* p) noexcept {
    if (!p->debugCompression) {
        return;
    }
    const double percentage = p->uncompressedPathBytes == 0
                                  ? 0.0
                                  : 100.0 * static_cast<double>(p->compressedPathBytes) /
                                        static_cast<double>(p->uncompressedPathBytes);
    myLogNote(p, U"%lld paths of %lld bytes compressed to %lld %4.2g %% of original",
              static_cast<long long>(p->pathCount),
              static_cast<long long>(p->uncompressedPathBytes),
              static_cast<long long>(p->compressedPathBytes), percentage);
}

void noteLevels(JMAP_PRIVATE* p) noexcept {
    if (!p->debugAllData) {
        return;
    }
    myLogNote(p, U"Maxlevel %d, value maxlen %d", p->labelCountMax + 1,
              static_cast<int>(p->valueMaxLen));
    for (int32_t i = 1; i <= p->labelCountMax + 1; ++i) {
        myLogNote(p, U" p%d maxlen %d", i, p->labelMaxes[i - 1]);
    }
}

// Closes the record stream and builds the automatic map.  A walk has neither.
[[nodiscard]] QVStatus finish(JMAP_PRIVATE* p, QVBoolean* caching) noexcept {
    if (p->debugLevel && p->jsonDescLen != 0) {
        myLogNote(p, U"Parsing of %.*hs ends", noteLen(p->jsonDescLen), p->jsonDesc);
    }
    if (p->walk != nullptr) {
        return endWalk(p->walk);
    }
    // Kept: when the last block cannot be stored, the call still gives QV_OK, and every table lacks
    // its values.  jmapTotals has its bytes and the reason.
    p->lastBlockStatus = compressPathBuffer(p);
    (void)destroyHandle(p->tfp);  // Kept: likewise; Read finds out what was lost here
    noteCompression(p);
    noteLevels(p);
    if (p->debugPath) {
        QV_TRY(dumpPathInfo(p));
    }
    QV_TRY(doMapping(p));
    if (p->debugMap) {
        QV_TRY(dumpMap(p));
    }
    tellCaching(p, caching);  // the last block may have been the first to spill
    return QV_OK;
}

void releaseHashes(JMAP_PRIVATE* p) noexcept {
    (void)destroyHandle(p->hash);  // the parse is over, so a failure has no effect
    (void)destroyHandle(p->hash2);
    (void)destroyHandle(p->members);
    (void)destroyHandle(p->dsNameHash);
}

// Parses a buffer.  What ended a walk is the engine's own reason for the failure.
[[nodiscard]] QVStatus parse(JMAP_PRIVATE* p, const void* buf, QVStrSize bufLen, QVBoolean done) {
    if (p->walk == nullptr) {
        return p->parser->parse(p->parser, buf, bufLen, done);
    }
    beginBuffer(p->walk, buf, bufLen);
    const QVStatus rc = p->parser->parse(p->parser, buf, bufLen, done);
    const QVStatus walked = endBuffer(p->walk);
    if (walked == QV_OK) {
        return rc;
    }
    p->vrc = walked;
    return JMAP_PARSE;
}

void fillErrorInfo(JMAP_PRIVATE* p, QVStatus rc, ERRORINFO* e) noexcept {
    e->line = p->parser->line(p->parser);
    e->col = p->parser->column(p->parser);
    if (p->vrc != QV_OK) {
        e->col -= p->lineminus + 1;  // back to the start of the token
    }
    e->rc = rc;
    e->badstringLen = p->badstringLen;
    std::memcpy(e->badstring, p->badstring, sizeof e->badstring);
}

}  // namespace

QVStatus JsonInput(QVEJMAPJsonContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                   QVBoolean* caching, QVJnlh /*jnl*/) {
    JMAP_PRIVATE* p = contextOf(inh);
    if (p->parser == nullptr) {
        return QV_NOMEM;  // JsonInit could not make it
    }
    QVStatus rc = parse(p, inbuf, inlen, done);
    tellCaching(p, caching);
    if (done == 0 && (rc == QV_EOF || rc == QV_NEEDMORE)) {
        return QV_OK;
    }
    if (done != 0 && (rc == QV_OK || rc == QV_NEEDMORE)) {
        // Kept: on failure the trackers are not ended.  They live until the host stops.
        if (!p->isPart) {
            QV_TRY(finish(p, caching));
        }
        rc = QV_OK;
    }
    releaseHashes(p);
    if (done != 0 && rc == QV_EOF) {
        return JMAP_INCOMPLETE;
    }
    if (rc == QV_OK) {
        return QV_OK;
    }
    fillErrorInfo(p, rc, &inh->e);
    if (p->debugLevel && p->jsonDescLen != 0) {
        myLogNote(p, U"Parsing of %.*hs ends with ERROR", noteLen(p->jsonDescLen), p->jsonDesc);
    }
    return p->vrc != QV_OK ? p->vrc : JMAP_PARSE;
}

QVStatus endParts(JMAP_PRIVATE* p) noexcept {
    QVBoolean caching = 0;
    QV_TRY(finish(p, &caching));
    releaseHashes(p);
    return QV_OK;
}

void endInput(JMAP_PRIVATE* p) noexcept {
    releaseHashes(p);
    (void)destroyHandle(p->tfp);  // its records are not needed any more
}

}  // namespace jmap
