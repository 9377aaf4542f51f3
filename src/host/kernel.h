// The portable host: the handle QVHndl and what it stands for.
//
// A Host owns its journal, its national-language service, its modules and the registry of all that
// is alive.  Its table's services, the registry, the account and the loader may be used by several
// threads; the objects that it hands out by one thread at a time each, except the default journal,
// which takes notes from any.
//
// Tested by tests/host/kernel_test.cpp
#pragma once

#include "qvehost.h"
#include "qvportable.h"

#include "host/host_object.h"
#include "host/journal.h"
#include "host/loader.h"
#include "host/memory_account.h"
#include "host/memory_query.h"
#include "host/region_cache.h"

#include <atomic>
#include <memory>

namespace qvhost {

class Host : public QVHndl {
   public:
    // The running host of that handle; null for any other handle.
    [[nodiscard]] static Host* of(QVHndlp handle) noexcept;

    [[nodiscard]] Registry& objects() noexcept { return objects_; }
    [[nodiscard]] MemoryAccount& memory() noexcept { return memory_; }
    [[nodiscard]] RegionCache& regions() noexcept { return regions_; }
    [[nodiscard]] Loader& loader() noexcept { return loader_; }
    [[nodiscard]] MemoryQuery& memoryQuery() noexcept { return memoryQuery_; }
    // Nesting limit of the JSON parser, 0 for none.
    [[nodiscard]] uint64_t maxDepth() const noexcept { return maxDepth_; }

    // Bytes that pools may use before the memory query answers 0, 0 for no such limit.
    [[nodiscard]] uint64_t budget() const noexcept { return budget_.load(); }
    void setBudget(uint64_t bytes) noexcept { budget_.store(bytes); }

    // What qvPortableStart and qvPortableStop do.
    [[nodiscard]] static QVStatus start(const QVPortableOptions& options, QVHndlp* out);
    static void stop(Host* host) noexcept;

   private:
    Host(const QVPortableOptions& options, std::unique_ptr<Journal> journal);
    ~Host();

    const uint64_t maxDepth_;
    std::atomic<uint64_t> budget_;
    std::unique_ptr<Journal> journal_;
    RegionCache regions_;  // outlives the pools
    Registry objects_;
    MemoryAccount memory_;
    MemoryQuery memoryQuery_;
    Loader loader_;
    QVHndlp previous_ = nullptr;  // the global handle before this host was started
    Host* nextRunning_ = nullptr;
};

}  // namespace qvhost
