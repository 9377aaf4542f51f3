// The string service: views of the counted texts, and the operation on them.
//
// Tested by tests/host/nls_test.cpp
#include "host/nls/string_service.h"

#include "host/host_object.h"
#include "host/nls/code_page.h"
#include "host/nls/number.h"
#include "host/rim.h"

namespace qvhost {
namespace {

struct StringService : QVStringService {
    StringService(QVHndlp host, std::string_view name) noexcept;

    HostObject entry;
};

std::string_view view(const char* text, QVStrSize textLen) noexcept {
    return {text, static_cast<std::size_t>(textLen)};
}

QVStrSize indexOf(QVStringServiceh, const char* text, QVStrSize textLen, const char* needle,
                  QVStrSize needleLen, uint32_t) noexcept {
    const auto found = view(text, textLen).find(view(needle, needleLen));
    return found == std::string_view::npos ? -1 : static_cast<QVStrSize>(found);
}

QVBoolean isEqual(QVStringServiceh, const char* a, QVStrSize aLen, const char* b, QVStrSize bLen,
                  uint32_t) noexcept {
    return view(a, aLen) == view(b, bLen) ? 1 : 0;
}

// Kept: a text that is no number stores 0 although the call fails; a numeric column then shows 0.
template <class T>
QVStatus store(std::optional<T> number, QVStrSize textLen, T* value, QVStrSize* used) noexcept {
    *value = number.value_or(T{0});
    *used = number ? textLen : 0;
    return number ? QV_OK : QV_NOTNUM;
}

QVStatus toInteger(QVStringServiceh, const char* text, QVStrSize textLen, int64_t* value,
                   QVStrSize* used) noexcept {
    return store(textToInteger(view(text, textLen)), textLen, value, used);
}

QVStatus toDouble(QVStringServiceh, const char* text, QVStrSize textLen, double* value,
                  QVStrSize* used) noexcept {
    return store(textToDouble(view(text, textLen)), textLen, value, used);
}

QVStatus destroy(QVGeneric* self) {
    delete static_cast<StringService*>(reinterpret_cast<QVStringService*>(self));
    return QV_OK;
}

StringService::StringService(QVHndlp host, std::string_view name) noexcept
    : QVStringService{{{'s', 't', 'r', 's'}, 0, &Rim<&destroy>::call},
                      &indexOf,
                      &isEqual,
                      &qvhost::toInteger,
                      &qvhost::toDouble},
      entry(host, ObjectKind::STRINGS, generic, name) {}

}  // namespace

QVStatus createStringService(QVHndlp host, QVCEI cei, QVStringServiceh* service) {
    if (!isDocumentEncoding(cei)) {
        return QV_UNSUPPORTED;
    }
    *service = new StringService(host, encodingName(cei));
    return QV_OK;
}

}  // namespace qvhost
