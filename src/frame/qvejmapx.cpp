// The routines of qvejmapx.h.  Most only call other parts of the engine.
//
// Tested by tests/frame/equality_test.cpp and tests/frame/fault_sweep_test.cpp
#include "qvejmapx.h"

#include "automap/path_parts.h"
#include "core/context.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/readctx.h"
#include "core/status.h"
#include "core/text.h"
#include "driver.h"
#include "reader/block_reader.h"
#include "reader/number_cell.h"
#include "reader/read_context.h"
#include "reader/row_walk.h"
#include "reader/table_pass.h"
#include "scan/count_sink.h"
#include "scan/events.h"
#include "scan/exact_number.h"
#include "scan/partial_scan.h"
#include "scan/path_stats.h"
#include "scan/path_tree.h"
#include "scan/path_watch.h"
#include "scan/record_format.h"

#include <algorithm>
#include <bit>
#include <string_view>

// A cursor; it lives in its pool.
struct JMAPRecordCursor {
    QVPoolh pool;
    BLOCKREADER blocks;
    QVStatus status;  // what ended the cursor; QV_OK: nothing yet
};

namespace jmap {
namespace {

constexpr std::u32string_view kCursorPoolName = U"qvejmap record cursor";

// Moves `*node` to the next node, from null to the first.
template <class T>
[[nodiscard]] QVStatus step(T* head, T** node) noexcept {
    T* successor = *node == nullptr ? head : (*node)->next;
    if (successor == nullptr) {
        return QV_EOF;
    }
    *node = successor;
    return QV_OK;
}

[[nodiscard]] constexpr QVBoolean flag(bool on) noexcept {
    return on ? 1 : 0;
}

// Loads blocks until there is a record to read.
[[nodiscard]] QVStatus findRecord(BLOCKREADER* blocks) noexcept {
    while (blocks->pBufi >= blocks->pBufLen) {
        COMPPATHS* next = nextBlock(*blocks);
        if (next == nullptr) {
            return QV_EOF;
        }
        QV_TRY(loadBlock(blocks, next));
    }
    return QV_OK;
}

// Whether the records have labels with a wrong length byte, or at a wrong depth.
bool labelsSlip(const JMAP_PRIVATE* p) noexcept {
    constexpr int32_t kMostInAByte = 255;
    const int32_t* const longest = p->labelMaxes;
    return p->emptyName || std::any_of(longest, longest + p->labelMaxesSize,
                                       [](int32_t len) { return len > kMostInAByte; });
}

// Writes the path of a table or a column: that of a node in the automatic map, else a text.
void putPath(const PATHNODE* node, std::string_view text, char* to) {
    if (node != nullptr) {
        writePath(node, lengthOf(text), to);
    } else {
        copyShort(to, text);
    }
}

uint64_t countValues(const JMAP_PRIVATE* p) {
    uint64_t count = 0;
    for (PATHINFO& head : each(p->pathInfoHead)) {
        for (const PATHINFO& info : eachDown(&head)) {
            for (const PATHKIND* kind = &info.kinds; kind != nullptr; kind = kind->next) {
                count += kind->kind == VAL_FAKEVARIABLE ? 0 : static_cast<uint64_t>(kind->count);
            }
        }
    }
    return count;
}

}  // namespace
}  // namespace jmap

using namespace jmap;

int32_t jmapVersion() {
    return QVEJMAPX_VERSION;
}

// ---- Tables and columns of a map ----------------------------------------------------------------

QVStatus jmapNextTable(QVMemPtr map, JMAPTableh* table) {
    const auto* m = static_cast<MAP*>(map);
    return m == nullptr ? QV_EOF : step(m->dshead, table);
}

QVStatus jmapAlldataTable(QVEJMAPJsonContexth inh, JMAPTableh* table) {
    DSINFO* alldata = contextOf(inh)->alldataDs;
    if (alldata == nullptr) {
        return JMAP_NOTABLE;
    }
    *table = alldata;
    return QV_OK;
}

