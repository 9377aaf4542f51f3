// Which rows the ordinals of tables name: what can be a key, and of which table.
//
// Ordinals are never reset, so the deepest ordinal of a table counts its rows, and its other
// ordinals say in which row of the tables above a row is.  Two things can be otherwise: a row whose
// ordinal is missing or the same as that of the row before it, and a row whose parent never became
// a row.  Both are found by looking at all rows.
//
// Tested by tests/client/schema_test.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qvej {

// A set of numbers that mostly come in order and without gaps.
class NumberRuns {
   public:
    // False: it is not above the last one.
    bool append(uint64_t number) {
        if (number == last_.end) {
            ++last_.end;
            return true;
        }
        if (number < last_.end) {
            return false;
        }
        begin({number, number + 1});
        return true;
    }
    // As if the numbers of `later` were appended one by one.  Returns how many are not above the
    // last one.
    uint64_t append(const NumberRuns& later);

    [[nodiscard]] bool has(uint64_t number) const;

    // See fact_bytes.h, as in what follows.
    template <class Bytes>
    void pass(Bytes& bytes) {
        bytes(last_);
        bytes(earlier_);
    }

   private:
    struct Run {
        uint64_t begin = 0;
        uint64_t end = 0;

        template <class Bytes>
        void pass(Bytes& bytes) {
            bytes(begin);
            bytes(end);
        }
    };
    void begin(const Run& run) {
        if (last_.end != 0) {
            earlier_.push_back(last_);
        }
        last_ = run;
    }
    void appendRun(const Run& run, uint64_t& notAbove);

    Run last_;                  // mostly the only one; none yet: from 0 to 0
    std::vector<Run> earlier_;  // in order
};

// The own ordinals of the rows of one table.
class OwnOrdinals {
   public:
    void take(std::optional<uint64_t> ordinal) {
        if (!ordinal) {
            ++missing_;
        } else if (!seen_.append(*ordinal)) {
            ++repeated_;
        }
    }
    // The rows that come after those of this one.
    void add(const OwnOrdinals& later) {
        missing_ += later.missing_;
        repeated_ += later.repeated_ + seen_.append(later.seen_);
    }

    [[nodiscard]] bool has(uint64_t ordinal) const { return seen_.has(ordinal); }

    // Rows without, or with one that is not above that of the row before.
    [[nodiscard]] uint64_t missing() const { return missing_; }
    [[nodiscard]] uint64_t repeated() const { return repeated_; }
    [[nodiscard]] bool unique() const { return missing_ == 0 && repeated_ == 0; }

    template <class Bytes>
    void pass(Bytes& bytes) {
        bytes(seen_);
        bytes(missing_);
        bytes(repeated_);
    }

   private:
    NumberRuns seen_;
    uint64_t missing_ = 0;
    uint64_t repeated_ = 0;
};

// The ordinals of the rows above, as the rows of a table below have them.
class ParentOrdinals {
   public:
    // `parents`: the rows above that have come so far.  A row comes at the latest when its next one
    // begins, so one that has not come by then is looked for again at the end.
    void take(std::optional<uint64_t> ordinal, const OwnOrdinals& parents) {
        if (!ordinal) {
            ++missing_;
            return;
        }
        if (count_ != 0 && *ordinal == current_) {
            ++count_;
            several_ = true;
            return;
        }
        if (count_ == 0) {
            first_ = *ordinal;
        } else {
            settle({current_, count_}, parents);
            several_ |= *ordinal < current_;
            changed_ = true;
        }
        current_ = *ordinal;
        count_ = 1;
    }

    // The rows that come after those of this one.  `parents`: all that have come by their end.
    void add(const ParentOrdinals& later, const OwnOrdinals& parents);

    // After the last row: rows whose parent is no row.
    [[nodiscard]] uint64_t orphans(const OwnOrdinals& parents) const;

    // Has a row above at most one row here?
    [[nodiscard]] bool onePerParent() const { return !several_ && missing_ == 0; }

    template <class Bytes>
    void pass(Bytes& bytes) {
        bytes(first_);
        bytes(current_);
        bytes(count_);
        bytes(missing_);
        bytes(several_);
        bytes(changed_);
        bytes(late_);
    }

   private:
    // Rows in turn with one ordinal.
    struct Late {
        uint64_t ordinal = 0;
        uint64_t count = 0;

        template <class Bytes>
        void pass(Bytes& bytes) {
            bytes(ordinal);
            bytes(count);
        }
    };
    void settle(const Late& rows, const OwnOrdinals& parents) {
        if (!parents.has(rows.ordinal)) {
            late_.push_back(rows);
        }
    }

    uint64_t first_ = 0;
    uint64_t current_ = 0;
    uint64_t count_ = 0;  // rows in turn with that one
    uint64_t missing_ = 0;
    bool several_ = false;
    bool changed_ = false;    // not all have the first ordinal
    std::vector<Late> late_;  // their parents had not come
};

}  // namespace qvej
