// Opening and ending a document.
//
// Tested by tests/frame/document_test.cpp
#include "document.h"

#include "core/context.h"
#include "core/hash.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "options.h"
#include "scan/events.h"
#include "scan/path_tree.h"
#include "scan/record_stream.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace jmap {
namespace {

constexpr std::u32string_view kPoolName = U"qvejmap context";
constexpr std::string_view kParserDesc = "qvejmap's json parser";
constexpr QVStrSize kMaxAlldataName = 40;  // capacity of DSINFO::name
constexpr QVStrSize kMaxTempName = INT64_MAX / static_cast<QVStrSize>(sizeof(QVChar));
constexpr int32_t kFirstDepths = 30;  // nesting levels with room from the start
constexpr double kGiB = 1024.0 * 1024.0 * 1024.0;

// Whether the text is valid: a pointer with a length, or none.
[[nodiscard]] constexpr bool isText(const void* text, QVStrSize textLen) noexcept {
    return textLen == 0 || (textLen > 0 && text != nullptr);
}

[[nodiscard]] bool valid(const QVEJMAPJsonInitParms* parms) noexcept {
    return parms != nullptr && parms->inCEI > 0 && parms->descLen >= 0 &&
           isText(parms->debugString, parms->debugStringLen) &&
           isText(parms->tempName, parms->tempNameLen) &&
           isText(parms->alldataName, parms->alldataNameLen) &&
           parms->alldataNameLen <= kMaxAlldataName;
}

// A handle with an empty context, or null.
[[nodiscard]] QVEJMAPJsonContexth newContext(QVExtensionh inh, QVPoolh pool) noexcept {
    auto* ctx = poolNew<QVEJMAPJsonContext>(pool);
    if (ctx == nullptr) {
        return nullptr;
    }
    ctx->exth = inh;
    ctx->p = poolNew<JMAP_PRIVATE>(pool);
    return ctx->p == nullptr ? nullptr : ctx;
}

// Sets the modules of the instance, and makes the transcoder and the string service of the
// document's encoding.  Both may stay null.  Returns the status of the string service.
[[nodiscard]] QVStatus takeServices(JMAP_PRIVATE* p, JMAP_S* jmap) noexcept {
    QVNLSh nls = jmap->nls;
    p->tosess = nls->newTranscoder(nls, U_L_UCS4_CE, p->inCei, jmap->jnl);
    p->jsonh = jmap->jsonh;
    p->zlibh = jmap->zlibh;
    p->fmth = jmap->fmth;
    return nls->newStringService(nls, p->inCei, jmap->jnl, &p->smh);
}

void takeDescription(JMAP_PRIVATE* p, const QVEJMAPJsonInitParms& parms) noexcept {
    p->jsonDescLen = std::min(parms.descLen, static_cast<QVStrSize>(sizeof p->jsonDesc));
    std::memcpy(p->jsonDesc, parms.desc, static_cast<size_t>(p->jsonDescLen));
}

void setSeparators(JMAP_PRIVATE* p) noexcept {
    std::memcpy(p->root, kRoot.data(), kRoot.size());
    p->sep = kSep;
    p->munge = false;
    p->rootL = lengthOf(kRoot);
}

[[nodiscard]] QVStatus takeTempName(JMAP_PRIVATE* p, const QVEJMAPJsonInitParms& parms) noexcept {
    if (parms.tempNameLen > kMaxTempName) {
        return QV_NOMEM;
    }
    const QVStrSize bytes = parms.tempNameLen * static_cast<QVStrSize>(sizeof(QVChar));
    p->tempName = reinterpret_cast<QVChar*>(poolBytes(p->cpool, bytes));
    if (p->tempName == nullptr) {
        return QV_NOMEM;
    }
    if (bytes > 0) {
        std::memcpy(p->tempName, parms.tempName, static_cast<size_t>(bytes));
    }
    p->tempNameLen = parms.tempNameLen;
    return QV_OK;
}

void takeLimits(JMAP_PRIVATE* p, const QVEJMAPJsonInitParms& parms) noexcept {
    p->rlmemSize = parms.rlmemSize;
    p->rlmemLeavePercent = parms.rlmemLeavePercent;
    p->memLeave = parms.memLeave;
    p->ordinalCount = parms.ordinalCount;
    p->rlmemMin = p->memLeave;
}

void noteBeginning(JMAP_PRIVATE* p) noexcept {
    if (p->debugRlmem) {
        myLogNote(p, U"rlmemSize %7.4gG", static_cast<double>(p->rlmemSize) / kGiB);
        myLogNote(p, U"rlmemMin  %7.4gG", static_cast<double>(p->rlmemMin) / kGiB);
    }
    if (p->debugLevel && p->jsonDescLen != 0) {
        myLogNote(p, U"Parsing of %.*hs begins", noteLen(p->jsonDescLen), p->jsonDesc);
    }
}

// Makes the parser, with the callbacks of the scan.  Kept: without memory it stays null and
// JsonInit succeeds; the first JsonInput then gives QV_NOMEM.
void newParser(JMAP_PRIVATE* p) noexcept {
    installScanCallbacks<RecordSink>(&p->parseCB);
    const JSNParserParms parms = {
        .textCei = p->inCei,
        .callbackCei = p->inCei,
        .flags = JSN_PARSER_FLAGS,
        .pool = nullptr,
        .jnl = p->jnl,
        .callbacks = &p->parseCB,
        .stream = nullptr,
        .tippingSize = 0,
        .desc = kParserDesc.data(),
        .descLen = lengthOf(kParserDesc),
    };
    p->parser = p->jsonh->createParser(p->jsonh, &parms);
}

// Allocates the block buffer and the label statistics, and copies the ALLDATA name.
[[nodiscard]] QVStatus newBuffers(JMAP_PRIVATE* p, const QVEJMAPJsonInitParms& parms) noexcept {
    p->cBuf = poolBytes(p->cpool, kBlockBytes);
    if (p->cBuf == nullptr) {
        return QV_NOMEM;
    }
    p->cBufi = 0;
    // One spare entry each: the record of an empty container reads one past the deepest label.
    p->labelMaxes = poolNew<int32_t>(p->cpool, kFirstDepths + 1);
    if (p->labelMaxes == nullptr) {
        return QV_NOMEM;
    }
    p->labelCurLens = poolNew<int32_t>(p->cpool, kFirstDepths + 1);
    if (p->labelCurLens == nullptr) {
        return QV_NOMEM;
    }
    p->labelMaxesSize = kFirstDepths;
    p->labelCount = -1;
    if (parms.alldataNameLen != 0) {
        p->alldataName = poolCopy(p->cpool, view(parms.alldataName, parms.alldataNameLen));
        if (p->alldataName == nullptr) {
            return QV_NOMEM;
        }
        p->alldataNameLen = parms.alldataNameLen;
    }
    return QV_OK;
}

}  // namespace

