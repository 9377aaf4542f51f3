// See user_map.h.
#include "client/user_map.h"

#include "client/error.h"
#include "client/excerpt.h"
#include "client/map_text.h"

#include <algorithm>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kLongestConversion = 32;  // bytes of a format's name that the engine keeps

// What a map context holds when the engine refuses the map.
struct Refusal {
    QVStatus status;
    ERRORINFO info;
};

Refusal readMap(const Document& document, std::string& text) {
    UserJMAP_S* operations = document.operations();
    QVJnlh journal = document.journal();
    QVEJMAPMapInitParms parms = {};
    QVEJMAPMapContexth map = nullptr;
    check(operations->MapInit(document.handle(), &parms, &map, journal));
    const QVStatus status =
        operations->MapInput(map, text.data(), static_cast<QVStrSize>(text.size()), 1, journal);
    const Refusal refusal = {status, map->e};
    const QVStatus ended = operations->MapTerm(document.handle(), &map, journal);
    check(status == QV_OK ? ended : QV_OK);
    return refusal;
}

// Where the text in the document's encoding ends.
Spot endOf(std::string_view text) {
    const auto lines = std::count(text.begin(), text.end(), '\n');
    const std::size_t feed = text.rfind('\n');
    const std::size_t start = feed == std::string_view::npos ? 0 : feed + 1;
    return {lines + 1, static_cast<int64_t>(text.size() - start) + 1};
}

// A column of the text in the document's encoding as one of the UTF-8 text.
int64_t utf8Column(const TextCodec& codec, std::string_view encoded, Spot spot) {
    if (codec.isUtf8()) {
        return spot.column;
    }
    for (int64_t line = 1; line < spot.line; ++line) {
        encoded.remove_prefix(std::min(encoded.size(), encoded.find('\n') + 1));
    }
    const auto before = static_cast<std::size_t>(spot.column - 1);
    return static_cast<int64_t>(codec.decoded(encoded.substr(0, before)).size()) + 1;
}

// A mistake at a spot of the map's text.
[[noreturn]] void failAt(std::string_view text, Spot spot, QVStatus status, std::string token) {
    const std::size_t offset = offsetOf(text, spot.line, spot.column);
    throw MapError(status, {{}, spot.line, spot.column, static_cast<int64_t>(offset)},
                   excerptOf(text, offset), std::move(token));
}

[[noreturn]] void refuse(const TextCodec& codec, std::string_view text, std::string_view encoded,
                         QVStatus reason, const ERRORINFO& info) {
    Spot spot = reason == JMAP_INCOMPLETE ? endOf(encoded) : Spot{info.line, info.col};
    const std::string token(info.badstring, static_cast<std::size_t>(info.badstringLen));
    spot.column = utf8Column(codec, encoded, spot);
    failAt(text, spot, reason, codec.decoded(token));
}

QVStrSize sizeOf(const std::string& text) {
    return static_cast<QVStrSize>(text.size());
}

}  // namespace

void parseUserMap(const Document& document, std::string_view text) {
    const TextCodec& codec = document.codec();
    std::string encoded = codec.encoded(text);
    const Refusal refusal = readMap(document, encoded);
    // What a callback failed with stands in `rc`.
    const QVStatus reason = refusal.status == JMAP_PARSE ? refusal.info.rc : refusal.status;
    if (reason == QV_NOMEM || reason == JMAP_MAP_NOMEM) {
        throw Error(QV_NOMEM);
    }
    if (reason != QV_OK) {
        refuse(codec, text, encoded, reason, refusal.info);
    }
}

QVMemPtr completeUserMap(const Document& document) {
    QVHndlp host = document.engine().host();
    const QVPoolParms parms = {1, 0, QV_NO_NUMA};
    const Handle<QVPool> pool(host->createPool(host, &parms, U"informats of a map", 18));
    if (!pool) {
        throw Error(QV_NOMEM);
    }
    QVMemPtr map = nullptr;
    INFORMATINFO* list = nullptr;
    check(document.operations()->GetUserMap(document.handle(), &map, pool.get(), &list));
    QVFMTh formats = document.engine().formats();
    for (INFORMATINFO* entry = list; entry != nullptr; entry = entry->next) {
        QVInformath opened = nullptr;
        if (formats->openInformat(formats, 0, entry->informat, entry->informatLen,
                                  *entry->informatWidth, 0, &opened) != QV_OK) {
            continue;  // checkConversions reports it
        }
        const Handle<QVInformat> informat(opened);
        if (*entry->informatWidth == 0) {
            *entry->informatWidth = informat->defaultWidth;
        }
        if (*entry->length == 0 && !document.uncounted()) {  // the document has no such path
            *entry->length = *entry->informatWidth;
        }
    }
    return map;
}

void checkConversions(const Engine& engine, const std::vector<Table>& tables,
                      std::string_view text) {
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t c = 0; c < tables[t].columns.size(); ++c) {
            const Column& column = tables[t].columns[c];
            const auto attempt = [&](const auto& opener, const Conversion& conversion,
                                     ConversionText ColumnText::*where) {
                const auto inText = [&] {
                    return readMapText(engine, text).at(t).columns.at(c).*where;
                };
                QVStatus status = QV_OK;
                try {
                    (void)opener(engine, column);
                } catch (const Error& error) {
                    status = error.status();
                }
                if (conversion.name.size() == kLongestConversion &&
                    inText().nameLength > kLongestConversion) {
                    status = QV_FMT_LONG;
                }
                if (status != QV_OK) {
                    failAt(text, inText().at, status, conversion.name);
                }
            };
            attempt(openInformat, column.informat, &ColumnText::informat);
            attempt(openFormat, column.format, &ColumnText::format);
        }
    }
}

Handle<QVInformat> openInformat(const Engine& engine, const Column& column) {
    QVInformath informat = nullptr;
    const Conversion& c = column.informat;
    if (!c.name.empty()) {
        check(engine.formats()->openInformat(
            engine.formats(), column.type == ColumnType::CHARACTER ? 0 : 1, c.name.data(),
            sizeOf(c.name), c.width, c.decimals, &informat));
    }
    return Handle<QVInformat>(informat);
}

Handle<QVFormat> openFormat(const Engine& engine, const Column& column) {
    QVFormath format = nullptr;
    const Conversion& c = column.format;
    if (!c.name.empty()) {
        check(engine.formats()->openFormat(
            engine.formats(), column.type == ColumnType::CHARACTER ? 0 : 1, c.name.data(),
            sizeOf(c.name), c.width, c.decimals, &format));
    }
    return Handle<QVFormat>(format);
}

}  // namespace qvej
