// The actions of the transitions: they make tables and columns and store their properties.
//
// Tested by tests/mapdoc/map_reader_test.cpp
#include "map_values.h"

#include "core/list.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "map_states.h"
#include "scan/path_text.h"

#include <cstring>

namespace jmap {
namespace {

constexpr std::size_t kMaxDsNameLen = 32;  // DSINFO::name also has room for a suffix

DSINFO& lastTable(JMAP_PRIVATE* p) noexcept {
    return *p->usermap->dstail;
}

VARINFO& lastColumn(JMAP_PRIVATE* p) noexcept {
    return *lastTable(p).vtail;
}

void noteText(JMAP_PRIVATE* p, const char* what, std::string_view text) {
    if (p->debugValidateMap) [[unlikely]] {
        myLogNote(p, U"          %hs <- %.*hs", what, noteLen(lengthOf(text)), text.data());
    }
}

// Kept: a negative number is stored as the unsigned number with its bits.  A negative length is
// thus a large one, which ReadInit caps.
QVStatus setNumber(JMAP_PRIVATE* p, const char* what, uint64_t& to, int64_t number) {
    to = static_cast<uint64_t>(number);
    if (p->debugValidateMap) [[unlikely]] {
        myLogNote(p, U"          %hs <- %lld", what, static_cast<long long>(number));
    }
    return QV_OK;
}

// Stores what fits of a text.
template <std::size_t kSize>
QVStatus setCut(JMAP_PRIVATE* p, const char* what, char (&to)[kSize], QVStrSize& toLen,
                std::string_view text) {
    const std::string_view kept = firstOf(text, kSize);
    if (!kept.empty()) {
        std::memcpy(to, kept.data(), kept.size());
    }
    toLen = lengthOf(kept);
    noteText(p, what, kept);
    return QV_OK;
}

// Replaces a text by a copy of `text`, in a piece that has `spare` bytes more.
QVStatus setCopy(JMAP_PRIVATE* p, const char* what, char*& to, QVStrSize& toLen,
                 std::string_view text, QVStrSize spare = 0) {
    char* copy = poolBytes(p->cpool, lengthOf(text) + spare);
    if (copy == nullptr) {
        return QV_NOMEM;
    }
    if (!text.empty()) {
        std::memcpy(copy, text.data(), text.size());
    }
    (void)poolFree(p->cpool, to);  // replaced even if this fails
    to = copy;
    toLen = lengthOf(text);
    noteText(p, what, text);
    return QV_OK;
}

[[nodiscard]] bool isWord(std::string_view text, std::string_view word) noexcept {
    return charNormCompare(text.data(), lengthOf(text), word.data(), lengthOf(word)) != 0;
}

}  // namespace

QVStatus reject(JMAP_PRIVATE* p, QVStatus code) {
    p->vrc = code;
    return code;
}

QVStatus unknownKey(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    return reject(p, kStates[p->vstate].problem);
}

// An earlier user map stays in the document pool, so that its tables can still be read.
QVStatus newUserMap(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    auto* map = poolNew<MAP>(p->cpool);
    if (map == nullptr) {
        return QV_NOMEM;
    }
    map->mtype = USER_MAP;
    p->usermap = map;
    return QV_OK;
}

// Kept: only here missing memory has the status JMAP_MAP_NOMEM; MapInput gives it in ERRORINFO, and
// callers know it.
QVStatus newTable(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    auto* ds = poolNew<DSINFO>(p->cpool);
    if (ds == nullptr) {
        return JMAP_MAP_NOMEM;
    }
    append(p->usermap->dshead, p->usermap->dstail, ds);
    return QV_OK;
}

QVStatus newColumn(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    struct USERCOLUMN {
        VARINFO column;  // without a TYPE it stays an ordinal
        USERVARINFO user;
    };
    auto* made = poolNew<USERCOLUMN>(p->cpool);
    if (made == nullptr) {
        return QV_NOMEM;
    }
    VARINFO* column = &made->column;
    column->user = &made->user;
    DSINFO& ds = lastTable(p);
    append(ds.vhead, ds.vtail, column);
    ds.varcount += 1;
    return QV_OK;
}

QVStatus endColumn(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    const VARINFO& column = lastColumn(p);
    if (column.type == VAR_ORDINAL && column.noretain) {
        p->ordNoretain = true;
    }
    return QV_OK;
}

QVStatus endTable(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    const DSINFO& ds = lastTable(p);
    if (ds.nameLen == 0) {
        return reject(p, JMAP_MAP_NONAME);
    }
    if (ds.tablePath == nullptr) {  // an empty one has been given
        return reject(p, JMAP_MAP_NOPATH);
    }
    if (ds.vhead == nullptr) {
        std::memcpy(p->novardsname, ds.name, static_cast<std::size_t>(ds.nameLen));
        p->novardsnameLen = ds.nameLen;
        p->novarCount += 1;
    }
    return QV_OK;
}

QVStatus endTables(JMAP_PRIVATE* p, const TOKEN& /*token*/) {
    return p->usermap->dshead == nullptr ? reject(p, JMAP_MAP_EMPTY) : QV_OK;
}

QVStatus setDsName(JMAP_PRIVATE* p, const TOKEN& token) {
    DSINFO& ds = lastTable(p);
    return setCut(p, "DSNAME", ds.name, ds.nameLen, firstOf(token.text, kMaxDsNameLen));
}

QVStatus setTablePath(JMAP_PRIVATE* p, const TOKEN& token) {
    DSINFO& ds = lastTable(p);
    QV_TRY(setCopy(p, "TABLEPATH", ds.tablePath, ds.tablePathLen, token.text, 1));
    slashToSep(p, ds.tablePath, ds.tablePathLen);
    return QV_OK;
}

QVStatus setName(JMAP_PRIVATE* p, const TOKEN& token) {
    VARINFO& column = lastColumn(p);
    return setCopy(p, "NAME", column.name, column.nameLen, token.text);
}

QVStatus setType(JMAP_PRIVATE* p, const TOKEN& token) {
    constexpr struct {
        std::string_view word;
        VARTYPE type;
    } kTypes[] = {{"CHARACTER", VAR_CHAR}, {"NUMERIC", VAR_DOUBLE}, {"ORDINAL", VAR_ORDINAL}};
    for (const auto& [word, type] : kTypes) {
        if (isWord(token.text, word)) {
            lastColumn(p).type = type;
            noteText(p, "TYPE", word);
            return QV_OK;
        }
    }
    return reject(p, JMAP_MAP_TYPE);
}

QVStatus setPath(JMAP_PRIVATE* p, const TOKEN& token) {
    VARINFO& column = lastColumn(p);
    QV_TRY(setCopy(p, "PATH", column.path, column.pathLen, token.text));
    slashToSep(p, column.path, column.pathLen);
    return QV_OK;
}

QVStatus setLength(JMAP_PRIVATE* p, const TOKEN& token) {
    return setNumber(p, "LENGTH", lastColumn(p).length, token.number);
}

QVStatus setFormat(JMAP_PRIVATE* p, const TOKEN& token) {
    VARINFO& column = lastColumn(p);
    column.user->formatWidth = 0;
    column.user->formatDec = 0;
    return setCut(p, "FORMAT", column.user->format, column.user->formatLen, token.text);
}

QVStatus setFormatWidth(JMAP_PRIVATE* p, const TOKEN& token) {
    return setNumber(p, "FORMAT width", lastColumn(p).user->formatWidth, token.number);
}

QVStatus setFormatDec(JMAP_PRIVATE* p, const TOKEN& token) {
    return setNumber(p, "FORMAT decimals", lastColumn(p).user->formatDec, token.number);
}

// Kept: a second INFORMAT without "?" leaves the flag of the first.
QVStatus setInformat(JMAP_PRIVATE* p, const TOKEN& token) {
    VARINFO& column = lastColumn(p);
    const bool quiet = token.text.starts_with('?');
    if (quiet) {
        column.user->informatNoError = true;
    }
    column.user->informatWidth = 0;
    column.user->informatDec = 0;
    return setCut(p, "INFORMAT", column.user->informat, column.user->informatLen,
                  after(token.text, quiet ? 1 : 0));
}

QVStatus setInformatWidth(JMAP_PRIVATE* p, const TOKEN& token) {
    return setNumber(p, "INFORMAT width", lastColumn(p).user->informatWidth, token.number);
}

QVStatus setInformatDec(JMAP_PRIVATE* p, const TOKEN& token) {
    return setNumber(p, "INFORMAT decimals", lastColumn(p).user->informatDec, token.number);
}

QVStatus setLabel(JMAP_PRIVATE* p, const TOKEN& token) {
    VARINFO& column = lastColumn(p);
    return setCopy(p, "LABEL", column.user->label, column.user->labelLen,
                   firstOf(token.text, sizeof VARIABLEINFO::label));
}

QVStatus setOption(JMAP_PRIVATE* p, const TOKEN& token) {
    const bool noretain = isWord(token.text, "NORETAIN");
    if (!noretain && !isWord(token.text, "RETAIN")) {
        return reject(p, JMAP_MAP_OPTION);
    }
    VARINFO& column = lastColumn(p);
    column.retain = !noretain;
    column.noretain = noretain;
    noteText(p, "OPTION", noretain ? "NORETAIN" : "RETAIN");
    return QV_OK;
}

}  // namespace jmap
