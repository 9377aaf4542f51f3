// Starting, stopping and the services of the host handle.
//
// The running hosts form a list, which tells a handle of ours from one that a program or a test
// brings itself, and lets hosts stop in any order.
//
// Tested by tests/host/kernel_test.cpp
#include "host/kernel.h"

#include "host/fmt/fmt_module.h"
#include "host/io/io_module.h"
#include "host/json/module.h"
#include "host/nls/nls.h"
#include "host/pool.h"
#include "host/rim.h"
#include "host/tracker.h"
#include "host/zlib/zlib_module.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

namespace qvhost {

namespace {

struct BuiltIn {
    const char* name;
    QVEntry entry;
};

constexpr BuiltIn kBuiltIns[] = {
    {"qvejson", &Rim<&qvejsonEntry>::call},
    {"qvezlib", &Rim<&qvezlibEntry>::call},
    {"qvefmt", &Rim<&qvefmtEntry>::call},
    {"qvioe", &Rim<&qvioeEntry>::call},
};

// Plain pointers and a mutex without a destructor: nothing has to run when the program ends.
constinit std::mutex runningMutex;
constinit Host* firstRunning = nullptr;
constinit std::atomic<QVHndlp> globalHandle{nullptr};

Host& hostOf(QVHndlp handle) {
    return *static_cast<Host*>(handle);
}

QVPoolh createPoolSlot(QVHndlp host, const QVPoolParms* parms, const QVChar* name,
                       QVStrSize nameLen) {
    if (parms == nullptr) {
        return nullptr;
    }
    return createPool(hostOf(host), *parms, name, nameLen);
}

QVExtensionh loadExtensionSlot(QVHndlp host, const QVChar* name, QVStrSize nameLen, QVJnlh jnl) {
    return hostOf(host).loader().load(host, utf8Text(name, nameLen), jnl);
}

QVTrackerh createTrackerSlot(QVHndlp host, int32_t kind, int32_t /*resourceTypes*/,
                             const QVChar* name, QVStrSize nameLen) {
    if (kind != QV_TRACKER_HASH) {
        return nullptr;
    }
    return createTracker(hostOf(host), name, nameLen);
}

// Pools, or all pages of the process when the system tells them.
uint64_t heldBy(Host& host) {
    return std::max(host.memory().held(), host.memoryQuery().held());
}

// The smaller of what the system leaves and what the budget leaves.
QVStatus availableMemory(QVHndlp handle, uint64_t* available) {
    Host& host = hostOf(handle);
    const uint64_t budget = host.budget();
    std::optional<uint64_t> bytes = host.memoryQuery().available();
    if (budget != 0) {
        const uint64_t left = budget - std::min(budget, heldBy(host));
        bytes = std::min(left, bytes.value_or(left));
    }
    if (!bytes) {
        return QV_UNSUPPORTED;
    }
    *available = *bytes;
    return QV_OK;
}

QVStatus addModule(Host& host, const char* name, QVEntry entry) {
    host.loader().add(name, entry);
    return QV_OK;
}

QVStatus destroyHost(QVGeneric* self) {
    return qvPortableStop(reinterpret_cast<QVHndlp>(self));  // a handle begins with its head
}

}  // namespace

Host* Host::of(QVHndlp handle) noexcept {
    const std::lock_guard lock(runningMutex);
    Host* host = firstRunning;
    while (host != nullptr && host != handle) {
        host = host->nextRunning_;
    }
    return host;
}

Host::Host(const QVPortableOptions& options, std::unique_ptr<Journal> journal)
    : QVHndl{},
      maxDepth_(options.maxDepth),
      budget_(options.memoryBudget),
      journal_(std::move(journal)),
      loader_(options.modulePath) {
    std::memcpy(generic.tag, "qvho", sizeof generic.tag);
    generic.destroy = &destroyHost;
    jnl = journal_.get();
    createPool = &Rim<&createPoolSlot>::call;
    loadExtension = &Rim<&loadExtensionSlot>::call;
    createTracker = &Rim<&createTrackerSlot>::call;
    qvmrlmem = &Rim<&availableMemory>::call;
    for (const BuiltIn& module : kBuiltIns) {
        loader_.add(module.name, module.entry);
    }
}

Host::~Host() {
    objects_.endAll();
    if (nls != nullptr) {
        // No caller is left to report a failure to.
        (void)nls->exth.generic.destroy(&nls->exth.generic);
    }
}

QVStatus Host::start(const QVPortableOptions& options, QVHndlp* out) {
    std::unique_ptr<Journal> journal = Journal::open(options);
    if (journal == nullptr) {
        return QV_IO_OPEN;
    }
    Host* host = new Host(options, std::move(journal));
    {
        const std::lock_guard lock(runningMutex);
        host->nextRunning_ = firstRunning;
        firstRunning = host;
        host->previous_ = globalHandle.exchange(host);
    }
    host->nls = Rim<&createNls>::call(*host);
    if (host->nls == nullptr) {
        stop(host);
        return QV_NOMEM;
    }
    *out = host;
    return QV_OK;
}

void Host::stop(Host* host) noexcept {
    host->objects_.endAll();  // with the host still in its place, for modules that look for it
    {
        const std::lock_guard lock(runningMutex);
        Host** link = &firstRunning;
        while (*link != host) {
            link = &(*link)->nextRunning_;
        }
        *link = host->nextRunning_;
        for (Host* other = firstRunning; other != nullptr; other = other->nextRunning_) {
            if (other->previous_ == host) {
                other->previous_ = host->previous_;
            }
        }
        QVHndlp expected = host;
        globalHandle.compare_exchange_strong(expected, host->previous_);
    }
    delete host;
}

}  // namespace qvhost

