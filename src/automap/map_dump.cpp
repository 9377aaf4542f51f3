// Maps as notes in the journal.
//
// Tested by tests/tool/golden/notes.t
#include "map_dump.h"

#include "core/list.h"
#include "core/note.h"
#include "path_parts.h"

namespace jmap {
namespace {

// One line that shows a text.
void noteText(JMAP_PRIVATE* p, const QVChar* fmt, std::string_view text) {
    myLogNote(p, fmt, noteLen(lengthOf(text)), text.data());
}

void dumpColumn(JMAP_PRIVATE* p, const VARINFO& column) {
    const std::string_view name = nameOf(column);
    const std::string_view path = shown(p, pathOf(p, column));
    const int nameLen = noteLen(lengthOf(name));
    const int pathLen = noteLen(lengthOf(path));
    switch (column.type) {
        case VAR_CHAR:
            myLogNote(p, U"    character var [%.*hs] path [%.*hs]  maxlen %ld", nameLen,
                      name.data(), pathLen, path.data(), static_cast<long>(column.length));
            break;
        case VAR_DOUBLE:
            myLogNote(p, U"    numeric   var [%.*hs] path [%.*hs]", nameLen, name.data(), pathLen,
                      path.data());
            break;
        case VAR_ORDINAL:
            myLogNote(p, U"    ordinal   var [%.*hs] path [%.*hs]", nameLen, name.data(), pathLen,
                      path.data());
            break;
        default:
            myLogNote(p, U"    UNKNOWN?  var [%.*hs] path [%.*hs]", nameLen, name.data(), pathLen,
                      path.data());
            break;
    }
}

// The kind line of the long dump.
//   Kept: a placeholder is shown as an ordinal.
const QVChar* kindLine(VARTYPE type) noexcept {
    switch (type) {
        case VAR_CHAR:
            return U"  character  [%.*hs]";
        case VAR_DOUBLE:
            return U"  numeric    [%.*hs]";
        default:
            return U"  ordinal    [%.*hs]";
    }
}

// A format or informat: name, width, decimals.
void noteFormat(JMAP_PRIVATE* p, const QVChar* fmt, std::string_view name, uint64_t width,
                uint64_t decimals) {
    if (!name.empty()) {
        myLogNote(p, fmt, noteLen(lengthOf(name)), name.data(), static_cast<long long>(width),
                  static_cast<long long>(decimals));
    }
}

void dumpColumn2(JMAP_PRIVATE* p, const VARINFO& column) {
    noteText(p, kindLine(column.type), nameOf(column));
    if (column.type == VAR_CHAR) {
        myLogNote(p, U"    maxlen   %lld", static_cast<long long>(column.length));
    }
    noteText(p, U"    path     [%.*hs]", shown(p, pathOf(p, column)));
    const USERVARINFO& user = userPartOf(column);
    if (user.labelLen != 0) {
        noteText(p, U"    label    [%.*hs]", view(user.label, user.labelLen));
    }
    noteFormat(p, U"    format   [%.*hs %lld %lld]", view(user.format, user.formatLen),
               user.formatWidth, user.formatDec);
    noteFormat(p, U"    informat [%.*hs %lld %lld]", view(user.informat, user.informatLen),
               user.informatWidth, user.informatDec);
    if (column.retain) {
        myLogNote(p, U"    RETAIN");
    }
}

}  // namespace

QVStatus dumpMap(JMAP_PRIVATE* p) {
    myLogNote(p, U"MAP DUMP");
    for (const DSINFO& ds : each(p->automap->dshead)) {
        noteText(p, U"  dataset [%.*hs]", nameOf(ds));
        for (const VARINFO& column : each(ds.vhead)) {
            dumpColumn(p, column);
        }
    }
    myLogNote(p, U"MAP DUMP END");
    return QV_OK;
}

QVStatus dumpMap2(JMAP_PRIVATE* p, MAP* m, const char* who) {
    myLogNote(p, U"%hs MAP DUMP", who);
    for (const DSINFO& ds : each(m->dshead)) {
        const std::string_view name = nameOf(ds);
        // Kept: a table without columns is noted with "variable" in the singular.
        myLogNote(p, U" dataset     [%.*hs] %ld variable%hs", noteLen(lengthOf(name)), name.data(),
                  static_cast<long>(ds.varcount), ds.varcount >= 2 ? "s" : "");
        for (const VARINFO& column : each(ds.vhead)) {
            dumpColumn2(p, column);
        }
        myLogNote(p, U"");
        noteText(p, U" tablePath   [%.*hs]", shown(p, tablePathOf(p, ds)));
        myLogNote(p, U"");
    }
    myLogNote(p, U"%hs MAP DUMP END", who);
    return QV_OK;
}

const QVChar* privateTypeToString(VARTYPE type) {
    switch (type) {
        case VAR_ORDINAL:
            return U"ORDINAL";
        case VAR_DOUBLE:
            return U"DOUBLE";
        case VAR_CHAR:
            return U"CHAR";
        default:
            return U"UNKNOWN";
    }
}

const QVChar* usertypeToString(VARIABLETYPE type) {
    switch (type) {
        case VARTYPE_CHARACTER:
            return U"CHARACTER";
        case VARTYPE_NUMERIC:
            return U"NUMERIC";
        default:
            return U"UNKNOWN";
    }
}

}  // namespace jmap
