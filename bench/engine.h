// The engine on the portable host, for benchmarks.
#pragma once

#include "qvejmap.h"
#include "qvportable.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace jmap::bench {

inline constexpr std::size_t kBufferBytes = 1U << 20;

inline void check(QVStatus status, const char* what) {
    if (status != QV_OK) {
        std::fprintf(stderr, "%s: %s\n", what, qvStatusText(status));
        std::abort();
    }
}

inline UserJMAP_S* engine() {
    static UserJMAP_S* const loaded = [] {
        QVPortableOptions options = {};
        options.structSize = sizeof options;
        QVHndlp host = nullptr;
        check(qvPortableStart(&options, &host), "qvPortableStart");
        check(qvPortableRegister(host, "qvejmap", &qvejmap), "qvPortableRegister");
        return reinterpret_cast<UserJMAP_S*>(host->loadExtension(host, U"qvejmap", 7, nullptr));
    }();
    return loaded;
}

// Calls input(buffer, size, last) for the text in buffers of kBufferBytes.
template <class Input>
void inBuffers(std::string_view text, Input input) {
    for (std::size_t at = 0; at < text.size(); at += kBufferBytes) {
        const std::size_t size = std::min(kBufferBytes, text.size() - at);
        input(const_cast<char*>(text.data() + at), static_cast<QVStrSize>(size),
              at + size == text.size());
    }
}

// A document without a text yet.
inline QVEJMAPJsonContexth open() {
    QVEJMAPJsonInitParms parms = {};
    parms.inCEI = U_UTF8_CE;
    parms.ordinalCount = UINT64_MAX;
    QVEJMAPJsonContexth doc = nullptr;
    check(engine()->JsonInit(&engine()->exth, &parms, &doc, nullptr), "JsonInit");
    return doc;
}

inline void input(QVEJMAPJsonContexth doc, std::string_view text) {
    QVBoolean caching = 0;
    inBuffers(text, [&](char* buffer, QVStrSize size, bool /*last*/) {
        check(engine()->JsonInput(doc, buffer, size, 0, &caching, nullptr), "JsonInput");
    });
}

// A document that has got the text but not its end.
inline QVEJMAPJsonContexth feed(std::string_view text) {
    QVEJMAPJsonContexth doc = open();
    input(doc, text);
    return doc;
}

// Ends the text: the automatic map is made.
inline void finish(QVEJMAPJsonContexth doc) {
    QVBoolean caching = 0;
    char none = 0;
    check(engine()->JsonInput(doc, &none, 0, 1, &caching, nullptr), "JsonInput");
}

// A document, scanned to its automatic map; the caller ends it.
inline QVEJMAPJsonContexth scan(std::string_view text) {
    QVEJMAPJsonContexth doc = feed(text);
    finish(doc);
    return doc;
}

}  // namespace jmap::bench
