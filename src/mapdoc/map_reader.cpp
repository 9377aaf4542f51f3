// A user's map, read from its JSON document.
//
// Tested by tests/mapdoc/map_reader_test.cpp
#include "map_reader.h"

#include "automap/map_dump.h"
#include "core/note.h"
#include "core/pool.h"
#include "core/status.h"
#include "core/text.h"
#include "map_states.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

constexpr std::string_view kParserDesc = "qvejmap's map parser";

// ---- The machine --------------------------------------------------------------------------------

void noteEvent(JMAP_PRIVATE* p, const QVChar* event) {
    if (p->debugValidateMap) [[unlikely]] {
        myLogNote(p, event);
    }
}

void noteToken(JMAP_PRIVATE* p, const QVChar* fmt, std::string_view text) {
    if (p->debugValidateMap) [[unlikely]] {
        myLogNote(p, fmt, noteLen(lengthOf(text)), text.data());
    }
}

void changeState(JMAP_PRIVATE* p, VSTATE next) {
    if (p->vstate == next) {
        return;
    }
    p->vstate = next;
    if (p->debugValidateMap) [[unlikely]] {
        myLogNote(p, U"vstate to %hs", kStates[next].name);
    }
}

// The status of an event that the state does not expect.
QVStatus vproblem(JMAP_PRIVATE* p) {
    noteEvent(p, U"IN VPROBLEM");
    if (p->vstate < S_BEGIN || p->vstate > S_END) {
        return JMAP_PARSE;
    }
    return reject(p, kStates[p->vstate].problem);
}

[[nodiscard]] bool fits(const TRANSITION& row, std::string_view text) noexcept {
    if (row.key == kAnyText) {
        return true;
    }
    return row.key == kAnyOf4 ? text.size() == kAnyOf4.size() : text == row.key;
}

// One step.  The state changes before the action runs, so also when the action rejects the value.
QVStatus step(JMAP_PRIVATE* p, EVENT event, const TOKEN& token = {}) {
    for (const TRANSITION& row : kTransitions) {
        if (row.state == p->vstate && row.event == event && fits(row, token.text)) {
            changeState(p, row.next);
            return row.action == nullptr ? QV_OK : row.action(p, token);
        }
    }
    return vproblem(p);
}

// ---- The callbacks of the parser ----------------------------------------------------------------

// An event without a token (length 0): the place of a mistake is the byte before the parser's
// column.
JMAP_PRIVATE* plainEvent(JSNParseCB* cb, const QVChar* note) {
    JMAP_PRIVATE* p = contextOf(cb);
    p->lineminus = 0;
    noteEvent(p, note);
    return p;
}

void keepToken(JMAP_PRIVATE* p, std::string_view text) {
    const std::string_view kept = firstOf(text, sizeof p->badstring);
    if (!kept.empty()) {
        std::memcpy(p->badstring, kept.data(), kept.size());
    }
    p->badstringLen = lengthOf(kept);
}

// A copy of a member name in upper case, or null.  The name itself may stand in the caller's
// buffer, which is never written.  Valid until the next call.
[[nodiscard]] const char* upperCased(JMAP_PRIVATE* p, std::string_view name) {
    const QVStrSize len = lengthOf(name);
    if (len > p->transbufAlloc || p->transbuf == nullptr) {
        char* larger = poolBytes(p->cpool, 2 * len);
        if (larger == nullptr) {
            return nullptr;
        }
        (void)poolFree(p->cpool, p->transbuf);  // the buffer is replaced whatever the pool says
        p->transbuf = larger;
        p->transbufAlloc = 2 * len;
    }
    std::copy(name.begin(), name.end(), p->transbuf);
    p->transbufLen = len;
    QVNLSh nls = qvGlobalHandle()->nls;
    nls->upper8(nls, p->transbuf, len);
    return p->transbuf;
}

QVStatus varrayStart(JSNParseCB* cb) {
    return step(plainEvent(cb, U"---Array Start"), EVENT::ARRAY_START);
}

QVStatus varrayEnd(JSNParseCB* cb) {
    return step(plainEvent(cb, U"---Array End"), EVENT::ARRAY_END);
}

