// What the tests of the host share: a running host, its modules, and a folder for files.
#pragma once

#include "qvportable.h"

#include "tests/testkit/scratch_folder.h"
#include "tests/testkit/split.h"
#include "tests/testkit/testkit.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvhost::test {

using jmap::test::ScratchFolder;
using jmap::test::split;

[[nodiscard]] QVStrSize lengthOf(const auto& text) {
    return static_cast<QVStrSize>(std::size(text));
}

// A host that stops at the end.
struct RunningHost {
    // Notes are collected; with a journal they go to that file, or to standard error when it is "".
    explicit RunningHost(const char* modulePath = nullptr, const char* journal = nullptr,
                         uint64_t maxDepth = 0) {
        QVPortableOptions options{sizeof options, modulePath, nullptr, nullptr,
                                  &notes,         0,          maxDepth};
        if (journal == nullptr) {
            options.journalCallback = [](void* arg, const char* note, size_t noteLen) {
                static_cast<std::vector<std::string>*>(arg)->emplace_back(note, noteLen);
            };
        } else if (*journal != '\0') {
            options.journalFile = journal;
        }
        EXPECT_QV_OK(qvPortableStart(&options, &handle));
    }
    ~RunningHost() { stop(); }
    RunningHost(const RunningHost&) = delete;
    RunningHost& operator=(const RunningHost&) = delete;
    void stop() {
        if (handle != nullptr) {
            EXPECT_QV_OK(qvPortableStop(std::exchange(handle, nullptr)));
        }
    }

    std::vector<std::string> notes;
    QVHndlp handle = nullptr;

    [[nodiscard]] QVPoolh pool(std::u32string_view name = U"x", QVStrSize initialSize = 0) const {
        const QVPoolParms parms = {1, initialSize, QV_NO_NUMA};
        return handle->createPool(handle, &parms, name.data(), lengthOf(name));
    }
    [[nodiscard]] QVTrackerh tracker(std::u32string_view name = U"x") const {
        return handle->createTracker(handle, QV_TRACKER_HASH, 1, name.data(), lengthOf(name));
    }
    // An instance of a module, which the host ends.
    template <class Table = QVExtension>
    [[nodiscard]] Table* load(std::u32string_view name) const {
        return reinterpret_cast<Table*>(
            handle->loadExtension(handle, name.data(), lengthOf(name), handle->jnl));
    }
    [[nodiscard]] QVCEI encoding(std::string_view name) const {
        return handle->nls->encodingId(handle->nls, name.data(), lengthOf(name));
    }
    [[nodiscard]] QVPortableCounts counts() const {
        QVPortableCounts result;
        qvPortableCounts(handle, &result);
        return result;
    }
    // "pool a;module b;": what is alive, oldest first.
    [[nodiscard]] std::string leftovers() const {
        std::string result;
        const auto add = [](void* arg, const char* kind, const char* name) {
            static_cast<std::string*>(arg)->append(kind).append(" ").append(name).append(";");
        };
        qvPortableLeftovers(handle, add, &result);
        return result;
    }
};

// Ends an object by its head.
QVStatus destroy(auto* object) {
    auto* generic = reinterpret_cast<QVGeneric*>(object);
    return generic->destroy(generic);
}

}  // namespace qvhost::test
