// See failure.h.
#include "tools/cli/failure.h"

#include "client/failure_kind.h"

namespace qvej::cli {

ExitCode exitCodeOf(QVStatus status) {
    switch (kindOf(status)) {
        case FailureKind::NOT_JSON:
            return NOT_JSON;
        case FailureKind::FILES:
            return FILE_TROUBLE;
        case FailureKind::LIMIT:
            return LIMIT_REACHED;
        case FailureKind::USAGE:
            return WRONG_USAGE;
        default:
            return NO_TABLE;
    }
}

}  // namespace qvej::cli
