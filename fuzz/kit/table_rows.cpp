#include "fuzz/kit/table_rows.h"

#include "qvejmap.h"

#include "core/text.h"
#include "fuzz/kit/require.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <string>
#include <utility>

namespace jmap::fuzz {
namespace {

constexpr uint64_t kLongestCell = 32767;

// The row buffer, then "|" and the raw text of each column; in front of it a line "!COLUMN TEXT"
// for each text that was no number.  What a row that never ends got stands after the last one.
using Rows = std::vector<std::string>;

std::string noNumber(QVStrSize column, std::string_view text) {
    return "!" + std::to_string(column) + " " + std::string(text) + "\n";
}

std::vector<JMAPColumnInfo> columnsOf(JMAPTableh table) {
    std::vector<JMAPColumnInfo> columns;
    JMAPColumnh column = nullptr;
    while (jmapNextColumn(table, &column) == QV_OK) {
        jmapColumnInfo(column, &columns.emplace_back());
    }
    return columns;
}

bool isRaw(const JMAPColumnInfo& column) {
    return column.informat.nameLen != 0;
}

// Counts and retained values stay where they are when a table is reset, so that a second reading
// may begin with other rows than the first; a third begins like the second.
bool keepsValues(const JMAPColumnInfo& column) {
    return column.type == JMAP_ORDINAL || column.retain != 0;
}

Rows rowsUpToTheEnd(QVEJMAPReadContexth open, const std::vector<JMAPColumnInfo>& columns,
                    UserJMAP_S* engine) {
    std::string begun;
    JMAPReadObserver observer{};
    observer.arg = &begun;
    observer.notNumber = [](void* arg, QVStrSize column, const char* text, QVStrSize textLen) {
        *static_cast<std::string*>(arg) += noNumber(column, view(text, textLen));
    };
    observer.raw = [](void*, QVStrSize, int32_t, QVStatus status) {
        require(status == QV_OK, "a raw text is kept");
    };
    jmapObserve(open, &observer);
    Rows rows;
    QVStatus rc = QV_OK;
    while ((rc = engine->Read(open)) == QV_OK) {
        begun += view(open->obsbuf, open->obsbufLen);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const VARIABLEINFO& cell = open->varinfo[i];
            begun += "|";
            begun += view(cell.rawdata, cell.rawdataLen);
        }
        rows.push_back(std::move(begun));
        begun.clear();
    }
    require(rc == QV_EOF, "every row can be read");
    rows.push_back(std::move(begun));
    return rows;
}

// What Read puts into its buffer for a cell of a pass.
std::string bufferOf(QVEJMAPJsonContexth doc, const JMAPColumnInfo& column,
                     const JMAPPassCell& cell) {
    const bool text = cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
    require(!text || column.type != JMAP_ORDINAL, "an ordinal has no text");
    if (column.type == JMAP_CHARACTER) {
        const bool blank = !text || cell.kind == JMAP_KIND_NULL || isRaw(column);
        std::string bytes(blank ? std::string_view() : view(cell.text, cell.textLen));
        const uint64_t length = std::min(column.length, kLongestCell);
        bytes.resize(static_cast<std::size_t>(length), ' ');
        return bytes;
    }
    auto number = std::bit_cast<double>(uint64_t{QVEJMAP_MISSING_BITS});
    if (cell.kind == JMAP_CELL_COUNT) {
        number = static_cast<double>(cell.count);
    } else if (text && !isRaw(column)) {
        (void)jmapToNumber(doc, cell.text, cell.textLen, &number);  // 0 for no number
    }
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

// The raw text of each column, after a "|".
std::string rawTexts(const JMAPPassItem& item, const std::vector<JMAPColumnInfo>& columns) {
    std::string raws;
    const JMAPPassCell* text = item.cells + item.cellCount;
    const JMAPPassCell* const end = text + item.textCount;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        raws += "|";
        if (isRaw(columns[i])) {
            const bool ordinal = columns[i].type == JMAP_ORDINAL;
            require(!ordinal || text != end, "a text for each ordinal with an informat");
            const JMAPPassCell& cell = ordinal ? *text++ : item.cells[i];
            raws += cell.kind == JMAP_CELL_MISSING ? "" : view(cell.text, cell.textLen);
        }
    }
    require(text == end, "no text besides");
    return raws;
}

// Of one table.  Without flags it is read three times, and the readings must agree.
Rows rowsOfRead(QVEJMAPJsonContexth doc, JMAPTableh table, uint64_t flags) {
    auto* const engine = reinterpret_cast<UserJMAP_S*>(doc->exth);
    const std::vector<JMAPColumnInfo> columns = columnsOf(table);
    QVEJMAPReadInitParms rip = {flags};
    QVEJMAPReadContexth open = nullptr;
    require(jmapReadTable(doc, table, &rip, &open) == QV_OK, "a table opens");
    require(open->varCount == static_cast<QVStrSize>(columns.size()), "with all its columns");
    Rows rows = rowsUpToTheEnd(open, columns, engine);
    if (flags == 0) {
        const auto readAgain = [&] {
            require(engine->ReadReset(open) == QV_OK, "a table is reset");
            return rowsUpToTheEnd(open, columns, engine);
        };
        const Rows second = readAgain();
        require(std::ranges::any_of(columns, keepsValues) || second == rows,
                "the same rows after a reset");
        require(readAgain() == second, "the same rows after another reset");
    }
    require(engine->ReadTerm(open) == QV_OK, "a table closes");
    return rows;
}

std::vector<Rows> rowsOfPass(QVEJMAPJsonContexth doc, const std::vector<JMAPTableh>& tables,
                             uint64_t flags) {
    std::vector<Rows> rows(tables.size());
    Rows begun(tables.size());
    std::vector<std::vector<JMAPColumnInfo>> columns;
    std::ranges::transform(tables, std::back_inserter(columns), columnsOf);
    JMAPPassh pass = nullptr;
    require(jmapPassOpen(doc, tables.data(), static_cast<QVStrSize>(tables.size()), flags, &pass) ==
                QV_OK,
            "a pass opens");
    JMAPPassItem item{};
    QVStatus rc = QV_OK;
    while ((rc = jmapPassNext(pass, &item)) == QV_OK) {
        const auto table = static_cast<std::size_t>(item.table);
        std::string& row = begun.at(table);
        require(item.cellCount == static_cast<QVStrSize>(columns[table].size()),
                "a row has a cell for each column");
        if (item.kind != JMAP_PASS_ROW) {
            row += noNumber(item.column, view(item.text, item.textLen));
            continue;
        }
        for (std::size_t i = 0; i < columns[table].size(); ++i) {
            row += bufferOf(doc, columns[table][i], item.cells[i]);
        }
        rows[table].push_back(std::exchange(row, {}) + rawTexts(item, columns[table]));
    }
    require(rc == QV_EOF, "every row can be made");
    require(jmapPassClose(pass) == QV_OK, "a pass closes");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].push_back(std::move(begun[i]));
    }
    return rows;
}

}  // namespace

std::vector<JMAPTableh> tablesOf(QVEJMAPJsonContexth doc, QVMemPtr map, std::size_t most) {
    std::vector<JMAPTableh> tables(1);
    require(jmapAlldataTable(doc, tables.data()) == QV_OK, "there is ALLDATA");
    JMAPTableh table = nullptr;
    while (tables.size() < most && jmapNextTable(map, &table) == QV_OK) {
        tables.push_back(table);
    }
    return tables;
}

void requireSameRows(QVEJMAPJsonContexth doc, const std::vector<JMAPTableh>& tables) {
    for (const uint64_t flags : {uint64_t{0}, uint64_t{QVEJMAP_RETAIN}}) {
        const std::vector<Rows> pass = rowsOfPass(doc, tables, flags);
        for (std::size_t i = 0; i < tables.size(); ++i) {
            const Rows read = rowsOfRead(doc, tables[i], flags);
            for (std::size_t row = 0; row < std::min(read.size(), pass[i].size()); ++row) {
                requireEqual(read[row], pass[i][row], "the same row from both");
            }
            require(read.size() == pass[i].size(), "as many rows from both");
        }
    }
}

}  // namespace jmap::fuzz
