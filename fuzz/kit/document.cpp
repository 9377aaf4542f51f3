#include "kit/document.h"

#include "kit/require.h"

#include <iterator>

namespace jmap::fuzz {
namespace {

std::string number(auto value) {
    return std::to_string(value) + " ";
}

// A text that may have been cut.
std::string cutText(const char* text, QVStrSize textLen) {
    return quoted(wholeText(textOf(text, textLen)));
}

}  // namespace

std::string_view wholeText(std::string_view text) {
    const auto continues = [](char c) { return (c & 0xC0) == 0x80; };
    std::size_t begin = text.size();  // of the last character
    while (begin > 0 && continues(text[begin - 1])) {
        --begin;
    }
    begin -= begin > 0 ? 1 : 0;
    const auto first = begin < text.size() ? static_cast<unsigned char>(text[begin]) : 0U;
    const std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return begin + length > text.size() ? text.substr(0, begin) : text;
}

std::string quoted(std::string_view text) {
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20) {
            out += {'\\', 'u', '0', '0', kHex[(c >> 4) & 15], kHex[c & 15]};
        } else {
            out += c == '"' || c == '\\' ? "\\" : "";
            out += c;
        }
    }
    return out + '"';
}

std::string errorText(QVStatus status, const ERRORINFO& e) {
    return std::string("status ") + qvStatusName(status) + " rc " + qvStatusName(e.rc) + " at " +
           number(e.line) + number(e.col) + cutText(e.badstring, e.badstringLen) + " " +
           cutText(e.novardsname, e.novardsnameLen) + " " + number(e.novarCount) +
           number(e.ordNoretain) + "\n";
}

Document::Document(std::string_view json, const ScanWay& way)
    : journal_(way.notes ? FuzzHost::get().handle()->jnl : nullptr) {
    FuzzHost::get().setSpilling(way.spill);
    std::string keywords = way.notes ? ",ALL," : "";
    std::string alldata = "ALLDATA";
    std::u32string cacheFile = FuzzHost::cacheFile();
    QVEJMAPJsonInitParms parms{};
    parms.inCEI = U_UTF8_CE;
    parms.debugString = keywords.data();
    parms.debugStringLen = static_cast<QVStrSize>(keywords.size());
    parms.descLen = static_cast<QVStrSize>(std::string_view("fuzz").copy(parms.desc, 20));
    parms.tempName = cacheFile.data();
    parms.tempNameLen = static_cast<QVStrSize>(cacheFile.size());
    parms.memLeave = 1;
    parms.compress = way.compress ? 1 : 0;
    parms.ordinalCount = UINT64_MAX;
    parms.alldataName = alldata.data();
    parms.alldataNameLen = static_cast<QVStrSize>(alldata.size());
    require(engine()->JsonInit(&engine()->exth, &parms, &handle, journal_) == QV_OK,
            "a document opens");
    inBuffers(json, way.split, way.emptyEnd, [&](char* part, QVStrSize partLen, bool done) {
        QVBoolean caching = 0;
        status = engine()->JsonInput(handle, part, partLen, done ? 1 : 0, &caching, journal_);
        return status == QV_OK;
    });
}

Document::~Document() {
    require(engine()->Term(handle, journal_) == QV_OK, "a document ends");
}

std::string Document::readMap(std::string_view map, std::size_t split) const {
    QVEJMAPMapContexth ctx = nullptr;
    require(engine()->MapInit(handle, nullptr, &ctx, journal_) == QV_OK, "a map opens");
    QVStatus rc = QV_OK;
    inBuffers(map, split, false, [&](char* part, QVStrSize partLen, bool done) {
        rc = engine()->MapInput(ctx, part, partLen, done ? 1 : 0, journal_);
        return rc == QV_OK;
    });
    std::string text = errorText(rc, ctx->e);
    require(engine()->MapTerm(handle, &ctx, journal_) == QV_OK, "a map ends");
    return text;
}

QVMemPtr Document::automap() const {
    QVMemPtr map = nullptr;
    require(engine()->GetAutoMap(handle, &map) == QV_OK, "there is an automatic map");
    return map;
}

QVMemPtr Document::usermap() const {
    QVMemPtr map = nullptr;
    require(engine()->GetUserMap(handle, &map, nullptr, nullptr) == QV_OK, "there is a user map");
    return map;
}

std::string Document::failure() const {
    return status == QV_OK ? "" : errorText(status, handle->e);
}

std::string Document::records() const {
    std::string text;
    JMAPRecordCursorh cursor = nullptr;
    require(jmapRecordsOpen(handle, &cursor) == QV_OK, "a record cursor opens");
    JMAPRecord record{};
    QVStatus rc = QV_OK;
    while ((rc = jmapRecordsNext(cursor, &record)) == QV_OK) {
        text.append(textOf(record.bytes, record.bytesLen)).append("\n");
    }
    require(rc == QV_EOF, "all records can be read");
    require(jmapRecordsClose(cursor) == QV_OK, "a record cursor closes");
    JMAPTotals totals;
    jmapTotals(handle, &totals);
    return text + number(totals.records) + number(totals.recordBytes) + number(totals.blocks) +
           number(totals.unstoredBytes);
}

std::string Document::statistics() const {
    std::string text;
    JMAPPathh path = nullptr;
    while (jmapNextPath(handle, &path) == QV_OK) {
        JMAPPathInfo info;
        jmapPathInfo(path, &info);
        text += quoted(pathOf(jmapPathText, path, info.pathLen)) + " " + number(info.count) +
                number(info.type) + number(info.maxValueLen) + number(info.longestLine) +
                number(info.longestColumn);
        for (const JMAPPathKind& kind : info.kinds) {
            text += number(kind.count) + number(kind.line) + number(kind.column);
        }
        text += "\n";
    }
    int32_t* levels = nullptr;
    require(engine()->GetAlldataInfo(handle, &levels) == QV_OK, "the levels are known");
    for (int32_t i = 0; i < levels[0] + 2; ++i) {
        text += number(levels[i]);
    }
    return text;
}

std::string Document::mapDocument() const {
    char* buf = nullptr;
    QVStrSize bufLen = 0;
    require(engine()->GetAutoMapBuf(handle, &buf, &bufLen, journal_) == QV_OK,
            "the map is written");
    std::string text(buf, buf + bufLen);
    require(engine()->GetAutoMapBufFree(handle) == QV_OK, "the map's writer ends");
    return text;
}

}  // namespace jmap::fuzz