QVStatus vobjectStart(JSNParseCB* cb) {
    return step(plainEvent(cb, U"---Object Start"), EVENT::OBJECT_START);
}

QVStatus vobjectEnd(JSNParseCB* cb) {
    return step(plainEvent(cb, U"---Object End"), EVENT::OBJECT_END);
}

QVStatus vnull(JSNParseCB* cb) {
    return vproblem(plainEvent(cb, U"---fnull"));
}

QVStatus vboolean(JSNParseCB* cb, QVBoolean /*myboo*/) {
    return vproblem(plainEvent(cb, U"---fboolean"));
}

// Kept: a number with a fraction or an exponent gives "integer expected" in every state.  A number
// beyond 64 bits fails in every state, with the status of the conversion and no code.
QVStatus vnumber(JSNParseCB* cb, const char* str, QVStrSize length, int32_t flags) {
    JMAP_PRIVATE* p = contextOf(cb);
    const std::string_view text = view(str, length);
    p->lineminus = length - 1;
    noteToken(p, U"---fnumber [%.*hs]", text);
    keepToken(p, text);
    if (flags != JSN_INTEGER) {
        return reject(p, JMAP_MAP_INTEGER);
    }
    if (p->smh == nullptr) {
        return QV_UNSUPPORTED;
    }
    TOKEN token;
    QVStrSize used = 0;
    QV_TRY(p->smh->toInteger(p->smh, str, length, &token.number, &used));
    return step(p, EVENT::INTEGER, token);
}

QVStatus vstring(JSNParseCB* cb, const JSNChar* str, QVStrSize inlength, int32_t flags) {
    JMAP_PRIVATE* p = contextOf(cb);
    const char* text = reinterpret_cast<const char*>(str);
    if (flags == JSN_MEMBERNAME) {
        text = upperCased(p, view(text, inlength));
        if (text == nullptr) {
            return QV_NOMEM;
        }
    }
    const TOKEN token = {.text = view(text, inlength)};
    p->lineminus = inlength;
    noteToken(p, U"---fstring [%.*hs]", token.text);
    keepToken(p, token.text);
    return step(p, EVENT::STRING, token);
}

constexpr JSNParseCB kMapCallbacks = {
    .arrayStart = varrayStart,
    .arrayEnd = varrayEnd,
    .objectStart = vobjectStart,
    .objectEnd = vobjectEnd,
    .nullx = vnull,
    .booleanVal = vboolean,
    .number = vnumber,
    .string = vstring,
};

// ---- Begin and end ------------------------------------------------------------------------------

// Messages use the new description of the document from now on.
void takeDescription(JMAP_PRIVATE* p, const QVEJMAPMapInitParms* parms) noexcept {
    if (parms == nullptr || parms->descLen <= 0) {
        return;
    }
    p->jsonDescLen = std::min(parms->descLen, static_cast<QVStrSize>(sizeof p->jsonDesc));
    std::memcpy(p->jsonDesc, parms->desc, static_cast<std::size_t>(p->jsonDescLen));
}

void noteParsing(JMAP_PRIVATE* p, const QVChar* fmt) {
    if (p->debugLevel && p->jsonDescLen != 0) {
        myLogNote(p, fmt, noteLen(p->jsonDescLen), p->jsonDesc);
    }
}

// Kept: without memory the parser stays null and MapInit succeeds; the first MapInput then gives
// QV_NOMEM.
// Kept: an earlier parser is not ended.  Without MapTerm between two maps it lives until the host
// stops.
void newParser(JMAP_PRIVATE* p, QVJnlh jnl) {
    const JSNParserParms parms = {
        .textCei = p->inCei,
        .callbackCei = p->inCei,
        .flags = JSN_PARSER_FLAGS,
        .pool = nullptr,
        .jnl = jnl,
        .callbacks = &p->parseCB,
        .stream = nullptr,
        .tippingSize = 0,
        .desc = kParserDesc.data(),
        .descLen = lengthOf(kParserDesc),
    };
    p->mapParser = p->jsonh->createParser(p->jsonh, &parms);
}

