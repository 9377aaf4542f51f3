// What the instances of all built-in modules have in common.
//
// A module's instance record derives from its public table, whose first member is the extension
// head:
//
//     struct Instance : QVZLIB {};
//     QVExtensionh qvezlibEntry(QVHndlp, QVJnlh) {
//         return makeInstance<Instance, QVZLIB>("zlib", fillTable);  // fillTable(Instance&)
//     }
//
// Tested by tests/host/loader_test.cpp
#pragma once

#include "qvehost.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace qvhost {

// The instance that a table is the head of.
template <class Instance, class Table>
[[nodiscard]] Instance* instanceOf(QVExtensionh ext) noexcept {
    static_assert(offsetof(Table, exth) == 0, "the head is the table's first member");
    return static_cast<Instance*>(reinterpret_cast<Table*>(ext));
}

// A new instance with its head filled in, made ready by `fill(Instance&)`, or null when there is no
// memory.  The loader adds `generic.destroy`, `hndl` and `handle`.
//   tag  four characters
template <class Instance, class Table, class Fill>
[[nodiscard]] QVExtensionh makeInstance(const char (&tag)[5], Fill fill) noexcept {
    auto* made = new (std::nothrow) Instance();
    if (made == nullptr) {
        return nullptr;
    }
    QVExtension& head = made->exth;
    std::copy_n(tag, sizeof head.generic.tag, head.generic.tag);
    head.getReqVersion = [](QVExtensionh, std::size_t* a, std::size_t* b,
                            std::size_t* c) -> QVStatus {
        *a = QV_HOST_VERSION_MAJOR;
        *b = QV_HOST_VERSION_MINOR;
        *c = QV_HOST_VERSION_PATCH;
        return QV_OK;
    };
    head.getVersion = [](QVExtensionh, std::size_t* a, std::size_t* b, std::size_t* c) -> QVStatus {
        *a = 1;
        *b = 0;
        *c = 0;
        return QV_OK;
    };
    head.realDestroy = [](QVExtensionh ext) -> QVStatus {
        delete instanceOf<Instance, Table>(ext);
        return QV_OK;
    };
    fill(*made);
    return &head;
}

}  // namespace qvhost