using qvhost::Host;

QVHndlp qvGlobalHandle(void) {
    return qvhost::globalHandle.load(std::memory_order_acquire);
}

QVStatus qvPortableStart(const QVPortableOptions* options, QVHndlp* host) {
    if (options == nullptr || host == nullptr || options->structSize != sizeof *options) {
        return QV_BADPARMS;
    }
    return qvhost::Rim<&Host::start>::call(*options, host);
}

QVStatus qvPortableStop(QVHndlp host) {
    Host* const known = Host::of(host);
    if (known == nullptr) {
        return QV_BADPARMS;
    }
    Host::stop(known);
    return QV_OK;
}

QVStatus qvPortableRegister(QVHndlp host, const char* name, QVEntry entry) {
    Host* const known = Host::of(host);
    if (known == nullptr || name == nullptr || entry == nullptr) {
        return QV_BADPARMS;
    }
    return qvhost::Rim<&qvhost::addModule>::call(*known, name, entry);
}

QVHndlp qvPortableInstall(QVHndlp host) {
    return qvhost::globalHandle.exchange(host);
}

void qvPortableSetBudget(QVHndlp host, uint64_t bytes) {
    if (Host* const known = Host::of(host)) {
        known->setBudget(bytes);
    }
}

uint64_t qvPortableHeld(QVHndlp host) {
    Host* const known = Host::of(host);
    return known == nullptr ? 0 : qvhost::heldBy(*known);
}

QVStatus qvPortableJournal(void (*callback)(void* arg, const char* note, size_t noteLen), void* arg,
                           QVJnlh* journal) {
    if (callback == nullptr || journal == nullptr) {
        return QV_BADPARMS;
    }
    return qvhost::Rim<&qvhost::Journal::make>::call(callback, arg, journal);
}

void qvPortableCounts(QVHndlp host, QVPortableCounts* counts) {
    *counts = {};
    Host* const known = Host::of(host);
    if (known == nullptr) {
        return;
    }
    known->objects().each([counts](const qvhost::HostObject& entry) {
        if (entry.kind() == qvhost::ObjectKind::POOL) {
            ++counts->poolsAlive;
            counts->allocations += qvhost::poolCalls(entry.object());
        }
    });
    counts->allocations += known->memory().calls();
    counts->bytesInUse = known->memory().held();
    counts->bytesPeak = known->memory().peak();
}

void qvPortableFailAllocation(QVHndlp host, uint64_t n, QVBoolean always) {
    if (Host* const known = Host::of(host)) {
        known->memory().plan(n, always != 0);
    }
}

void qvPortableLeftovers(QVHndlp host, void (*visit)(void* arg, const char* kind, const char* name),
                         void* arg) {
    if (Host* const known = Host::of(host)) {
        known->objects().each([visit, arg](const qvhost::HostObject& entry) {
            visit(arg, qvhost::kindName(entry.kind()), entry.name());
        });
    }
}
