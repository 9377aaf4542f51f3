// See failure.h.
#include "bindings/sqlite/failure.h"

#include "client/error.h"

#include <new>

namespace qvej::sqlite {

namespace {

void setMessage(char** message, const char* sentence) {
    sqlite3_free(*message);
    *message = sqlite3_mprintf("%s", sentence);
}

}  // namespace

int reportException(char** message) noexcept {
    try {
        try {
            throw;
        } catch (const Error& error) {
            if (error.status() == QV_STOPPED) {
                setMessage(message, "interrupted");  // as SQLite says it
                return SQLITE_INTERRUPT;
            }
            setMessage(message, sentenceOf(error).c_str());
            return error.status() == QV_NOMEM ? SQLITE_NOMEM : SQLITE_ERROR;
        }
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const std::exception& other) {
        setMessage(message, other.what());
    } catch (...) {
        setMessage(message, "it failed");
    }
    return SQLITE_ERROR;
}

}  // namespace qvej::sqlite
