/* Prints every table of a JSON file: a complete program on the public headers alone.
 *
 *     cc rows.c -o rows $(pkg-config --cflags --libs qvejmap)
 *     ./rows MODULE_DIRECTORY FILE.json
 *
 * MODULE_DIRECTORY is where qvejmap.so was installed: pkg-config --variable=moduledir qvejmap
 *
 * When memory runs out with the last buffer, records or tables may be missing without a status; the
 * module does not tell.  jmapTotals of qvejmapx.h does, and so does the C++ face.
 */
#include "qvejmap.h"
#include "qvportable.h"

#include <errno.h>
#include <inttypes.h>
#include <string.h>

#include <stdio.h>
#include <stdlib.h>

static int fail(const char* what, QVStatus status) {
    fprintf(stderr, "rows: %s: %s\n", what, qvStatusText(status));
    return 1;
}

/* Columns lie unaligned in the row buffer, so the number is copied out. */
static void printNumber(const char* cell) {
    uint64_t bits;
    double value;
    memcpy(&bits, cell, sizeof bits);
    memcpy(&value, cell, sizeof value);
    if (bits == QVEJMAP_MISSING_BITS) {
        printf(".");
    } else {
        printf("%.17g", value);
    }
}

static void printText(const char* cell, QVStrSize length) {
    while (length > 0 && cell[length - 1] == ' ') {
        --length; /* the padding */
    }
    printf("%.*s", (int)length, cell);
}

static QVStatus printTable(UserJMAP_S* engine, QVEJMAPJsonContexth doc, QVMemPtr map, char* name,
                           QVStrSize nameLen) {
    QVEJMAPReadContexth table;
    QVStatus status = engine->ReadInit(doc, map, name, nameLen, NULL, &table);
    if (status != QV_OK) {
        return status;
    }
    printf("%.*s\n", (int)nameLen, name);
    for (QVStrSize i = 0; i < table->varCount; ++i) {
        printf("%s%.*s", i == 0 ? "  " : " | ", (int)table->varinfo[i].nameLen,
               table->varinfo[i].name);
    }
    printf("\n");
    while ((status = engine->Read(table)) == QV_OK) {
        for (QVStrSize i = 0; i < table->varCount; ++i) {
            const VARIABLEINFO* column = &table->varinfo[i];
            const char* cell = table->obsbuf + column->offset;
            printf("%s", i == 0 ? "  " : " | ");
            if (column->vartype == VARTYPE_NUMERIC) {
                printNumber(cell);
            } else {
                printText(cell, column->length);
            }
        }
        printf("\n");
    }
    (void)engine->ReadTerm(table);
    return status == QV_EOF ? QV_OK : status;
}

static QVStatus printTables(UserJMAP_S* engine, QVEJMAPJsonContexth doc) {
    QVMemPtr map;
    QVStatus status = engine->GetAutoMap(doc, &map);
    for (uint64_t index = 0; status == QV_OK; ++index) {
        char name[40];
        int16_t nameLen = sizeof name;
        status = engine->GetDsName(doc, map, index, name, &nameLen);
        if (status == QV_EOF) {
            return QV_OK; /* the list is over */
        }
        if (status == QV_OK) {
            status = printTable(engine, doc, map, name, nameLen);
        }
    }
    return status;
}

/* Feeds the file in buffers; the last, empty one says that the document is over. */
static QVStatus feed(UserJMAP_S* engine, QVEJMAPJsonContexth doc, FILE* file) {
    static char buffer[65536];
    QVBoolean caching = 0;
    for (;;) {
        const size_t got = fread(buffer, 1, sizeof buffer, file);
        if (ferror(file)) {
            return QV_IO_READ; /* what has come so far must not pass for the document */
        }
        const QVBoolean done = got == 0;
        const QVStatus status =
            engine->JsonInput(doc, buffer, (QVStrSize)got, done, &caching, NULL);
        if (status != QV_OK || done) {
            return status;
        }
    }
}

static int readDocument(UserJMAP_S* engine, const char* path) {
    QVEJMAPJsonInitParms parms;
    memset(&parms, 0, sizeof parms);
    parms.inCEI = U_UTF8_CE;
    parms.ordinalCount = UINT64_MAX; /* ordinals of all levels */

    FILE* file = fopen(path, "rb");
    if (file == NULL) {
        fprintf(stderr, "rows: %s: %s\n", path, strerror(errno));
        return 1;
    }
    QVEJMAPJsonContexth doc;
    QVStatus status = engine->JsonInit(&engine->exth, &parms, &doc, NULL);
    if (status != QV_OK) {
        fclose(file);
        return fail("JsonInit", status);
    }
    status = feed(engine, doc, file);
    fclose(file);
    if (status == JMAP_PARSE) {
        fprintf(stderr, "rows: %s:%" PRId64 ":%" PRId64 ": %s\n", path, doc->e.line, doc->e.col,
                qvStatusText(doc->e.rc));
    } else if (status == QV_OK) {
        status = printTables(engine, doc);
    }
    (void)engine->Term(doc, NULL);
    return status == QV_OK ? 0 : fail(path, status);
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: rows MODULE_DIRECTORY FILE.json\n");
        return 2;
    }
    QVPortableOptions options;
    memset(&options, 0, sizeof options);
    options.structSize = sizeof options;
    options.modulePath = argv[1];
    options.maxDepth = 1000;

    QVHndlp host;
    const QVStatus status = qvPortableStart(&options, &host);
    if (status != QV_OK) {
        return fail("starting the host", status);
    }
    int exitCode = 1;
    UserJMAP_S* engine = (UserJMAP_S*)host->loadExtension(host, U"qvejmap", 7, NULL);
    if (engine == NULL) {
        fprintf(stderr, "rows: no module qvejmap in %s\n", argv[1]);
    } else {
        exitCode = readDocument(engine, argv[2]);
        (void)engine->exth.generic.destroy(&engine->exth.generic);
    }
    (void)qvPortableStop(host);
    return exitCode;
}