// Kept: a failure after the pool was made leaves `*inctx` as it was, and does not end the pool, the
// parser and the services.  They live until the host stops.
QVStatus JsonInit(QVExtensionh inh, QVEJMAPJsonInitParms* parms, QVEJMAPJsonContexth* inctx,
                  QVJnlh jnl) {
    if (!valid(parms)) {
        return QV_BADPARMS;
    }
    QVPoolh pool = newPool(kPoolName);
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    QVEJMAPJsonContexth ctx = newContext(inh, pool);
    if (ctx == nullptr) {
        return QV_NOMEM;
    }
    JMAP_PRIVATE* p = contextOf(ctx);
    p->cpool = pool;
    p->hashSeed = newHashSeed(p);
    p->jnl = jnl;
    p->compress = parms->compress != 0;
    p->inCei = parms->inCEI;
    auto* jmap = reinterpret_cast<JMAP_S*>(inh);  // the instance begins with its QVExtension
    // Kept: the status of a missing string service is returned at the end, with a context that can
    // be scanned.  Debug keywords have no effect then.
    const QVStatus rc = takeServices(p, jmap);
    takeDescription(p, *parms);
    p->flags = parms->flags;
    setSeparators(p);
    startPathTree(p);
    if (parms->debugStringLen != 0) {
        jmap->nls->upper8(jmap->nls, parms->debugString, parms->debugStringLen);
        applyKeywords(p, parms->debugString, parms->debugStringLen);
    }
    QV_TRY(takeTempName(p, *parms));
    takeLimits(p, *parms);
    noteBeginning(p);
    newParser(p);
    QV_TRY(newBuffers(p, *parms));
    *inctx = ctx;
    return rc;
}

// Kept: the parser of a user map and the map writer are not ended here.  Without MapTerm and
// GetAutoMapBufFree they live until the host stops.
QVStatus Term(QVEJMAPJsonContexth inh, QVJnlh /*jnl*/) {
    JMAP_PRIVATE* p = contextOf(inh);
    (void)destroyHandle(p->parser);  // only the status of the pool is returned
    (void)destroyHandle(p->qvioeh);
    (void)destroyHandle(p->tosess);
    (void)destroyHandle(p->smh);
    QVPoolh pool = p->cpool;
    return destroyHandle(pool);  // the handle and the context are gone with it
}

}  // namespace jmap