void jmapTableInfo(JMAPTableh table, JMAPTableInfo* info) {
    info->name = table->name;
    info->nameLen = table->nameLen;
    info->tablePathLen = table->tablePathLen;
    info->columnCount = table->varcount;
}

void jmapTablePath(JMAPTableh table, char* path) {
    putPath(table->tableNode, view(table->tablePath, table->tablePathLen), path);
}

QVStrSize jmapTableObject(JMAPTableh table, char* path) {
    if (table->start == nullptr) {
        return 0;
    }
    const QVStrSize pathLen = parentLenOf(table->start);
    if (path != nullptr) {
        writePath(table->start, pathLen, path);
    }
    return pathLen;
}

void jmapColumnPath(JMAPColumnh column, char* path) {
    putPath(column->inTree ? column->node : nullptr,
            view(column->inTree ? nullptr : column->path, column->pathLen), path);
}

QVStatus jmapNextColumn(JMAPTableh table, JMAPColumnh* column) {
    return step(table->vhead, column);
}

void jmapColumnInfo(JMAPColumnh column, JMAPColumnInfo* info) {
    const USERVARINFO& user = userPartOf(*column);
    *info = {.name = column->name,
             .nameLen = column->nameLen,
             .pathLen = column->pathLen,
             .type = column->type,
             .length = column->length,
             .kinds = column->kinds,
             .label = user.label,
             .labelLen = user.labelLen,
             .format = {user.format, user.formatLen, user.formatWidth, user.formatDec},
             .informat = {user.informat, user.informatLen, user.informatWidth, user.informatDec},
             .informatNoError = flag(user.informatNoError),
             .retain = flag(column->retain),
             .noretain = flag(column->noretain),
             .lengthFromAutomap = flag(column->lengthFromAutomap),
             .truncation = flag(column->truncation),
             .currentLength = user.currentLength};
}

QVStatus jmapReadTable(QVEJMAPJsonContexth inh, JMAPTableh table, QVEJMAPReadInitParms* rip,
                       QVEJMAPReadContexth* inrctx) {
    const bool doAlldata = table == contextOf(inh)->alldataDs;
    return openTable(inh, table, view(table->name, table->nameLen), doAlldata, rip, inrctx);
}

void jmapObserve(QVEJMAPReadContexth rctx, const JMAPReadObserver* observer) {
    readContextOf(rctx)->observer = observer;
}

// ---- Limits of a scan ---------------------------------------------------------------------------

void jmapGuard(QVEJMAPJsonContexth inh, const JMAPGuard* guard) {
    contextOf(inh)->guard = guard;
}

QVStrSize jmapMostPaths(QVEJMAPJsonContexth inh, uint64_t* count, char* path) {
    const PATHNODE* node = mostPathsBelow(contextOf(inh), count);
    if (path != nullptr) {
        writePath(node, path);
    }
    return node->textLen;
}

// ---- Records ------------------------------------------------------------------------------------

JSNParserh jmapParser(QVEJMAPJsonContexth inh) {
    return contextOf(inh)->parser;
}

JSNParseCB* jmapCallbacks(QVEJMAPJsonContexth inh) {
    return &contextOf(inh)->parseCB;
}

void jmapSetParser(QVEJMAPJsonContexth inh, JSNParserh parser) {
    JMAP_PRIVATE* p = contextOf(inh);
    if (p->parser != nullptr) {
        (void)p->parser->generic.destroy(&p->parser->generic);  // it has parsed nothing
    }
    p->parser = parser;
}

uint64_t jmapBeginText(QVEJMAPJsonContexth inh) {
    return beginText(contextOf(inh));
}

void jmapEndInput(QVEJMAPJsonContexth inh) {
    endInput(contextOf(inh));
}

// ---- Scans in parts -----------------------------------------------------------------------------

