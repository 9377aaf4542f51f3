// See text_relay.h.
#include "client/text_relay.h"

#include "client/error.h"

#include <utility>

namespace qvej {

TextRelay::TextRelay(QVHndlp host, const JSNParserParms& parms)
    : JSNParser{},
      parms_(parms),
      json_(reinterpret_cast<QVJSONh>(host->loadExtension(host, U"qvejson", 7, host->jnl))) {
    if (!json_) {
        throw Error(QV_NOMEM);
    }
    generic.destroy = &destroyRelay;
    JSNParser::parse = &parseText;
    JSNParser::line = [](JSNParserh self) {
        const TextRelay& relay = of(self);
        return relay.texts_ == 0 ? 0
                                 : lineIn(static_cast<std::size_t>(relay.texts_ - 1),
                                          asked<&JSNParser::line>(self));
    };
    JSNParser::column = &asked<&JSNParser::column>;
    JSNParser::eventColumn = &asked<&JSNParser::eventColumn>;
    JSNParser::offset = &asked<&JSNParser::offset>;
    JSNParser::eventOffset = &asked<&JSNParser::eventOffset>;
}

// Of the text that is parsed.
template <auto Slot>
int64_t TextRelay::asked(JSNParserh self) {
    const JSNParserh parser = of(self).parser_.get();
    return parser == nullptr ? 0 : (parser->*Slot)(parser);
}

void TextRelay::begin(const JSNTextRules& rules) {
    parser_.reset();
    parser_.reset(json_->createParser(json_.get(), &parms_));
    if (!parser_) {
        throw Error(QV_NOMEM);
    }
    parser_->setRules(parser_.get(), &rules);
    ++texts_;
}

// QV_OK would tell the engine that there is no more to come, so only the end of all gives it.
QVStatus TextRelay::parseText(JSNParserh self, const void* buf, QVStrSize bufLen, QVBoolean done) {
    TextRelay& relay = of(self);
    if (done != 0) {
        return QV_OK;
    }
    const bool ends = std::exchange(relay.ending_, false);
    const JSNParserh parser = relay.parser_.get();
    if (parser == nullptr) {
        return QV_BADPARMS;  // no text has begun
    }
    const QVStatus status = parser->parse(parser, buf, bufLen, ends ? 1 : 0);
    if (ends && status == QV_EOF) {
        return JMAP_INCOMPLETE;
    }
    return status == QV_OK || status == QV_NEEDMORE ? QV_EOF : status;
}

QVStatus TextRelay::destroyRelay(QVGeneric* self) {
    delete &of(reinterpret_cast<JSNParserh>(self));  // the table begins with it
    return QV_OK;
}

}  // namespace qvej
