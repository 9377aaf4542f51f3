// What is made of rows where they are made: on the threads that walk the parts of a document.
//
//     part 1 ─► walk ─► RowWork ─► RowResult ─┐
//     part 2 ─► walk ─► RowWork ─► RowResult ─┼─► in the order of the rows
//     part 3 ─► ...                           ┘
//
// Tested by tests/client/parts_test.cpp
#pragma once

#include "qvejmapx.h"

#include <functional>
#include <memory>
#include <string_view>

namespace qvej {

struct PassItem;

// What has been made of some rows that follow one another.
class RowResult {
   public:
    RowResult() = default;
    virtual ~RowResult() = default;
    RowResult(const RowResult&) = delete;
    RowResult& operator=(const RowResult&) = delete;
};

// Works on the rows of one part, then on those of another.  On any thread, one at a time.
class RowWork {
   public:
    RowWork() = default;
    virtual ~RowWork() = default;
    RowWork(const RowWork&) = delete;
    RowWork& operator=(const RowWork&) = delete;

    // A part begins: what came for rows that are not complete is for the work on another part.
    // While an item is taken, `walk` tells what has come for a column in this part so far
    // (jmapPassColumn).
    virtual void begin(JMAPPassh /*walk*/) {}

    // The next item, valid until this returns.  Its ordinals are those of the whole document.
    virtual void take(const PassItem& item) = 0;

    // The next item, which has been worked on before: by another, which then began anew, or with
    // an earlier part.  A row that is not complete with it is this one's.
    virtual void passOver(const PassItem& /*item*/) {}

    // Texts of items that lie in `text` need not be copied for as long as `holder` is kept.
    virtual void holdText(const std::shared_ptr<const void>& /*holder*/,
                          std::string_view /*text*/) {}

    // Whether what has been made is enough for a result; asked after each item.
    [[nodiscard]] virtual bool full() const = 0;

    // What has been made since the last result: when it is full, and at the end of a part.  Null:
    // nothing.
    [[nodiscard]] virtual std::unique_ptr<RowResult> result() = 0;
};

// Makes one; on any thread, several at the same time.
using MakeRowWork = std::function<std::unique_ptr<RowWork>()>;

// Takes the results in order.
using TakeRowResult = std::function<void(std::unique_ptr<RowResult> result)>;

}  // namespace qvej