void jmapCountOnly(QVEJMAPJsonContexth inh, QVBoolean part) {
    JMAP_PRIVATE* p = contextOf(inh);
    installScanCallbacks<CountSink>(&p->parseCB);
    p->isPart = part != 0;
}

void jmapBeginPart(QVEJMAPJsonContexth inh) {
    JMAP_PRIVATE* p = contextOf(inh);
    beginPart(p);
    if (p->walk != nullptr) {
        beginWalkPart(p->walk);
    }
}

QVStatus jmapEndPart(QVEJMAPJsonContexth inh) {
    JMAP_PRIVATE* p = contextOf(inh);
    return p->walk == nullptr ? QV_OK : endWalkPart(p->walk);
}

QVStatus jmapTakePart(QVEJMAPJsonContexth inh, const char** bytes, QVStrSize* bytesLen) {
    std::string_view part;
    QV_TRY(writePart(contextOf(inh), &part));
    *bytes = part.data();
    *bytesLen = lengthOf(part);
    return QV_OK;
}

QVStatus jmapAddPart(QVEJMAPJsonContexth inh, const char* bytes, QVStrSize bytesLen, int64_t line,
                     int64_t column) {
    return addPart(contextOf(inh), view(bytes, bytesLen), {line, column});
}

QVStatus jmapEndParts(QVEJMAPJsonContexth inh) {
    return endParts(contextOf(inh));
}

QVStatus jmapNextContainer(QVEJMAPJsonContexth inh, JMAPContainerh* container) {
    PATHBRANCH* at = *container == nullptr ? &contextOf(inh)->pathRoot : nextBranch(*container);
    while (at != nullptr && jmapContainerCount(at) == 0) {
        at = nextBranch(at);
    }
    if (at == nullptr) {
        return QV_EOF;
    }
    *container = at;
    return QV_OK;
}

uint64_t jmapContainerCount(JMAPContainerh container) {
    const PATHCHILDREN* below = container->node.children;
    return below == nullptr ? 0 : below->markers;
}

const char* jmapContainerPath(QVEJMAPJsonContexth inh, JMAPContainerh container,
                              QVStrSize* pathLen) {
    const PATHNODE* node = &container->node;
    const std::string_view path = pathText(contextOf(inh), node, node->textLen);
    *pathLen = lengthOf(path);
    return path.data();
}

const char* jmapOpenPath(QVEJMAPJsonContexth inh, QVStrSize* pathLen) {
    JMAP_PRIVATE* p = contextOf(inh);
    const PATHNODE* const node = p->awaited != nullptr ? p->awaited : &p->pathAt->node;
    const std::string_view path = pathText(p, node, node->textLen);
    *pathLen = lengthOf(path);
    return path.data();
}

uint32_t jmapPartFlags(QVEJMAPJsonContexth inh) {
    return partFlags(contextOf(inh));
}

QVStatus jmapRecordsOpen(QVEJMAPJsonContexth inh, JMAPRecordCursorh* cursor) {
    QVPoolh pool = newPool(kCursorPoolName);
    if (pool == nullptr) {
        return QV_NOMEM;
    }
    auto* opened = poolNew<JMAPRecordCursor>(pool);
    if (opened == nullptr || openBlocks(&opened->blocks, contextOf(inh), pool) != QV_OK) {
        (void)destroyHandle(pool);  // nothing is in it yet
        return QV_NOMEM;
    }
    opened->pool = pool;
    *cursor = opened;
    return QV_OK;
}

QVStatus jmapRecordsNext(JMAPRecordCursorh cursor, JMAPRecord* record) {
    BLOCKREADER& blocks = cursor->blocks;
    QV_TRY(cursor->status);
    cursor->status = findRecord(&blocks);
    QV_TRY(cursor->status);
    const RECORD found = parseRecord(blocks.records + blocks.pBufi);
    const std::string_view path = pathOf(found);
    const std::string_view value = valueOf(found);
    *record = {.kind = found.kind,
               .labelCount = found.labelCount,
               .path = path.data(),
               .pathLen = lengthOf(path),
               .value = value.data(),
               .valueLen = lengthOf(value),
               .bytes = found.at,
               .bytesLen = found.size};
    blocks.pBufi += found.size;
    return QV_OK;
}

