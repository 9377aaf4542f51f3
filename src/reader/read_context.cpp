// Opening, rewinding and closing one table for reading.
//
// Tested by tests/reader/read_context_test.cpp
#include "read_context.h"

#include "automap/map_index.h"
#include "automap/names.h"
#include "automap/path_parts.h"
#include "block_reader.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "row_layout.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

// Equal in any case; no name is longer than DSINFO::name.
bool sameInAnyCase(JMAP_PRIVATE* /*p*/, std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    char upperA[sizeof(DSINFO::name)];
    char upperB[sizeof(DSINFO::name)];
    upperName(upperA, a);
    upperName(upperB, b);
    return std::memcmp(upperA, upperB, a.size()) == 0;
}

// Stores the table name, cut, in one of the structures.
template <class Context>
void keepName(Context* context, std::string_view name) noexcept {
    context->dsnameLen = std::min(lengthOf(name), static_cast<QVStrSize>(sizeof context->dsname));
    std::copy_n(name.data(), context->dsnameLen, context->dsname);
}

// The two structures of a read context in a pool of their own.
QVStatus newReadContext(QVEJMAPJsonContexth inh, QVEJMAPReadContexth* out) {
    QVPoolh pool = newPool(U"qvejmap read pool");
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    auto* rctx = poolNew<qvejmapReadContext>(pool);
    auto* rp = poolNew<JMAP_READPRIVATE>(pool);
    if (rctx == nullptr || rp == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(openBlocks(&rp->blocks, contextOf(inh), pool));
    rctx->exth = inh->exth;
    rctx->p = rp;
    rp->p = contextOf(inh);
    rp->rpool = pool;
    *out = rctx;
    return QV_OK;
}

}  // namespace

QVStatus ReadInit(QVEJMAPJsonContexth inh, QVMemPtr inmap, char* dsname, QVStrSize dsnameLen,
                  QVEJMAPReadInitParms* rip, QVEJMAPReadContexth* inrctx) {
    JMAP_PRIVATE* p = contextOf(inh);
    if (dsnameLen < 0) {
        return JMAP_NOTABLE;
    }
    const std::string_view name = view(dsname, dsnameLen);
    DSINFO* ds = findTable(p, static_cast<MAP*>(inmap), name, sameInAnyCase);
    if (ds != nullptr) {
        return openTable(inh, ds, name, false, rip, inrctx);
    }
    // Kept: when JsonInit got no name, the empty name opens ALLDATA, and "ALLDATA" does not.
    if (name != view(p->alldataName, p->alldataNameLen) || p->alldataDs == nullptr) {
        return JMAP_NOTABLE;
    }
    return openTable(inh, p->alldataDs, name, true, rip, inrctx);
}

QVStatus openTable(QVEJMAPJsonContexth inh, DSINFO* ds, std::string_view name, bool doAlldata,
                   const QVEJMAPReadInitParms* rip, QVEJMAPReadContexth* out) {
    JMAP_PRIVATE* p = contextOf(inh);
    if (p->debugReadInit) {
        myLogNote(p, U"readinit found ds [%.*hs]", noteLen(ds->nameLen), ds->name);
    }
    QVEJMAPReadContexth rctx = nullptr;
    QV_TRY(newReadContext(inh, &rctx));
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    rp->doAlldata = doAlldata;
    keepName(rctx, name);
    keepName(rp, name);
    if (const std::string_view path = tablePathOf(p, *ds); path.data() != nullptr) {
        rp->tablePath = poolCopy(rp->rpool, path);
        rp->tablePathLen = ds->tablePathLen;
    }
    if (rp->tablePath == nullptr && (ds->tableNode != nullptr || ds->tablePath != nullptr)) {
        return QV_NOMEM;
    }
    QV_TRY(layoutRow(rctx, *ds, rip == nullptr ? 0 : rip->flags));
    dumpLayout(rctx);
    *out = rctx;
    return QV_OK;
}

// Kept: the row buffer and the state of the row are not reset.  Retained columns therefore begin
// with the values of the last row.  Read itself resets all else.
QVStatus ReadReset(QVEJMAPReadContexth inrctx) {
    JMAP_READPRIVATE* rp = readContextOf(inrctx);
    if (rp->p->debugReadReset) {
        myLogNote(rp->p, U"ReadReset ");
    }
    rewindBlocks(&rp->blocks);
    rp->atEOF = false;
    for (QVStrSize i = 0; i < rp->varCount; ++i) {
        rp->varinfo[i].ordinalValue = 0;
    }
    return QV_OK;
}

QVStatus ReadTerm(QVEJMAPReadContexth rctx) {
    JMAP_READPRIVATE* rp = readContextOf(rctx);
    if (rp->p->debugRead) {
        myLogNote(rp->p, U"ReadTerm called");
    }
    (void)closeBlocks(&rp->blocks);  // read only: nothing can be lost
    QVPoolh pool = rp->rpool;        // the pool holds `rp` itself
    (void)destroyHandle(pool);       // Kept: ReadTerm gives QV_OK whatever this returns
    return QV_OK;
}

}  // namespace jmap
