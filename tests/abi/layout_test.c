/* What a compiled caller relies on: sizes, offsets and order of the public records, and the
 * behaviour of entry point, table and `caching` as a plain C program sees it.
 *
 * Prints what fails; the exit code is 0 when nothing does.
 */
#include "qvejmap.h"
#include "qvportable.h"

#include <string.h>
#include <uchar.h>

#include <stdio.h>

static int failures = 0;

#define CHECK(condition) check((condition), #condition, __LINE__)

static void check(int holds, const char* what, int line) {
    if (!holds) {
        printf("layout_test.c:%d: not so: %s\n", line, what);
        ++failures;
    }
}

typedef struct Layout {
    const char* what;
    size_t found;
    size_t expected;
} Layout;

#define SIZE(type, bytes) \
    { "sizeof(" #type ")", sizeof(type), bytes }
#define AT(type, member, offset) \
    { #type "." #member, offsetof(type, member), offset }
#define SLOT(member, index) AT(UserJMAP_S, member, 64 + 8 * (index))
#define LAYOUT(...)                            \
    checkLayout((const Layout[]){__VA_ARGS__}, \
                sizeof((const Layout[]){__VA_ARGS__}) / sizeof(Layout))

static void checkLayout(const Layout* layout, size_t count) {
    for (const Layout* l = layout; l < layout + count; ++l) {
        if (l->found != l->expected) {
            printf("%s is %zu, expected %zu\n", l->what, l->found, l->expected);
            ++failures;
        }
    }
}

typedef QVEJMAPJsonInitParms JsonInitParms;
typedef QVEJMAPMapInitParms MapInitParms;
typedef struct QVEJMAPJsonContext JsonContext;
typedef struct QVEJMAPMapContext MapContext;
typedef struct qvejmapReadContext ReadContext;

static void checkLayouts(void) {
    LAYOUT(AT(QVGeneric, tag, 0), AT(QVGeneric, destroy, 8), SIZE(QVGeneric, 16));
    LAYOUT(AT(QVExtension, getReqVersion, 16), AT(QVExtension, getVersion, 24),
           AT(QVExtension, hndl, 32), AT(QVExtension, realDestroy, 40),
           AT(QVExtension, findFunction, 48), AT(QVExtension, handle, 56), SIZE(QVExtension, 64));
    LAYOUT(AT(UserJMAP_S, exth, 0), SLOT(JsonInit, 0), SLOT(JsonInput, 1), SLOT(GetAutoMapBuf, 2),
           SLOT(GetAutoMapBufFree, 3), SLOT(ReadInit, 4), SLOT(Read, 5), SLOT(ReadReset, 6),
           SLOT(ReadTerm, 7), SLOT(GetDsName, 8), SLOT(MapInit, 9), SLOT(MapInput, 10),
           SLOT(MapTerm, 11), SLOT(GetAutoMap, 12), SLOT(GetUserMap, 13), SLOT(GetAlldataInfo, 14),
           SLOT(MemberExist, 15), SLOT(Term, 16), SIZE(UserJMAP_S, 200));
    LAYOUT(AT(JsonInitParms, inCEI, 0), AT(JsonInitParms, debugString, 8),
           AT(JsonInitParms, debugStringLen, 16), AT(JsonInitParms, desc, 24),
           AT(JsonInitParms, descLen, 48), AT(JsonInitParms, flags, 56),
           AT(JsonInitParms, tempName, 64), AT(JsonInitParms, tempNameLen, 72),
           AT(JsonInitParms, rlmemSize, 80), AT(JsonInitParms, rlmemLeavePercent, 88),
           AT(JsonInitParms, memLeave, 96), AT(JsonInitParms, compress, 104),
           AT(JsonInitParms, ordinalCount, 112), AT(JsonInitParms, alldataName, 120),
           AT(JsonInitParms, alldataNameLen, 128), SIZE(JsonInitParms, 136));
    LAYOUT(AT(MapInitParms, inCEI, 0), AT(MapInitParms, desc, 4), AT(MapInitParms, descLen, 24),
           AT(MapInitParms, flags, 32), SIZE(MapInitParms, 40));
    LAYOUT(AT(QVEJMAPReadInitParms, flags, 0), SIZE(QVEJMAPReadInitParms, 8));
    LAYOUT(AT(ERRORINFO, rc, 0), AT(ERRORINFO, line, 8), AT(ERRORINFO, col, 16),
           AT(ERRORINFO, badstring, 24), AT(ERRORINFO, badstringLen, 56),
           AT(ERRORINFO, novardsname, 64), AT(ERRORINFO, novardsnameLen, 96),
           AT(ERRORINFO, novarCount, 104), AT(ERRORINFO, ordNoretain, 112), SIZE(ERRORINFO, 120));
    LAYOUT(AT(JsonContext, exth, 0), AT(JsonContext, p, 8), AT(JsonContext, e, 16),
           SIZE(JsonContext, 136));
    LAYOUT(AT(MapContext, exth, 0), AT(MapContext, p, 8), AT(MapContext, e, 16),
           SIZE(MapContext, 136));
    LAYOUT(AT(ReadContext, exth, 0), AT(ReadContext, obsbuf, 8), AT(ReadContext, obsbufLen, 16),
           AT(ReadContext, varCount, 24), AT(ReadContext, varinfo, 32), AT(ReadContext, p, 40),
           AT(ReadContext, dsname, 48), AT(ReadContext, dsnameLen, 80), SIZE(ReadContext, 88));
    LAYOUT(AT(VARIABLEINFO, name, 0), AT(VARIABLEINFO, nameLen, 8), AT(VARIABLEINFO, label, 16),
           AT(VARIABLEINFO, labelLen, 272), AT(VARIABLEINFO, vartype, 280),
           AT(VARIABLEINFO, length, 288), AT(VARIABLEINFO, offset, 296),
           AT(VARIABLEINFO, informat, 304), AT(VARIABLEINFO, informatLen, 312),
           AT(VARIABLEINFO, informatWidth, 320), AT(VARIABLEINFO, informatDec, 328),
           AT(VARIABLEINFO, informatNoError, 336), AT(VARIABLEINFO, rawdata, 344),
           AT(VARIABLEINFO, rawdataLen, 352), AT(VARIABLEINFO, rawdataAlloc, 360),
           AT(VARIABLEINFO, informatBad, 368), AT(VARIABLEINFO, format, 376),
           AT(VARIABLEINFO, formatLen, 384), AT(VARIABLEINFO, formatWidth, 392),
           AT(VARIABLEINFO, formatDec, 400), AT(VARIABLEINFO, truncation, 408),
           AT(VARIABLEINFO, currentLength, 416), AT(VARIABLEINFO, badNumData, 424),
           AT(VARIABLEINFO, badNumMsgOutput, 425), SIZE(VARIABLEINFO, 432));
    LAYOUT(AT(INFORMATINFO, next, 0), AT(INFORMATINFO, variable, 8),
           AT(INFORMATINFO, variableLen, 16), AT(INFORMATINFO, informat, 24),
           AT(INFORMATINFO, informatLen, 32), AT(INFORMATINFO, informatWidth, 40),
           AT(INFORMATINFO, informatNoError, 48), AT(INFORMATINFO, length, 56),
           AT(INFORMATINFO, lengthFromAutomap, 64), SIZE(INFORMATINFO, 72));
    LAYOUT(AT(JSNParseCB, arrayStart, 0), AT(JSNParseCB, arrayEnd, 8),
           AT(JSNParseCB, objectStart, 16), AT(JSNParseCB, objectEnd, 24),
           AT(JSNParseCB, nullx, 32), AT(JSNParseCB, booleanVal, 40), AT(JSNParseCB, number, 48),
           AT(JSNParseCB, string, 56), SIZE(JSNParseCB, 64));
    CHECK(VARTYPE_CHARACTER == 0 && VARTYPE_NUMERIC == 1 && sizeof(VARIABLETYPE) == 4);
    CHECK(QV_NOMEM == (QVStatus)0x803FC002u && QV_BADPARMS == (QVStatus)0x803FC003u);
    CHECK(QV_EOF == (QVStatus)0x803FC064u && QV_NOTNUM == (QVStatus)0x803FE810u);
    CHECK(QV_NEEDMORE == (QVStatus)0x85FFC80Du);
    CHECK(JMAP_NOTABLE == -10 && JMAP_PARSE == -11 && JMAP_INCOMPLETE == -12);
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

/* Every slot once, in the order of a caller; the block spills, since the host has no budget. */
static void checkDocument(UserJMAP_S* engine, QVChar* cacheFile, QVStrSize cacheFileLen) {
    char text[] = "{\"orders\":[{\"id\":7},{\"id\":8}]}";
    QVEJMAPJsonInitParms parms;
    memset(&parms, 0, sizeof parms);
    parms.inCEI = U_UTF8_CE;
    parms.tempName = cacheFile;
    parms.tempNameLen = cacheFileLen;
    parms.memLeave = 1;
    parms.ordinalCount = UINT64_MAX;

    QVEJMAPJsonContexth doc = NULL;
    CHECK(engine->JsonInit(&engine->exth, &parms, &doc, NULL) == QV_OK);
    CHECK(doc->exth == &engine->exth && doc->p != NULL);
    QVBoolean caching = 0;
    CHECK(engine->JsonInput(doc, text, 9, 0, &caching, NULL) == QV_OK && caching == 0);
    CHECK(engine->JsonInput(doc, text + 9, (QVStrSize)strlen(text) - 9, 1, &caching, NULL) ==
          QV_OK);
    CHECK(caching == 1);

    QVMemPtr map = NULL;
    char name[40];
    int16_t nameLen = sizeof name;
    int32_t* levels = NULL;
    char* buf = NULL;
    QVStrSize bufLen = 0;
    CHECK(engine->GetAutoMap(doc, &map) == QV_OK && map != NULL);
    CHECK(engine->GetDsName(doc, map, 0, name, &nameLen) == QV_OK && nameLen == 6);
    CHECK(engine->MemberExist(doc, map, 6, name) == 0);
    CHECK(engine->GetAlldataInfo(doc, &levels) == QV_OK && levels[0] == 2 && levels[1] == 1);
    CHECK(engine->GetAutoMapBuf(doc, &buf, &bufLen, NULL) == QV_OK && bufLen > 2 && buf[0] == '{');
    CHECK(engine->GetAutoMapBufFree(doc) == QV_OK);

    QVEJMAPReadContexth table = NULL;
    CHECK(engine->ReadInit(doc, map, name, 6, NULL, &table) == QV_OK);
    double id = 0;
    CHECK(engine->Read(table) == QV_OK && engine->Read(table) == QV_OK);
    memcpy(&id, table->obsbuf + table->varinfo[table->varCount - 1].offset, sizeof id);
    CHECK(id == 8 && engine->Read(table) == QV_EOF);
    CHECK(engine->ReadReset(table) == QV_OK && engine->Read(table) == QV_OK);
    CHECK(engine->ReadTerm(table) == QV_OK);
    /* One more call, after which nothing more is told. */
    caching = 0;
    (void)engine->JsonInput(doc, text, 0, 1, &caching, NULL);
    CHECK(caching == 0);
    CHECK(engine->Term(doc, NULL) == QV_OK);
}

int main(int argc, char** argv) {
    char32_t cacheFile[256];
    QVStrSize cacheFileLen = 0;
    if (argc < 2 || strlen(argv[1]) > 255) {
        printf("usage: layout_test CACHEFILE\n");
        return 2;
    }
    remove(argv[1]);
    for (const char* c = argv[1]; *c != '\0'; ++c) {
        cacheFile[cacheFileLen++] = (unsigned char)*c;
    }
    QVPortableOptions options = {sizeof options, NULL, NULL, NULL, NULL, 1, 0};
    QVHndlp host = NULL;
    CHECK(qvPortableStart(&options, &host) == QV_OK);
    UserJMAP_S* engine = (UserJMAP_S*)qvejmap(host, NULL);
    checkLayouts();
    checkTable(engine);
    checkDocument(engine, cacheFile, cacheFileLen);
    CHECK(engine->exth.realDestroy(&engine->exth) == QV_OK);
    CHECK(qvPortableStop(host) == QV_OK);
    remove(argv[1]);
    return failures == 0 ? 0 : 1;
}
