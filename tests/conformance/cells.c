/* Prints all tables of a JSON document, cell by cell, by the operation table alone.
 *
 *     cells MODULE_DIRECTORY FILE.json [MAP]
 *
 * Lines: "T" name; "C" name, one for each column; "R" and its cells, each after a TAB: "." for
 * none, a number, or "x" and the bytes of a text in hexadecimal.
 */
#include "qvejmap.h"
#include "qvportable.h"

#include <string.h>

#include <stdio.h>
#include <stdlib.h>

static void die(const char* what, QVStatus status) {
    fprintf(stderr, "cells: %s: %s\n", what, qvStatusText(status));
    exit(1);
}

static void check(const char* what, QVStatus status) {
    if (status != QV_OK) {
        die(what, status);
    }
}

static char* contents(const char* path, size_t* size) {
    FILE* file = fopen(path, "rb");
    if (file == NULL || fseek(file, 0, SEEK_END) != 0) {
        die(path, QV_IO_READ);
    }
    *size = (size_t)ftell(file);
    rewind(file);
    char* bytes = malloc(*size + 1);
    if (bytes == NULL || fread(bytes, 1, *size, file) != *size) {
        die(path, QV_IO_READ);
    }
    fclose(file);
    return bytes;
}

static void printCell(const VARIABLEINFO* column, const char* cell) {
    if (column->vartype == VARTYPE_NUMERIC) {
        uint64_t bits;
        double value;
        memcpy(&bits, cell, sizeof bits);
        memcpy(&value, cell, sizeof value);
        printf(bits == QVEJMAP_MISSING_BITS ? "\t." : "\t%.17g", value);
        return;
    }
    QVStrSize length = column->length;
    while (length > 0 && cell[length - 1] == ' ') {
        --length; /* the padding */
    }
    printf("\tx");
    for (QVStrSize i = 0; i < length; ++i) {
        printf("%02x", (unsigned char)cell[i]);
    }
}

static void printTable(UserJMAP_S* engine, QVEJMAPJsonContexth doc, QVMemPtr map, char* name,
                       QVStrSize nameLen) {
    QVEJMAPReadContexth table;
    check("ReadInit", engine->ReadInit(doc, map, name, nameLen, NULL, &table));
    printf("T\t%.*s\n", (int)nameLen, name);
    for (QVStrSize i = 0; i < table->varCount; ++i) {
        printf("C\t%.*s\n", (int)table->varinfo[i].nameLen, table->varinfo[i].name);
    }
    QVStatus status;
    while ((status = engine->Read(table)) == QV_OK) {
        printf("R");
        for (QVStrSize i = 0; i < table->varCount; ++i) {
            printCell(&table->varinfo[i], table->obsbuf + table->varinfo[i].offset);
        }
        printf("\n");
    }
    if (status != QV_EOF) {
        die("Read", status);
    }
    check("ReadTerm", engine->ReadTerm(table));
}

static QVMemPtr userMap(UserJMAP_S* engine, QVEJMAPJsonContexth doc, const char* path) {
    size_t size;
    char* text = contents(path, &size);
    QVEJMAPMapContexth parse;
    QVMemPtr map;
    check("MapInit", engine->MapInit(doc, NULL, &parse, NULL));
    check(path, engine->MapInput(parse, text, (QVStrSize)size, 1, NULL));
    check("MapTerm", engine->MapTerm(doc, &parse, NULL));
    INFORMATINFO* informats = NULL;
    check("GetUserMap", engine->GetUserMap(doc, &map, NULL, &informats));
    free(text);
    return map;
}

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        fprintf(stderr, "usage: cells MODULE_DIRECTORY FILE.json [MAP]\n");
        return 2;
    }
    QVPortableOptions options;
    memset(&options, 0, sizeof options);
    options.structSize = sizeof options;
    options.modulePath = argv[1];
    options.maxDepth = 1000;
    QVHndlp host;
    check("the host", qvPortableStart(&options, &host));
    UserJMAP_S* engine = (UserJMAP_S*)host->loadExtension(host, U"qvejmap", 7, NULL);
    if (engine == NULL) {
        die(argv[1], QV_IO_NOTFOUND);
    }
    QVEJMAPJsonInitParms parms;
    memset(&parms, 0, sizeof parms);
    parms.inCEI = U_UTF8_CE;
    parms.ordinalCount = UINT64_MAX;
    QVEJMAPJsonContexth doc;
    check("JsonInit", engine->JsonInit(&engine->exth, &parms, &doc, NULL));
    size_t size;
    char* text = contents(argv[2], &size);
    QVBoolean caching = 0;
    check(argv[2], engine->JsonInput(doc, text, (QVStrSize)size, 1, &caching, NULL));
    QVMemPtr map;
    if (argc == 4) {
        map = userMap(engine, doc, argv[3]);
    } else {
        check("GetAutoMap", engine->GetAutoMap(doc, &map));
    }
    QVStatus status = QV_OK;
    for (uint64_t index = 0; status == QV_OK; ++index) {
        char name[40];
        int16_t nameLen = sizeof name;
        status = engine->GetDsName(doc, map, index, name, &nameLen);
        if (status == QV_OK) {
            printTable(engine, doc, map, name, nameLen);
        }
    }
    check("Term", engine->Term(doc, NULL));
    free(text);
    (void)engine->exth.generic.destroy(&engine->exth.generic);
    check("stop", qvPortableStop(host));
    return status == QV_EOF ? 0 : 1;
}
