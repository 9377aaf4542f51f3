// See text_parser.h.
#include "client/text_parser.h"

#include "client/text_rules.h"

namespace qvej {

TextParser::TextParser(const Engine& engine, JSNParseCB& callbacks, const DocumentOptions& options)
    : columnOf_(options.columnOf) {
    QVHndlp host = engine.host();
    json_.reset(reinterpret_cast<QVJSONh>(host->loadExtension(host, U"qvejson", 7, host->jnl)));
    JSNParserParms parms = {};
    parms.textCei = parms.callbackCei = U_UTF8_CE;
    parms.flags = JSN_PARSER_FLAGS;
    parms.callbacks = &callbacks;
    parser_.reset(json_ ? json_->createParser(json_.get(), &parms) : nullptr);
    if (!parser_) {
        throw Error(QV_NOMEM);
    }
    const JSNTextRules rules = textRules(options, columnOf_);
    parser_->setRules(parser_.get(), &rules);
}

void TextParser::feed(std::string_view text) {
    const QVStatus status =
        parser_->parse(parser_.get(), text.data(), static_cast<QVStrSize>(text.size()), 0);
    if (status != QV_OK && status != QV_EOF && status != QV_NEEDMORE) {
        fail(status);
    }
}

void TextParser::finish() {
    const QVStatus status = parser_->parse(parser_.get(), "", 0, 1);
    if (status == QV_EOF) {
        throw Error(JMAP_INCOMPLETE, qvStatusText(JMAP_INCOMPLETE), end());
    }
    if (status != QV_OK && status != QV_NEEDMORE) {
        fail(status);
    }
}

void TextParser::fail(QVStatus status) const {
    if (status == JMAP_INCOMPLETE) {
        const Spot at = spot();
        throw Error(status, "a document must be an object or an array",
                    Place{{}, at.line, at.column, parser_->eventOffset(parser_.get())});
    }
    throw Error(status, qvStatusText(status), end());
}

Place TextParser::end() const {
    const int64_t offset = parser_->offset(parser_.get());
    const int64_t column = columnOf_ ? columnOf_(offset) : parser_->column(parser_.get());
    return {{}, parser_->line(parser_.get()), column, offset};
}

}  // namespace qvej
