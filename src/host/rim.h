// The boundary between the C tables and the C++ that implements them.
//
// A table's slot is called by code that knows no exceptions.  `Rim<&routine>::call` is the routine
// with every exception turned into a result: QV_NOMEM or QV_INTERNAL where it returns a status,
// null where it returns an object, nothing where it returns nothing.
//
//     tracker->insert = &Rim<&insert>::call;
//
// Tested by tests/host/kernel_test.cpp
#pragma once

#include "qvehost.h"

#include <new>

namespace qvhost {

template <auto Routine>
struct Rim;

template <class... Args, QVStatus (*Routine)(Args...)>
struct Rim<Routine> {
    static QVStatus call(Args... args) noexcept {
        try {
            return Routine(args...);
        } catch (const std::bad_alloc&) {
            return QV_NOMEM;
        } catch (...) {
            return QV_INTERNAL;
        }
    }
};

template <class T, class... Args, T* (*Routine)(Args...)>
struct Rim<Routine> {
    static T* call(Args... args) noexcept {
        try {
            return Routine(args...);
        } catch (...) {
            return nullptr;
        }
    }
};

template <class... Args, void (*Routine)(Args...)>
struct Rim<Routine> {
    static void call(Args... args) noexcept {
        try {
            Routine(args...);
        } catch (...) {  // there is no result to report it by
        }
    }
};

}  // namespace qvhost
