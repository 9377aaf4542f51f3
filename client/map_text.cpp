// See map_text.h.
//
// The engine has checked the text, so a container's meaning follows from its depth alone: object,
// array of tables, table, array of columns, column, FORMAT and the like.
#include "client/map_text.h"

#include "client/error.h"
#include "client/handle.h"
#include "client/text.h"

#include <algorithm>
#include <charconv>

namespace qvej {
namespace {

constexpr int kTableDepth = 3;
constexpr int kColumnDepth = 5;

// A LENGTH as the engine takes it: 0 is none, and a negative one is capped as a very large one.
std::optional<uint64_t> givenLength(int64_t number) {
    if (number == 0) {
        return std::nullopt;
    }
    return std::min(static_cast<uint64_t>(number), kLongestCell);
}

// The callbacks' table with what they fill.
struct Reading : JSNParseCB {
    JSNParserh parser = nullptr;
    std::vector<TableText> tables;
    std::string key;  // of the innermost table or column
    int depth = 0;
    int element = 0;  // of the array in a column
};

Reading& readingOf(JSNParseCB* cb) {
    return *static_cast<Reading*>(cb);
}

// Where the present token begins, or the text within its quote.
Spot spotOf(const Reading& r, int64_t quote = 0) {
    return {r.parser->line(r.parser), r.parser->eventColumn(r.parser) + quote};
}

QVStatus open(JSNParseCB* cb) {
    Reading& r = readingOf(cb);
    ++r.depth;
    r.element = 0;
    if (r.depth == kTableDepth) {
        r.tables.push_back({spotOf(r), {}, {}});
    } else if (r.depth == kColumnDepth) {
        r.tables.back().columns.emplace_back().at = spotOf(r);
    }
    return QV_OK;
}

QVStatus close(JSNParseCB* cb) {
    --readingOf(cb).depth;
    return QV_OK;
}

QVStatus takeString(JSNParseCB* cb, const JSNChar* text, QVStrSize textLen, int32_t flags) {
    Reading& r = readingOf(cb);
    const std::string_view string(reinterpret_cast<const char*>(text),
                                  static_cast<std::size_t>(textLen));
    if (flags == JSN_MEMBERNAME) {
        r.key = string;
    } else if (r.depth == kTableDepth && equalIgnoringCase(r.key, "DSNAME")) {
        r.tables.back().name = string;
    } else if (r.depth > kColumnDepth && r.element++ == 0) {
        ColumnText& column = r.tables.back().columns.back();
        const ConversionText conversion = {spotOf(r, 1),
                                           string.size() - (string.starts_with('?') ? 1 : 0)};
        if (equalIgnoringCase(r.key, "FORMAT")) {
            column.format = conversion;
        } else if (equalIgnoringCase(r.key, "INFORMAT")) {
            column.informat = conversion;
        }
    }
    return QV_OK;
}

QVStatus takeNumber(JSNParseCB* cb, const char* text, QVStrSize textLen, int32_t) {
    Reading& r = readingOf(cb);
    int64_t number = 0;  // of at most 64 bits: the engine has read it
    (void)std::from_chars(text, text + textLen, number);
    ColumnText& column = r.tables.back().columns.back();
    if (r.depth == kColumnDepth && equalIgnoringCase(r.key, "LENGTH")) {
        column.length = givenLength(number);
    } else if (r.depth == kColumnDepth && equalIgnoringCase(r.key, "CURRENT_LENGTH") &&
               number >= 0) {
        column.currentLength = static_cast<uint64_t>(number);
    }
    return QV_OK;
}

// A callback that may run out of memory.
template <auto Routine, class... Args>
QVStatus guarded(Args... args) noexcept {
    try {
        return Routine(args...);
    } catch (const std::bad_alloc&) {
        return QV_NOMEM;
    }
}

}  // namespace

std::vector<TableText> readMapText(const Engine& engine, std::string_view text) {
    Reading reading;
    reading.arrayStart = reading.objectStart = guarded<open, JSNParseCB*>;
    reading.arrayEnd = reading.objectEnd = close;
    reading.nullx = [](JSNParseCB*) { return QV_OK; };
    reading.booleanVal = [](JSNParseCB*, QVBoolean) { return QV_OK; };
    reading.number = takeNumber;
    reading.string = guarded<takeString, JSNParseCB*, const JSNChar*, QVStrSize, int32_t>;

    QVHndlp host = engine.host();
    const Handle<QVJSON> json(
        reinterpret_cast<QVJSONh>(host->loadExtension(host, U"qvejson", 7, host->jnl)));
    JSNParserParms parms = {};
    parms.textCei = parms.callbackCei = U_UTF8_CE;
    parms.flags = JSN_PARSER_FLAGS;
    parms.callbacks = &reading;
    const Handle<JSNParser> parser(json ? json->createParser(json.get(), &parms) : nullptr);
    if (!parser) {
        throw Error(QV_NOMEM);
    }
    reading.parser = parser.get();
    check(parser->parse(parser.get(), text.data(), static_cast<QVStrSize>(text.size()), 1));
    return std::move(reading.tables);
}

}  // namespace qvej
