// See error.h.
#include "client/error.h"

#include <cerrno>
#include <system_error>

namespace qvej {

Error fileError(QVStatus status, const std::string& file) {
    return {status, std::generic_category().message(errno), file};
}

}  // namespace qvej
