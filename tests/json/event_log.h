// What a parse gives, as a text to compare: status, line:column, events.
//
//     {"a":[1,2.5,"x"],"b":      QV_EOF 1:22 { name "a" [ int 1 real 2.5 "x" ] name "b"
#pragma once

#include "qvehost.h"

#include "host/json/parser.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace jmap::test {

// Bytes in quotes, those outside printable ASCII as <hex>.
inline std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        constexpr std::string_view kHex = "0123456789ABCDEF";
        if (c >= 0x20 && c < 0x7F && c != '<') {
            out += c;
        } else {
            out += {'<', kHex[(c >> 4) & 15], kHex[c & 15], '>'};
        }
    }
    return out + "\" ";
}

struct ParseOptions {
    qvhost::ScanKernel kernel = qvhost::ScanKernel::BEST;
    uint64_t maxDepth = 0;
    QVCEI encoding = U_UTF8_CE;
    uint64_t failAt = 0;  // the event, from 1, whose callback gives failStatus
    QVStatus failStatus = QV_OK;
    bool lines = false;
    bool sequence = false;
    uint64_t rulesDepth = 0;  // the limit as a rule for the text
};

// Callbacks that write the events down.
struct EventLog {
    JSNParseCB cb{};  // must be first: the parser hands it back
    std::string events;
    std::string places;           // where each begins: "1:1 1:2 "
    JSNParserh parser = nullptr;  // null: places are not noted
    uint64_t count = 0;
    ParseOptions options;

    EventLog() {
        cb.arrayStart = [](JSNParseCB* c) { return of(c).add("[ "); };
        cb.arrayEnd = [](JSNParseCB* c) { return of(c).add("] "); };
        cb.objectStart = [](JSNParseCB* c) { return of(c).add("{ "); };
        cb.objectEnd = [](JSNParseCB* c) { return of(c).add("} "); };
        cb.nullx = [](JSNParseCB* c) { return of(c).add("null "); };
        cb.booleanVal = [](JSNParseCB* c, QVBoolean value) {
            return of(c).add(value != 0 ? "true " : "false ");
        };
        cb.number = [](JSNParseCB* c, const char* text, QVStrSize length, int32_t flags) {
            return of(c).add((flags == JSN_INTEGER ? "int " : "real ") +
                             std::string(text, text + length) + " ");
        };
        cb.string = [](JSNParseCB* c, const JSNChar* text, QVStrSize length, int32_t flags) {
            return of(c).add((flags == JSN_MEMBERNAME ? "name " : "") +
                             quoted({text, text + length}));
        };
    }

    QVStatus add(std::string_view event) {
        events += event;
        if (parser != nullptr) {
            places += std::to_string(parser->line(parser)) + ":" +
                      std::to_string(parser->eventColumn(parser)) + " ";
        }
        return ++count == options.failAt ? options.failStatus : QV_OK;
    }
    static EventLog& of(JSNParseCB* c) { return *reinterpret_cast<EventLog*>(c); }
};

// A parser with its log.
class LoggedParser {
   public:
    explicit LoggedParser(const ParseOptions& options = {}) {
        log.options = options;
        JSNParserParms parms = {};
        parms.textCei = parms.callbackCei = options.encoding;
        parms.flags = JSN_PARSER_FLAGS;
        parms.callbacks = &log.cb;
        const qvhost::ParserSettings settings = {options.maxDepth, options.kernel};
        log.parser = parser_ = new qvhost::Parser(nullptr, parms, settings);
        const JSNTextRules rules = {QVBoolean{options.lines}, nullptr, nullptr,
                                    QVBoolean{options.sequence}, options.rulesDepth};
        parser_->setRules(parser_, &rules);
    }
    ~LoggedParser() { (void)parser_->generic.destroy(&parser_->generic); }
    LoggedParser(const LoggedParser&) = delete;

    QVStatus feed(std::string_view text, bool done = false) {
        const auto length = static_cast<QVStrSize>(text.size());
        return status_ = parser_->parse(parser_, text.data(), length, done ? 1 : 0);
    }
    std::string result() {
        return std::string(qvStatusName(status_)) + " " + std::to_string(parser_->line(parser_)) +
               ":" + std::to_string(parser_->column(parser_)) + " " + log.events;
    }

    EventLog log;

   private:
    JSNParserh parser_;
    QVStatus status_ = QV_OK;
};

// The document in buffers, the first of `first` bytes, the later ones of `size`, up to the first
// that is shorter, or a mistake.  Each is a copy that ends where its memory ends: a sanitizer sees
// every byte read past the end.
inline std::string parseParts(std::string_view text, std::size_t first, std::size_t size,
                              const ParseOptions& options) {
    LoggedParser parser(options);
    QVStatus status = QV_EOF;
    for (bool done = false; !done && (status == QV_OK || status == QV_EOF); first = size) {
        const std::string_view part = text.substr(0, first);
        text.remove_prefix(part.size());
        const std::unique_ptr<char[]> copy(new char[part.size()]);
        std::copy(part.begin(), part.end(), copy.get());
        done = part.size() < first;
        status = parser.feed({copy.get(), part.size()}, done);
    }
    return parser.result();
}

// The document in buffers of `size` bytes (0: in one).
inline std::string parseIn(std::string_view text, std::size_t size, const ParseOptions& o = {}) {
    const std::size_t each = size == 0 ? std::string_view::npos : size;
    return parseParts(text, each, each, o);
}

}  // namespace jmap::test