QVStatus jmapRecordsClose(JMAPRecordCursorh cursor) {
    const QVStatus rc = closeBlocks(&cursor->blocks);
    QVPoolh pool = cursor->pool;
    (void)destroyHandle(pool);  // the cursor is gone with it
    return rc;
}

// ---- Rows of many tables in one walk ------------------------------------------------------------

QVStatus jmapNewTable(QVEJMAPJsonContexth inh, const char* path, QVStrSize pathLen,
                      JMAPTableh* table) {
    QVPoolh pool = contextOf(inh)->cpool;
    auto* ds = poolNew<DSINFO>(pool);
    if (ds == nullptr || (ds->tablePath = poolCopy(pool, view(path, pathLen))) == nullptr) {
        return QV_NOMEM;
    }
    ds->tablePathLen = pathLen;
    *table = ds;
    return QV_OK;
}

QVStatus jmapNewColumn(QVEJMAPJsonContexth inh, JMAPTableh table, JMAPColumnh like,
                       const char* path, QVStrSize pathLen) {
    QVPoolh pool = contextOf(inh)->cpool;
    auto* column = poolNew<VARINFO>(pool);
    if (column == nullptr) {
        return QV_NOMEM;
    }
    if (like != nullptr) {
        *column = *like;
        column->next = nullptr;
    } else {
        column->path = poolCopy(pool, view(path, pathLen));
        if (column->path == nullptr) {
            return QV_NOMEM;
        }
        column->pathLen = pathLen;
    }
    append(table->vhead, table->vtail, column);
    table->varcount += 1;
    return QV_OK;
}

QVStatus jmapPassOpen(QVEJMAPJsonContexth inh, const JMAPTableh* tables, QVStrSize tableCount,
                      uint64_t flags, JMAPPassh* pass) {
    return openPass(contextOf(inh), tables, tableCount, flags, pass);
}

QVStatus jmapPassNext(JMAPPassh pass, JMAPPassItem* item) {
    return pass->walks ? QV_EOF : nextItem(reinterpret_cast<TABLEPASS*>(pass), item);
}

QVStatus jmapPassClose(JMAPPassh pass) {
    return pass->walks ? closeWalk(reinterpret_cast<ROWWALK*>(pass))
                       : closePass(reinterpret_cast<TABLEPASS*>(pass));
}

void jmapPassColumn(JMAPPassh pass, QVStrSize table, QVStrSize column, JMAPPassColumn* info) {
    passColumn(pass, table, column, info);
}

void jmapPassLeft(JMAPPassh pass, QVStrSize table, const JMAPPassCell** cells,
                  QVStrSize* cellCount) {
    *cells = pass->tables[table].cells;
    *cellCount = pass->tables[table].columnCount;
}

uint64_t jmapPassRoots(JMAPPassh pass) {
    return pass->roots;
}

QVBoolean jmapPassTextsStay(JMAPPassh pass) {
    return flag(pass->textsStay);
}

QVStatus jmapWalkOpen(QVEJMAPJsonContexth inh, QVEJMAPJsonContexth tablesOf,
                      const JMAPTableh* tables, QVStrSize tableCount, uint64_t flags,
                      QVStatus (*take)(void* arg, const JMAPPassItem* item), void* arg,
                      JMAPPassh* walk) {
    const DSINFO* alldata = contextOf(tablesOf)->alldataDs;
    ROWWALK* opened = nullptr;
    QV_TRY(openWalk(contextOf(inh), alldata, tables, tableCount, flags, &opened));
    opened->take = take;
    opened->arg = arg;
    *walk = &opened->machine;
    return QV_OK;
}