[[nodiscard]] QVStatus finish(JMAP_PRIVATE* p, ERRORINFO* e) {
    if (p->novardsnameLen != 0) {
        std::memcpy(e->novardsname, p->novardsname, sizeof e->novardsname);
        e->novardsnameLen = p->novardsnameLen;
        e->novarCount = p->novarCount;
    }
    e->ordNoretain = p->ordNoretain ? 1 : 0;
    noteParsing(p, U"Parsing of %.*hs ends");
    if (p->debugUserMap && p->usermap != nullptr) {
        QV_TRY(dumpMap2(p, p->usermap, "USER"));
    }
    return QV_OK;
}

// Kept: `vrc` is not reset between maps.  When a map is rejected, a later map with a mistake in its
// JSON gets the code of the rejected one.
[[nodiscard]] QVStatus report(JMAP_PRIVATE* p, QVStatus rc, ERRORINFO* e) {
    e->line = p->mapParser->line(p->mapParser);
    e->col = p->mapParser->column(p->mapParser);
    if (p->vrc != QV_OK) {
        e->col -= p->lineminus + 1;  // back to the start of the token
    }
    e->rc = rc;
    e->badstringLen = p->badstringLen;
    std::memcpy(e->badstring, p->badstring, sizeof e->badstring);
    return p->vrc != QV_OK ? p->vrc : JMAP_PARSE;
}

}  // namespace

// Kept: of an earlier map only the state is reset.  `vrc`, the tables without columns and their
// number, `ordNoretain` and the last token stay, and are in the ERRORINFO of this map too.
// Kept: the callbacks of the document's own parser are replaced too, and MapTerm does not restore
// them.  The document can take no more text.
QVStatus MapInit(QVEJMAPJsonContexth inh, QVEJMAPMapInitParms* parms, QVEJMAPMapContexth* inctx,
                 QVJnlh jnl) {
    JMAP_PRIVATE* p = contextOf(inh);
    auto* ctx = poolNew<QVEJMAPMapContext>(p->cpool);
    if (ctx == nullptr) {
        return QV_NOMEM;
    }
    ctx->exth = inh->exth;
    ctx->p = p;
    takeDescription(p, parms);
    noteParsing(p, U"Parsing of %.*hs begins");
    p->parseCB = kMapCallbacks;
    p->vstate = S_BEGIN;
    newParser(p, jnl);
    *inctx = ctx;
    return QV_OK;
}

// Kept: the final state is not tested.  With a parser that gives QV_NEEDMORE for the last buffer an
// unfinished map passes.
// Kept: QV_NEEDMORE before the last buffer is a failure here, but not in JsonInput.  The bundled
// parser never gives it.
QVStatus MapInput(QVEJMAPMapContexth inh, QVMemPtr inbuf, QVStrSize inlen, QVBoolean done,
                  QVJnlh /*jnl*/) {
    auto* p = static_cast<JMAP_PRIVATE*>(inh->p);
    if (p->mapParser == nullptr) {
        return QV_NOMEM;  // MapInit could not make it
    }
    const QVStatus rc = p->mapParser->parse(p->mapParser, inbuf, inlen, done);
    if (done == 0 && (rc == QV_OK || rc == QV_EOF)) {
        return QV_OK;
    }
    if (done != 0 && (rc == QV_OK || rc == QV_NEEDMORE)) {
        return finish(p, &inh->e);
    }
    if (done != 0 && rc == QV_EOF) {
        return JMAP_INCOMPLETE;
    }
    return report(p, rc, &inh->e);
}

QVStatus MapTerm(QVEJMAPJsonContexth inh, QVEJMAPMapContexth* mctx, QVJnlh /*jnl*/) {
    JMAP_PRIVATE* p = contextOf(inh);
    const QVStatus rc = destroyHandle(p->mapParser);
    if (mctx != nullptr) {
        (void)poolFree(p->cpool, *mctx);  // the parser's status is returned
        *mctx = nullptr;
    }
    return rc;
}

}  // namespace jmap
