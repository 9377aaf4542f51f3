// The module "qvejson".
//
// Tested by tests/json/module_test.cpp
#include "host/json/module.h"

#include "host/json/parser.h"
#include "host/json/writer.h"
#include "host/kernel.h"
#include "host/module_instance.h"
#include "host/nls/code_page.h"
#include "host/rim.h"

namespace qvhost {

namespace {

// The limit of parsers made from now on, 0 for none.
uint64_t maxDepthOf(QVHndlp hndl) {
    const Host* host = Host::of(hndl);
    return host == nullptr ? 0 : host->maxDepth();
}

JSNParserh createParser(QVJSONh json, const JSNParserParms* parms) {
    if (parms == nullptr || parms->callbacks == nullptr || parms->textCei != parms->callbackCei ||
        !isDocumentEncoding(parms->textCei)) {
        return nullptr;
    }
    const QVHndlp hndl = json->exth.hndl;
    return new Parser(hndl, *parms, {.maxDepth = maxDepthOf(hndl)});
}

}  // namespace

QVExtensionh qvejsonEntry(QVHndlp /*hndl*/, QVJnlh /*jnl*/) {
    return makeInstance<QVJSON, QVJSON>("json", [](QVJSON& made) {
        made.createParser = &Rim<&createParser>::call;
        made.createWriter = &Rim<&createWriter>::call;
    });
}

}  // namespace qvhost
