// The table QVNLS of a host.
//
// Tested by tests/host/nls_test.cpp
#include "host/nls/nls.h"

#include "host/kernel.h"
#include "host/module_instance.h"
#include "host/nls/code_page.h"
#include "host/nls/string_service.h"
#include "host/nls/transcoder.h"
#include "host/rim.h"
#include "host/wide_format.h"

#include <algorithm>
#include <string>

namespace qvhost {
namespace {

QVCEI idOf(QVNLSh, const char* name, QVStrSize nameLen) noexcept {
    try {
        return encodingId({name, static_cast<std::size_t>(nameLen)});
    } catch (...) {
        return 0;
    }
}

QVTranscoderh newTranscoder(QVNLSh nls, QVCEI from, QVCEI to, QVJnlh) {
    return createTranscoder(nls->exth.hndl, from, to);
}

QVStatus newStringService(QVNLSh nls, QVCEI cei, QVJnlh, QVStringServiceh* service) {
    return createStringService(nls->exth.hndl, cei, service);
}

void upper8(QVNLSh, char* text, QVStrSize textLen) noexcept {
    std::transform(text, text + textLen, text, [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
}

// Copies what fits, terminated.
QVStatus deliver(const std::u32string& text, QVChar* out, QVStrSize outSize,
                 QVStrSize* outLen) noexcept {
    const auto room = static_cast<std::size_t>(std::max<QVStrSize>(outSize, 1)) - 1;
    const std::size_t count = text.copy(out, room);
    if (outSize > 0) {
        out[count] = U'\0';
    }
    *outLen = static_cast<QVStrSize>(count);
    return outSize > 0 && count == text.size() ? QV_OK : QV_TRUNCATED;
}

QVStatus format(QVNLSh, QVChar* out, QVStrSize outSize, QVStrSize* outLen, const QVChar* fmt, ...) {
    const auto fmtLen = static_cast<QVStrSize>(std::char_traits<QVChar>::length(fmt));
    va_list args;
    va_start(args, fmt);
    QVStatus status = QV_NOMEM;
    try {
        status = deliver(formatUtf32(fmt, fmtLen, args), out, outSize, outLen);
    } catch (...) {  // memory is all that formatting can lack
    }
    va_end(args);
    return status;
}

}  // namespace

QVNLSh createNls(Host& host) {
    const QVExtensionh head = makeInstance<QVNLS, QVNLS>("nls ", [](QVNLS& nls) {
        nls.encodingId = &idOf;
        nls.newTranscoder = &Rim<&newTranscoder>::call;
        nls.newStringService = &Rim<&newStringService>::call;
        nls.upper8 = &upper8;
        nls.format = &format;
    });
    if (head == nullptr) {
        return nullptr;
    }
    // No loader is between this extension and its caller: it is its own.
    head->hndl = &host;
    head->generic.destroy = [](QVGeneric* self) -> QVStatus {
        auto* ext = reinterpret_cast<QVExtension*>(self);
        return ext->realDestroy(ext);
    };
    return reinterpret_cast<QVNLSh>(head);
}

}  // namespace qvhost
