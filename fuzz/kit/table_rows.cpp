#include "kit/table_rows.h"

#include "kit/require.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

namespace jmap::fuzz {
namespace {

constexpr uint64_t kLongestCell = 32767;

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
    return column.informat.nameLen != 0 && column.type != JMAP_ORDINAL;
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
        *static_cast<std::string*>(arg) += noNumber(column, textOf(text, textLen));
    };
    observer.raw = [](void*, QVStrSize, int32_t, QVStatus status) {
        require(status == QV_OK, "a raw text is kept");
    };
    jmapObserve(open, &observer);
    Rows rows;
    QVStatus rc = QV_OK;
    while ((rc = engine->Read(open)) == QV_OK) {
        begun += textOf(open->obsbuf, open->obsbufLen);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const VARIABLEINFO& cell = open->varinfo[i];
            begun += "|";
            begun += isRaw(columns[i]) ? textOf(cell.rawdata, cell.rawdataLen) : "";
        }
        rows.push_back(std::move(begun));
        begun.clear();
    }
    require(rc == QV_EOF, "every row can be read");
    rows.push_back(std::move(begun));
    return rows;
}

// What Read puts into its buffer for a cell of a pass.
std::string bufferOf(const Document& document, const JMAPColumnInfo& column,
                     const JMAPPassCell& cell) {
    const bool text = cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
    require(!text || column.type != JMAP_ORDINAL, "an ordinal has no text");
    if (column.type == JMAP_CHARACTER) {
        const bool blank = !text || cell.kind == JMAP_KIND_NULL || isRaw(column);
        std::string bytes(blank ? std::string_view() : textOf(cell.text, cell.textLen));
        const uint64_t length = std::min(column.length, kLongestCell);
        bytes.resize(static_cast<std::size_t>(length), ' ');
        return bytes;
    }
    auto number = std::bit_cast<double>(uint64_t{QVEJMAP_MISSING_BITS});
    if (cell.kind == JMAP_CELL_COUNT) {
        number = static_cast<double>(cell.count);
    } else if (text && !isRaw(column)) {
        (void)jmapToNumber(document.handle, cell.text, cell.textLen, &number);  // 0 for no number
    }
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

}  // namespace

Rows rowsOfRead(const Document& document, JMAPTableh table, uint64_t flags) {
    UserJMAP_S* const engine = document.engine();
    const std::vector<JMAPColumnInfo> columns = columnsOf(table);
    QVEJMAPReadInitParms rip = {flags};
    QVEJMAPReadContexth open = nullptr;
    require(jmapReadTable(document.handle, table, &rip, &open) == QV_OK, "a table opens");
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

std::vector<Rows> rowsOfPass(const Document& document, const std::vector<JMAPTableh>& tables,
                             uint64_t flags) {
    std::vector<Rows> rows(tables.size());
    Rows begun(tables.size());
    std::vector<std::vector<JMAPColumnInfo>> columns;
    std::ranges::transform(tables, std::back_inserter(columns), columnsOf);
    JMAPPassh pass = nullptr;
    require(jmapPassOpen(document.handle, tables.data(), static_cast<QVStrSize>(tables.size()),
                         flags, &pass) == QV_OK,
            "a pass opens");
    JMAPPassItem item{};
    QVStatus rc = QV_OK;
    while ((rc = jmapPassNext(pass, &item)) == QV_OK) {
        const auto table = static_cast<std::size_t>(item.table);
        std::string& row = begun.at(table);
        require(item.cellCount == static_cast<QVStrSize>(columns[table].size()),
                "a row has a cell for each column");
        if (item.kind != JMAP_PASS_ROW) {
            row += noNumber(item.column, textOf(item.text, item.textLen));
            continue;
        }
        std::string raws;
        for (std::size_t i = 0; i < columns[table].size(); ++i) {
            const JMAPColumnInfo& column = columns[table][i];
            const JMAPPassCell& cell = item.cells[i];
            row += bufferOf(document, column, cell);
            raws += "|";
            raws += isRaw(column) && cell.kind != JMAP_CELL_MISSING
                        ? textOf(cell.text, cell.textLen)
                        : "";
        }
        rows[table].push_back(std::exchange(row, {}) + raws);
    }
    require(rc == QV_EOF, "every row can be made");
    require(jmapPassClose(pass) == QV_OK, "a pass closes");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].push_back(std::move(begun[i]));
    }
    return rows;
}

}  // namespace jmap::fuzz
