// Takes the rows of one table and writes them down, in some format.
//
// Tested by tests/formats/table_outputs_test.cpp
#pragma once

#include "client/table_pass.h"

#include <cstddef>

namespace qvej {

// All throw qvej::Error.
class Sink {
   public:
    Sink() = default;
    virtual ~Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    virtual void row(const PassRow& row) = 0;

    // Once, after the last row.
    virtual void end() = 0;

    // Bytes of memory for rows that have come and not gone on.  Asked for after each row, so that
    // all sinks together stay within a limit.
    [[nodiscard]] virtual std::size_t held() const { return 0; }

    // Passes on what is held, and gives the memory back.
    virtual void flush() {}

    // Between two rows, when none has come for a while: passes on what is held.  True: this sink
    // may be destroyed, and another one of the table (SinkParms::resumed) goes on where it ended.
    // Then `end` is not called for it.
    virtual bool rest() { return false; }
};

}  // namespace qvej
