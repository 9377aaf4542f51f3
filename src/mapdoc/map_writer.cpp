// The automatic map as a JSON document.
//
// Tested by tests/mapdoc/map_writer_test.cpp
#include "map_writer.h"

#include "automap/path_parts.h"
#include "core/guard.h"
#include "core/list.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "scan/path_text.h"

namespace jmap {
namespace {

// The `digits` of the writer's number operation: as many as are needed.
constexpr int32_t kIntegerDigits = 10;
constexpr int32_t kIntegerDecimals = 0;

// A member name, or a text value.
QVStatus writeText(JSNWriterh writer, std::string_view text) {
    return writer->string(writer, text.data(), lengthOf(text));
}

QVStatus writeMember(JSNWriterh writer, std::string_view name, std::string_view text) {
    QV_TRY(writeText(writer, name));
    return writeText(writer, text);
}

QVStatus openMember(JSNWriterh writer, std::string_view name, int32_t kind) {
    QV_TRY(writeText(writer, name));
    return writer->open(writer, kind);
}

// A path with slashes; "" for none.  It may be in `pathScratch`.
QVStatus writePathMember(JMAP_PRIVATE* p, std::string_view name, std::string_view path,
                         QVStrSize pathLen) {
    if (pathLen == 0) {
        return writeMember(p->writer, name, "");
    }
    if (path.data() == nullptr) {
        return QV_NOMEM;
    }
    const char* slashed = sepToSlashes(p, path.data(), lengthOf(path), &p->sepLongest, &p->sepbuf);
    if (slashed == nullptr) {
        return QV_NOMEM;
    }
    return writeMember(p->writer, name, {slashed, path.size()});
}

// Of any other type the key gets no value, and the next text would become it.  No column of an
// automatic map has another type.
QVStatus writeType(JSNWriterh writer, VARTYPE type) {
    QV_TRY(writeText(writer, "TYPE"));
    switch (type) {
        case VAR_ORDINAL:
            return writeText(writer, "ORDINAL");
        case VAR_DOUBLE:
            return writeText(writer, "NUMERIC");
        case VAR_CHAR:
            return writeText(writer, "CHARACTER");
        default:
            return QV_OK;
    }
}

QVStatus writeColumn(JMAP_PRIVATE* p, const VARINFO& column) {
    JSNWriterh writer = p->writer;
    QV_TRY(writer->open(writer, JSN_OPEN_OBJECT));
    QV_TRY(writeMember(writer, "NAME", view(column.name, column.nameLen)));
    QV_TRY(writeType(writer, column.type));
    QV_TRY(writePathMember(p, "PATH", pathOf(p, column), column.pathLen));
    if (column.type == VAR_CHAR) {
        QV_TRY(writeText(writer, "CURRENT_LENGTH"));
        QV_TRY(writer->dbl(writer, static_cast<double>(column.length), kIntegerDigits,
                           kIntegerDecimals));
    }
    return writer->close(writer);
}

QVStatus writeTable(JMAP_PRIVATE* p, const DSINFO& ds) {
    JSNWriterh writer = p->writer;
    QV_TRY(writer->open(writer, JSN_OPEN_OBJECT));
    QV_TRY(writeMember(writer, "DSNAME", view(ds.name, ds.nameLen)));
    QV_TRY(writePathMember(p, "TABLEPATH", tablePathOf(p, ds), ds.tablePathLen));
    if (ds.vhead != nullptr) {
        QV_TRY(openMember(writer, "VARIABLES", JSN_OPEN_ARRAY));
        for (const VARINFO& column : each(ds.vhead)) {
            QV_TRY(writeColumn(p, column));
        }
        QV_TRY(writer->close(writer));
    }
    return writer->close(writer);
}

QVStatus writeMap(JMAP_PRIVATE* p, const MAP* map) {
    JSNWriterh writer = p->writer;
    QV_TRY(writer->open(writer, JSN_OPEN_OBJECT));
    QV_TRY(openMember(writer, "DATASETS", JSN_OPEN_ARRAY));
    if (map != nullptr) {
        uint64_t columns = 0;  // since the guard was asked
        for (const DSINFO& ds : each(map->dshead)) {
            columns += ds.varcount + 1;
            if (columns >= kColumnsBetween) {
                QV_TRY(askGuardOfMemory(p, 0));
                columns = 0;
            }
            QV_TRY(writeTable(p, ds));
        }
    }
    QV_TRY(writer->close(writer));
    return writer->close(writer);
}

JSNWriterh newWriter(JMAP_PRIVATE* p, QVJnlh jnl) {
    constexpr std::string_view kDesc = "jmap map writer";
    JSNWriterParms parms = {};
    parms.inCei = p->inCei;
    parms.outCei = p->inCei;
    parms.flags = JSN_WRITER_FLAGS;
    parms.jnl = jnl;
    parms.desc = kDesc.data();
    parms.descLen = lengthOf(kDesc);
    return p->jsonh->createWriter(p->jsonh, &parms);
}

}  // namespace

// Kept: an earlier writer is not ended.  Without GetAutoMapBufFree between two calls it lives until
// the host stops.
QVStatus GetAutoMapBuf(QVEJMAPJsonContexth inh, char** buf, QVStrSize* bufLen, QVJnlh jnl) {
    JMAP_PRIVATE* p = contextOf(inh);
    p->writer = newWriter(p, jnl);
    if (p->writer == nullptr) {
        return QV_NOMEM;
    }
    QV_TRY(writeMap(p, p->automap));
    return p->writer->getBuffer(p->writer, buf, bufLen);
}

QVStatus GetAutoMapBufFree(QVEJMAPJsonContexth inh) {
    return destroyHandle(contextOf(inh)->writer);
}

}  // namespace jmap
