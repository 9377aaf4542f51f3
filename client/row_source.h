// The rows of a document that keeps no records, as other threads make them.
#pragma once

#include "qvejmapx.h"

#include "row_work.h"

#include <cstddef>
#include <functional>

namespace qvej {

struct PassItem;

class RowSource {
   public:
    RowSource() = default;
    virtual ~RowSource() = default;
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    // As TablePass::next and TablePass::flushInTime.
    virtual bool next(PassItem& item) = 0;
    virtual void flushInTime(std::function<void()> /*flush*/) {}

    // As TablePass::work.
    //   source  items begin with the name of their text
    [[nodiscard]] virtual bool works() const { return false; }
    virtual void work(const MakeRowWork& /*make*/, bool /*source*/, const TakeRowResult& /*take*/) {
    }

    // After the last item, as of TablePass.
    [[nodiscard]] virtual JMAPPassColumn column(std::size_t table, std::size_t column) const = 0;
    [[nodiscard]] virtual const JMAPPassCell& left(std::size_t table, std::size_t column) const = 0;

    // Which of the document's texts the last row is of.
    [[nodiscard]] virtual std::size_t text() const = 0;
};

}  // namespace qvej
