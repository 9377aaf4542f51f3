// Linked lists of records: a head and a tail, and a `next` in every node.
//
// Tested by tests/automap/lengths_test.cpp
#pragma once

namespace jmap {

// Appends `node` (its `next` is null) to the list.  O(1).
template <class T>
void append(T*& head, T*& tail, T* node) noexcept {
    if (head == nullptr) {
        head = node;
    } else {
        tail->next = node;
    }
    tail = node;
}

// A list as a range, following the member `Next` (a null head is an empty list).
template <class T, T* T::*Next>
class Each {
   public:
    class Iterator {
       public:
        explicit Iterator(T* at) noexcept : at_(at) {}
        T& operator*() const noexcept { return *at_; }
        Iterator& operator++() noexcept {
            at_ = at_->*Next;
            return *this;
        }
        bool operator!=(const Iterator& other) const noexcept { return at_ != other.at_; }

       private:
        T* at_;
    };
    explicit Each(T* head) noexcept : head_(head) {}
    [[nodiscard]] Iterator begin() const noexcept { return Iterator(head_); }
    [[nodiscard]] Iterator end() const noexcept { return Iterator(nullptr); }

   private:
    T* head_;
};

// for (DSINFO& ds : each(map->dshead)) ...
template <class T>
[[nodiscard]] auto each(T* head) noexcept {
    return Each<T, &T::next>(head);
}

// The members of a group: the head itself, then its chain of `down` links.
template <class T>
[[nodiscard]] auto eachDown(T* head) noexcept {
    return Each<T, &T::down>(head);
}

}  // namespace jmap
