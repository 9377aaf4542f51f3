// Work that sqlite3_interrupt ends.
//
// SQLite looks for an interrupt between rows.  Work of ours that gives no row for long looks
// itself: by a statement, since one that is begun after an interrupt ends at once, in every
// version.
//
// Tested by tests/bindings/sqlite_extension.py
#pragma once

#include "bindings/sqlite/api.h"

namespace qvej::sqlite {

// While it lives, the work of this thread is done for that connection.
class Interruptible {
   public:
    explicit Interruptible(sqlite3* connection);
    ~Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;

   private:
    sqlite3* before_;
};

// Whether the work that the calling thread does is to end; see DocumentOptions::stopped.
[[nodiscard]] bool isInterrupted();

}  // namespace qvej::sqlite
