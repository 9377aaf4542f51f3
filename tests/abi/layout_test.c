/* What a compiled caller relies on: sizes, offsets and order of the public records, and the head of
 * the operation table.  Who changes a record of qvejmapx.h raises its version.
 *
 * Prints what fails; the exit code is 0 when nothing does.
 */
#include "qvejmapx.h"
#include "qvportable.h"

#include <string.h>

#include <stdio.h>

static int failures = 0;

#define CHECK(condition) check((condition), #condition, __LINE__)

static void check(int holds, const char* what, int line) {
    if (!holds) {
        printf("layout_test.c:%d: not so: %s\n", line, what);
        ++failures;
    }
}

typedef struct Member {
    const char* name;
    size_t offset, expected;
} Member;

/* The size of a record, and the offset of each of its members. */
#define LAYOUT(type, bytes, ...)                                          \
    do {                                                                  \
        typedef type Record;                                              \
        const Member members[] = {__VA_ARGS__};                           \
        CHECK(sizeof(Record) == (bytes));                                 \
        checkMembers(#type, members, sizeof members / sizeof members[0]); \
    } while (0)
#define AT(member, place) \
    { #member, offsetof(Record, member), place }
#define SLOT(member, index) AT(member, 64 + 8 * (index))

static void checkMembers(const char* type, const Member* members, size_t count) {
    for (const Member* m = members; m < members + count; ++m) {
        if (m->offset != m->expected) {
            printf("%s.%s is at %zu, expected %zu\n", type, m->name, m->offset, m->expected);
            ++failures;
        }
    }
}

static void checkLayouts(void) {
    LAYOUT(QVGeneric, 16, AT(tag, 0), AT(destroy, 8));
    LAYOUT(QVExtension, 64, AT(getReqVersion, 16), AT(getVersion, 24), AT(hndl, 32),
           AT(realDestroy, 40), AT(findFunction, 48), AT(handle, 56));
    LAYOUT(UserJMAP_S, 200, AT(exth, 0), SLOT(JsonInit, 0), SLOT(JsonInput, 1),
           SLOT(GetAutoMapBuf, 2), SLOT(GetAutoMapBufFree, 3), SLOT(ReadInit, 4), SLOT(Read, 5),
           SLOT(ReadReset, 6), SLOT(ReadTerm, 7), SLOT(GetDsName, 8), SLOT(MapInit, 9),
           SLOT(MapInput, 10), SLOT(MapTerm, 11), SLOT(GetAutoMap, 12), SLOT(GetUserMap, 13),
           SLOT(GetAlldataInfo, 14), SLOT(MemberExist, 15), SLOT(Term, 16));
    LAYOUT(QVEJMAPJsonInitParms, 136, AT(inCEI, 0), AT(debugString, 8), AT(debugStringLen, 16),
           AT(desc, 24), AT(descLen, 48), AT(flags, 56), AT(tempName, 64), AT(tempNameLen, 72),
           AT(rlmemSize, 80), AT(rlmemLeavePercent, 88), AT(memLeave, 96), AT(compress, 104),
           AT(ordinalCount, 112), AT(alldataName, 120), AT(alldataNameLen, 128));
    LAYOUT(QVEJMAPMapInitParms, 40, AT(inCEI, 0), AT(desc, 4), AT(descLen, 24), AT(flags, 32));
    LAYOUT(QVEJMAPReadInitParms, 8, AT(flags, 0));
    LAYOUT(ERRORINFO, 120, AT(rc, 0), AT(line, 8), AT(col, 16), AT(badstring, 24),
           AT(badstringLen, 56), AT(novardsname, 64), AT(novardsnameLen, 96), AT(novarCount, 104),
           AT(ordNoretain, 112));
    LAYOUT(struct QVEJMAPJsonContext, 136, AT(exth, 0), AT(p, 8), AT(e, 16));
    LAYOUT(struct QVEJMAPMapContext, 136, AT(exth, 0), AT(p, 8), AT(e, 16));
    LAYOUT(struct qvejmapReadContext, 88, AT(exth, 0), AT(obsbuf, 8), AT(obsbufLen, 16),
           AT(varCount, 24), AT(varinfo, 32), AT(p, 40), AT(dsname, 48), AT(dsnameLen, 80));
    LAYOUT(VARIABLEINFO, 432, AT(name, 0), AT(nameLen, 8), AT(label, 16), AT(labelLen, 272),
           AT(vartype, 280), AT(length, 288), AT(offset, 296), AT(informat, 304),
           AT(informatLen, 312), AT(informatWidth, 320), AT(informatDec, 328),
           AT(informatNoError, 336), AT(rawdata, 344), AT(rawdataLen, 352), AT(rawdataAlloc, 360),
           AT(informatBad, 368), AT(format, 376), AT(formatLen, 384), AT(formatWidth, 392),
           AT(formatDec, 400), AT(truncation, 408), AT(currentLength, 416), AT(badNumData, 424),
           AT(badNumMsgOutput, 425));
    LAYOUT(INFORMATINFO, 72, AT(next, 0), AT(variable, 8), AT(variableLen, 16), AT(informat, 24),
           AT(informatLen, 32), AT(informatWidth, 40), AT(informatNoError, 48), AT(length, 56),
           AT(lengthFromAutomap, 64));
    LAYOUT(JSNParseCB, 64, AT(arrayStart, 0), AT(arrayEnd, 8), AT(objectStart, 16),
           AT(objectEnd, 24), AT(nullx, 32), AT(booleanVal, 40), AT(number, 48), AT(string, 56));
    CHECK(VARTYPE_CHARACTER == 0 && VARTYPE_NUMERIC == 1 && sizeof(VARIABLETYPE) == 4);
    CHECK(QV_NOMEM == (QVStatus)0x803FC002u && QV_BADPARMS == (QVStatus)0x803FC003u);
    CHECK(QV_EOF == (QVStatus)0x803FC064u && QV_NOTNUM == (QVStatus)0x803FE810u);
    CHECK(QV_NEEDMORE == (QVStatus)0x85FFC80Du);
    CHECK(JMAP_NOTABLE == -10 && JMAP_PARSE == -11 && JMAP_INCOMPLETE == -12);
}

static void checkToolLayouts(void) {
    CHECK(QVEJMAPX_VERSION == 1 && jmapVersion() == QVEJMAPX_VERSION);
    LAYOUT(JMAPTableInfo, 32, AT(name, 0), AT(nameLen, 8), AT(tablePathLen, 16),
           AT(columnCount, 24));
    LAYOUT(JMAPFormat, 32, AT(name, 0), AT(nameLen, 8), AT(width, 16), AT(decimals, 24));
    LAYOUT(JMAPColumnInfo, 144, AT(name, 0), AT(nameLen, 8), AT(pathLen, 16), AT(type, 24),
           AT(length, 32), AT(kinds, 40), AT(label, 48), AT(labelLen, 56), AT(format, 64),
           AT(informat, 96), AT(informatNoError, 128), AT(retain, 129), AT(noretain, 130),
           AT(lengthFromAutomap, 131), AT(truncation, 132), AT(currentLength, 136));
    LAYOUT(JMAPReadObserver, 24, AT(arg, 0), AT(notNumber, 8), AT(raw, 16));
    LAYOUT(JMAPRecord, 56, AT(kind, 0), AT(labelCount, 4), AT(path, 8), AT(pathLen, 16),
           AT(value, 24), AT(valueLen, 32), AT(bytes, 40), AT(bytesLen, 48));
    LAYOUT(JMAPPassCell, 24, AT(kind, 0), AT(fresh, 4), AT(strayed, 5), AT(text, 8),
           AT(textLen, 16), AT(count, 16));
    LAYOUT(JMAPPassItem, 64, AT(kind, 0), AT(table, 8), AT(cells, 16), AT(cellCount, 24),
           AT(textCount, 32), AT(column, 40), AT(text, 48), AT(textLen, 56));
    LAYOUT(JMAPPassColumn, 40, AT(values, 0), AT(overwritten, 8), AT(firstOverwritten, 16),
           AT(strayed, 24), AT(below, 32));
    LAYOUT(JMAPPathKind, 24, AT(count, 0), AT(line, 8), AT(column, 16));
    LAYOUT(JMAPPathInfo, 240, AT(pathLen, 0), AT(count, 8), AT(type, 16), AT(labels, 20),
           AT(maxValueLen, 24), AT(longestLine, 32), AT(longestColumn, 40), AT(kinds, 48),
           AT(inexact, 216));
    LAYOUT(JMAPGrowth, 32, AT(paths, 0), AT(recordBytes, 8), AT(spilledBytes, 16), AT(tables, 24));
    LAYOUT(JMAPGuard, 24, AT(arg, 0), AT(check, 8), AT(available, 16));
    LAYOUT(JMAPTotals, 88, AT(records, 0), AT(values, 8), AT(recordBytes, 16), AT(storedBytes, 24),
           AT(blocks, 32), AT(blocksOnDisk, 40), AT(unstoredBytes, 48), AT(unstoredStatus, 56),
           AT(droppedTables, 64), AT(lostLookups, 72), AT(labelsSlip, 80));
    CHECK(JMAP_ORDINAL == 0 && JMAP_NUMERIC == 1 && JMAP_CHARACTER == 2);
    CHECK(JMAP_KIND_NOVAL == 1 && JMAP_KIND_NUMBER == 2 && JMAP_KIND_STRING == 3);
    CHECK(JMAP_KIND_NULL == 4 && JMAP_KIND_BOOLEAN == 5 && JMAP_KIND_FAKE_VARIABLE == 6);
    CHECK(JMAP_CELL_MISSING == 0 && JMAP_CELL_COUNT == 7 && JMAP_CELL_CUT == 8);
    CHECK(JMAP_PASS_ROW == 1 && JMAP_PASS_NOT_NUMBER == 2);
}

static void checkTable(UserJMAP_S* engine) {
    const QVExtension* head = &engine->exth;
    CHECK(memcmp(engine, "nevo", 4) == 0);
    CHECK(head->generic.reserved == 0 && head->generic.destroy == NULL);
    CHECK(head->hndl == NULL && head->findFunction == NULL && head->handle == NULL);
    CHECK(head->realDestroy != NULL);

    size_t a = 0, b = 0, c = 0;
    CHECK(head->getReqVersion(NULL, &a, &b, &c) == QV_OK && a == 7 && b == 1 && c == 1);
    CHECK(head->getVersion(NULL, &a, &b, &c) == QV_OK && a == 1 && b == 0 && c == 0);
}

int main(void) {
    QVPortableOptions options = {sizeof options, NULL, NULL, NULL, NULL, 1, 0};
    QVHndlp host = NULL;
    CHECK(qvPortableStart(&options, &host) == QV_OK);
    UserJMAP_S* engine = (UserJMAP_S*)qvejmap(host, NULL);
    checkLayouts();
    checkToolLayouts();
    checkTable(engine);
    CHECK(engine->exth.realDestroy(&engine->exth) == QV_OK);
    CHECK(qvPortableStop(host) == QV_OK);
    return failures == 0 ? 0 : 1;
}