uint64_t* jmapWalkCount(JMAPPassh walk, QVStrSize table, QVStrSize column) {
    return walkCount(reinterpret_cast<ROWWALK*>(walk), table, column);
}

QVBoolean jmapWalkLeft(JMAPPassh walk) {
    return flag(hasLeft(reinterpret_cast<const ROWWALK*>(walk)));
}

QVStatus jmapToNumber(QVEJMAPJsonContexth inh, const char* text, QVStrSize textLen,
                      double* number) {
    const NUMBERCELL cell = numberCell(contextOf(inh)->smh, view(text, textLen));
    *number = std::bit_cast<double>(cell.bits);
    return cell.word != nullptr ? QV_OK : cell.status;
}

QVBoolean jmapIsInexact(QVEJMAPJsonContexth inh, const char* number, QVStrSize numberLen) {
    return flag(losesDigits(contextOf(inh)->smh, view(number, numberLen)));
}

// ---- Statistics of paths ------------------------------------------------------------------------

QVStatus jmapNextPath(QVEJMAPJsonContexth inh, JMAPPathh* path) {
    PATHINFO* at = *path;
    PATHINFO* next = contextOf(inh)->pathInfoHead;
    if (at != nullptr) {
        const PATHINFO* head = at->member ? at->head : at;
        next = at->down != nullptr ? at->down : head->next;
    }
    if (next == nullptr) {
        return QV_EOF;
    }
    *path = next;
    return QV_OK;
}

void jmapPathInfo(JMAPPathh path, JMAPPathInfo* info) {
    info->pathLen = path->node->textLen;
    info->labels = path->node->labels;
    info->count = path->count;
    info->type = path->type;
    info->maxValueLen = path->pathMaxValLen;
    info->longestLine = path->longest.line;
    info->longestColumn = path->longest.column;
    std::fill(std::begin(info->kinds), std::end(info->kinds), JMAPPathKind{});
    for (const PATHKIND* kind = &path->kinds; kind != nullptr; kind = kind->next) {
        info->kinds[kind->kind] = {kind->count, kind->first.line, kind->first.column};
    }
    info->inexact = {};
    if (const PATHEXTRAS* extras = path->extras; extras != nullptr) {
        info->inexact = {extras->inexact, extras->firstInexact.line, extras->firstInexact.column};
    }
}

void jmapPathText(JMAPPathh path, char* text) {
    writePath(path->node, text);
}

QVStatus jmapWatch(QVEJMAPJsonContexth inh, const char* path, QVStrSize pathLen, int64_t number,
                   JMAPWatchh* watch) {
    *watch = watchFor(contextOf(inh), view(path, pathLen), number);
    return *watch == nullptr ? QV_NOMEM : QV_OK;
}

void jmapWatched(JMAPWatchh watch, int64_t* line, int64_t* column) {
    *line = watch->place.line;
    *column = watch->place.column;
}

// ---- Totals and words ---------------------------------------------------------------------------

void jmapTotals(QVEJMAPJsonContexth inh, JMAPTotals* totals) {
    const JMAP_PRIVATE* p = contextOf(inh);
    *totals = {};
    totals->records = p->pathCount;
    totals->recordBytes = p->uncompressedPathBytes;
    totals->storedBytes = p->compressedPathBytes;
    totals->unstoredBytes = static_cast<uint64_t>(p->cBufi);
    totals->unstoredStatus = p->lastBlockStatus;
    totals->values = countValues(p);
    totals->droppedTables = p->droppedTables;
    totals->lostLookups = p->lostLookups;
    totals->labelsSlip = flag(labelsSlip(p));
    for (const COMPPATHS& block : each(p->chead)) {
        totals->blocks += 1;
        totals->blocksOnDisk += block.onDisk ? 1 : 0;
    }
}

const char* jmapKindName(int32_t kind) {
    return valtypeToString(kind);
}
