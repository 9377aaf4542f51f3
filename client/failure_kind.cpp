// See failure_kind.h.
#include "client/failure_kind.h"

#include "client/error.h"

namespace qvej {

FailureKind kindOf(QVStatus status) {
    constexpr uint32_t kLastOfJson = 0x85FFC9FFu;
    const auto code = static_cast<uint32_t>(status);
    switch (status) {
        case QV_JSON_DEPTH:
        case QV_LIMIT_PATHS:
        case QV_LIMIT_DISK:
        case QV_LIMIT_MEMORY:
        case QV_NOMEM:
            return FailureKind::LIMIT;
        case QV_BADPARMS:
        case QV_UNMAPPABLE:  // an option that the document's encoding cannot hold
            return FailureKind::USAGE;
        case JMAP_PARSE:
        case JMAP_INCOMPLETE:
            return FailureKind::NOT_JSON;
        default:
            return code >= static_cast<uint32_t>(QV_JSON_VALUE) && code <= kLastOfJson
                       ? FailureKind::NOT_JSON
                   : isOfFiles(status) ? FailureKind::FILES
                                       : FailureKind::OTHER;
    }
}

}  // namespace qvej
