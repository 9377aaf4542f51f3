// Takes the rows of one table and writes them down, in some format.
//
// Rows can be shared among threads: each has a sink that makes pieces, and the pieces are appended
// in order to the one that writes.
//
// Tested by tests/formats/table_outputs_test.cpp
#pragma once

#include "client/table_pass.h"

#include <cstddef>
#include <memory>

namespace qvej {

// What a sink has made of some rows, to be appended to what another one writes.
class Piece {
   public:
    Piece() = default;
    virtual ~Piece() = default;
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;
};

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

    // Of a sink that makes pieces (Destination::pieceSink): the rows since the last one.
    [[nodiscard]] virtual std::unique_ptr<Piece> piece() { return nullptr; }

    // Writes rows that such a sink of the same table has made, after those that have come.
    virtual void append(std::unique_ptr<Piece> /*piece*/) {}

    // Between two rows, when none has come for a while: passes on what is held.  True: this sink
    // may be destroyed, and another one of the table (SinkParms::resumed) goes on where it ended.
    // Then `end` is not called for it.
    virtual bool rest() { return false; }
};

}  // namespace qvej
