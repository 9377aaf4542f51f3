// See error.h.
#include "client/error.h"

#include <cerrno>
#include <system_error>

namespace qvej {

Error fileError(QVStatus status, const std::string& file) {
    return {status, std::generic_category().message(errno), file};
}

std::string sentenceOf(const Error& error) {
    std::string place = error.file();
    if (error.line() != 0) {
        place += ":" + std::to_string(error.line()) + ":" + std::to_string(error.column());
    }
    return (place.empty() ? place : place + ": ") + error.what();
}

}  // namespace qvej
