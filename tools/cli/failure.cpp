// See failure.h.
#include "tools/cli/failure.h"

namespace qvej::cli {

ExitCode exitCodeOf(QVStatus status) {
    const auto code = static_cast<uint32_t>(status);
    const bool ofJson = code >= static_cast<uint32_t>(QV_JSON_VALUE) && code <= 0x85FFC9FFu;
    switch (status) {
        case QV_JSON_DEPTH:
        case QV_LIMIT_PATHS:
        case QV_LIMIT_DISK:
        case QV_LIMIT_MEMORY:
        case QV_NOMEM:
            return LIMIT_REACHED;
        case QV_BADPARMS:
        case QV_UNMAPPABLE:  // an option that the document's encoding cannot hold
            return WRONG_USAGE;
        case JMAP_PARSE:
        case JMAP_INCOMPLETE:
            return NOT_JSON;
        default:
            return ofJson ? NOT_JSON : isOfFiles(status) ? FILE_TROUBLE : NO_TABLE;
    }
}

}  // namespace qvej::cli
