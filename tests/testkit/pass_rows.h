// The rows of tables, once from Read and once from a pass over all of them, in one form.
#pragma once

#include "core/list.h"
#include "core/readctx.h"
#include "core/text.h"
#include "testkit/testkit.h"

#include <bit>

namespace jmap::test {

using Rows = std::vector<std::string>;  // of one table

inline std::vector<DSINFO*> tablesOf(const Scan& scan, MAP* map) {
    std::vector<DSINFO*> tables = {scan.p()->alldataDs};
    for (DSINFO& ds : each(map->dshead)) {
        tables.push_back(&ds);
    }
    return tables;
}

// Row buffer and raw texts.
inline Rows rowsOfRead(const Scan& scan, DSINFO* table, uint64_t flags) {
    Rows rows;
    QVEJMAPReadInitParms rip = {flags};
    QVEJMAPReadContexth rctx = nullptr;
    EXPECT_QV_OK(jmapReadTable(scan.doc(), table, &rip, &rctx));
    while (scan.engine()->Read(rctx) == QV_OK) {
        std::string row(view(rctx->obsbuf, rctx->obsbufLen));
        for (QVStrSize i = 0; i < rctx->varCount; ++i) {
            const VARIABLEINFO& v = rctx->varinfo[i];
            const bool raw = readContextOf(rctx)->varinfo[i].type != VAR_ORDINAL;
            row += raw ? "|" + std::string(view(v.rawdata, v.rawdataLen)) : "|";
        }
        rows.push_back(std::move(row));
    }
    EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    return rows;
}

// What Read puts into its buffer for a cell of a pass.
inline std::string bufferOf(const Scan& scan, const VARINFO& column, const JMAPPassCell& cell) {
    const bool text = cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
    EXPECT_TRUE(column.type != VAR_ORDINAL || !text);
    double number = std::bit_cast<double>(QVEJMAP_MISSING_BITS);
    if (column.type == VAR_CHAR) {
        const bool blank = !text || cell.kind == JMAP_KIND_NULL || column.informatLen != 0;
        std::string bytes(blank ? "" : view(cell.text, cell.textLen));
        bytes.resize(std::min<size_t>(column.length, 32767), ' ');
        return bytes;
    }
    if (cell.kind == JMAP_CELL_COUNT) {
        number = static_cast<double>(cell.count);
    } else if (text && column.informatLen == 0) {
        (void)jmapToNumber(scan.doc(), cell.text, cell.textLen, &number);  // 0 for no number
    }
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

inline std::vector<Rows> rowsOfPass(const Scan& scan, const std::vector<DSINFO*>& tables,
                                    uint64_t flags) {
    std::vector<Rows> rows(tables.size());
    JMAPPassh pass = nullptr;
    EXPECT_QV_OK(
        jmapPassOpen(scan.doc(), tables.data(), lengthOf({nullptr, tables.size()}), flags, &pass));
    JMAPPassItem item = {};
    QVStatus rc = QV_OK;
    while ((rc = jmapPassNext(pass, &item)) == QV_OK) {
        if (item.kind != JMAP_PASS_ROW) {
            continue;
        }
        std::string row, raws;
        const JMAPPassCell* cell = item.cells;
        for (const VARINFO& column : each(tables[static_cast<size_t>(item.table)]->vhead)) {
            row += bufferOf(scan, column, *cell);
            const bool raw = column.informatLen != 0 && column.type != VAR_ORDINAL &&
                             cell->kind != JMAP_CELL_MISSING;
            raws += raw ? "|" + std::string(view(cell->text, cell->textLen)) : "|";
            ++cell;
        }
        EXPECT_EQ(item.cellCount, cell - item.cells);
        rows[static_cast<size_t>(item.table)].push_back(row + raws);
    }
    EXPECT_QV(QV_EOF, rc);
    EXPECT_QV_OK(jmapPassClose(pass));
    return rows;
}

// All tables of a map, and ALLDATA, in one pass, against each by itself.
inline void expectThePassGivesTheRowsOfRead(const Scan& scan, MAP* map) {
    const std::vector<DSINFO*> tables = tablesOf(scan, map);
    for (const uint64_t flags : {uint64_t{0}, uint64_t{QVEJMAP_RETAIN}}) {
        const std::vector<Rows> rows = rowsOfPass(scan, tables, flags);
        for (size_t i = 0; i < tables.size(); ++i) {
            EXPECT_TRUE(rows[i] == rowsOfRead(scan, tables[i], flags))
                << "table " << i << ", flags " << flags;
        }
    }
}

}  // namespace jmap::test
