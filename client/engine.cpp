// Starting and stopping the host with the engine built in.
#include "client/engine.h"

#include "qvportable.h"

#include "client/error.h"

namespace qvej {
namespace {

void passNote(void* arg, const char* note, size_t noteLen) {
    const auto* options = static_cast<const EngineOptions*>(arg);
    if (options->journal) {
        options->journal({note, noteLen});
    }
}

}  // namespace

Engine::Engine(EngineOptions options) : options_(std::move(options)) {
    if (jmapVersion() != QVEJMAPX_VERSION || options_.headers != QVEJMAPX_VERSION) {
        throw Error(QV_UNSUPPORTED, "headers and libraries are of different versions");
    }
    QVPortableOptions portable = {};
    portable.structSize = sizeof portable;
    portable.journalCallback = passNote;
    portable.journalArg = &options_;
    portable.memoryBudget = options_.memoryBudget;
    portable.maxDepth = options_.maxDepth;
    check(qvPortableStart(&portable, &host_));

    QVStatus status = qvPortableRegister(host_, "qvejmap", ::qvejmap);
    if (status == QV_OK) {
        // The instance begins with the operation table.
        operations_ =
            reinterpret_cast<UserJMAP_S*>(host_->loadExtension(host_, U"qvejmap", 7, host_->jnl));
        formats_.reset(
            reinterpret_cast<QVFMTh>(host_->loadExtension(host_, U"qvefmt", 6, host_->jnl)));
        status = operations_ == nullptr || !formats_ ? QV_NOMEM : QV_OK;
    }
    if (status != QV_OK) {
        formats_.reset();
        (void)qvPortableStop(host_);  // the first failure is the one to report
        throw Error(status);
    }
}

Engine::~Engine() {
    // A destructor cannot report a failure; the host frees what is left.
    formats_.reset();
    (void)operations_->exth.generic.destroy(&operations_->exth.generic);
    (void)qvPortableStop(host_);
}

QVCEI Engine::encodingId(std::string_view name) const {
    return host_->nls->encodingId(host_->nls, name.data(), static_cast<QVStrSize>(name.size()));
}

uint64_t Engine::availableMemory() const {
    uint64_t available = 0;
    check(host_->qvmrlmem(host_, &available));
    return available;
}

}  // namespace qvej
