// The instance: made by the module's entry point, ended by its release operation.
//
// Tested by tests/frame/entry_test.cpp
#include "entry.h"

#include "core/pool.h"
#include "op_table.h"

#include <cstring>
#include <string_view>

namespace jmap {
namespace {

constexpr char kTag[] = {'n', 'e', 'v', 'o'};
constexpr std::u32string_view kPoolName = U"qvejmap";

// Loads a sibling module through the global host, whose default journal it gets.
template <class H>
[[nodiscard]] bool load(H*& handle, std::u32string_view name) noexcept {
    QVHndlp host = qvGlobalHandle();
    // Every module's instance begins with its QVExtension.
    handle = reinterpret_cast<H*>(
        host->loadExtension(host, name.data(), static_cast<QVStrSize>(name.size()), host->jnl));
    return handle != nullptr;
}

}  // namespace

QVStatus qvejmapgrv(QVExtensionh /*ext*/, size_t* a, size_t* b, size_t* c) {
    *a = QV_HOST_VERSION_MAJOR;
    *b = QV_HOST_VERSION_MINOR;
    *c = QV_HOST_VERSION_PATCH;
    return QV_OK;
}

QVStatus qvejmapgv(QVExtensionh /*ext*/, size_t* a, size_t* b, size_t* c) {
    *a = 1;
    *b = 0;
    *c = 0;
    return QV_OK;
}

QVStatus qvejmaprd(QVExtensionh ext) {
    auto* jmap = reinterpret_cast<JMAP_S*>(ext);  // the instance begins with its QVExtension
    (void)destroyHandle(jmap->jsonh);             // the caller gets QV_OK in any case
    (void)destroyHandle(jmap->zlibh);
    (void)destroyHandle(jmap->fmth);
    QVPoolh pool = jmap->pool;
    (void)destroyHandle(pool);  // the instance is gone with it
    return QV_OK;
}

}  // namespace jmap

// Kept: when a module cannot be loaded, the pool and the modules loaded before it are not ended.
// They live until the host stops.  Only a failed allocation of the instance cleans up.
extern "C" __attribute__((visibility("default"))) QVExtensionh qvejmap(QVHndlp hndl, QVJnlh jnl) {
    using namespace jmap;
    if (qvGlobalHandle() == nullptr) {
        return nullptr;  // no host has been started
    }
    QVPoolh pool = newPool(kPoolName);
    if (pool == nullptr) {
        return nullptr;
    }
    auto* instance = poolNew<JMAP_S>(pool);
    if (instance == nullptr) {
        (void)destroyHandle(pool);  // null is returned in any case
        return nullptr;
    }
    instance->jnl = jnl != nullptr ? jnl : hndl->jnl;
    QVExtension& head = instance->ujmap.exth;
    std::memcpy(head.generic.tag, kTag, sizeof kTag);
    instance->nls = qvGlobalHandle()->nls;
    if (!load(instance->jsonh, U"qvejson") || !load(instance->zlibh, U"qvezlib") ||
        !load(instance->fmth, U"qvefmt")) {
        return nullptr;
    }
    instance->pool = pool;
    head.getReqVersion = qvejmapgrv;
    head.getVersion = qvejmapgv;
    head.realDestroy = qvejmaprd;
    fillOperations(&instance->ujmap);
    return &head;
}
