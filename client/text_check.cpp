// See text_check.h.
#include "client/text_check.h"

namespace qvej {

TextCheck::TextCheck(const Engine& engine, const DocumentOptions& options)
    : JSNParseCB{}, parser_(engine, *this, options) {
    arrayStart = objectStart = [](JSNParseCB* cb) -> QVStatus {
        ++of(cb).depth_;
        return QV_OK;
    };
    arrayEnd = objectEnd = [](JSNParseCB* cb) -> QVStatus {
        --of(cb).depth_;
        return QV_OK;
    };
    nullx = [](JSNParseCB* cb) { return of(cb).scalar(); };
    booleanVal = [](JSNParseCB* cb, QVBoolean) { return of(cb).scalar(); };
    number = [](JSNParseCB* cb, const char*, QVStrSize, int32_t) { return of(cb).scalar(); };
    string = [](JSNParseCB* cb, const JSNChar*, QVStrSize, int32_t) { return of(cb).scalar(); };
}

}  // namespace qvej
