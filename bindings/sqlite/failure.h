// What goes wrong, as SQLite is told: a code and a message.  No exception passes SQLite.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"

namespace qvej::sqlite {

// For a catch-all: the code of the exception that is being handled.  `message` becomes its sentence
// with its place ("orders.json:2:8: a value was expected"), by sqlite3_malloc.
int reportException(char** message) noexcept;

// What the routine returns, or the code of what it throws.
template <class Routine>
int guarded(char** message, const Routine& routine) noexcept {
    try {
        return routine();
    } catch (...) {
        return reportException(message);
    }
}

}  // namespace qvej::sqlite
