// Starting and stopping the host with the engine built in.
#include "client/engine.h"

#include "qvportable.h"

#include "client/error.h"

#include <algorithm>
#include <mutex>

namespace qvej {
namespace {

// The host that all engines share, since an engine looks for its host by the global handle.
constinit std::mutex hostMutex;
constinit QVHndlp sharedHost = nullptr;
constinit uint64_t hostUsers = 0;

QVHndlp startHost() {
    QVPortableOptions portable = {};
    portable.structSize = sizeof portable;
    // Notes that are of no document are dropped.
    portable.journalCallback = [](void*, const char*, size_t) {};
    QVHndlp host = nullptr;
    check(qvPortableStart(&portable, &host));
    if (const QVStatus status = qvPortableRegister(host, "qvejmap", ::qvejmap); status != QV_OK) {
        (void)qvPortableStop(host);  // the first failure is the one to report
        throw Error(status);
    }
    return host;
}

QVHndlp takeHost() {
    const std::lock_guard lock(hostMutex);
    if (hostUsers == 0) {
        sharedHost = startHost();
    }
    ++hostUsers;
    return sharedHost;
}

void leaveHost() {
    const std::lock_guard lock(hostMutex);
    if (--hostUsers == 0) {
        (void)qvPortableStop(sharedHost);  // a destructor cannot report it
    }
}

}  // namespace

Engine::Engine(int32_t headers) {
    if (jmapVersion() != QVEJMAPX_VERSION || headers != QVEJMAPX_VERSION) {
        throw Error(QV_UNSUPPORTED, "headers and libraries are of different versions");
    }
    host_ = takeHost();
    // The instance begins with the operation table.
    operations_ =
        reinterpret_cast<UserJMAP_S*>(host_->loadExtension(host_, U"qvejmap", 7, host_->jnl));
    formats_.reset(reinterpret_cast<QVFMTh>(host_->loadExtension(host_, U"qvefmt", 6, host_->jnl)));
    if (operations_ == nullptr || !formats_) {
        end();
        throw Error(QV_NOMEM);
    }
}

Engine::~Engine() {
    end();
}

// Cannot report a failure; the host frees what is left.
void Engine::end() {
    formats_.reset();
    if (operations_ != nullptr) {
        (void)operations_->exth.generic.destroy(&operations_->exth.generic);
    }
    leaveHost();
}

QVCEI Engine::encodingId(std::string_view name) const {
    return host_->nls->encodingId(host_->nls, name.data(), static_cast<QVStrSize>(name.size()));
}

uint64_t Engine::availableMemory(uint64_t budget) const {
    uint64_t available = 0;
    const QVStatus status = host_->qvmrlmem(host_, &available);
    if (budget == 0) {
        check(status);
        return available;
    }
    const uint64_t left = budget - std::min(budget, qvPortableHeld(host_));
    return status == QV_OK ? std::min(available, left) : left;
}

}  // namespace qvej
