#include "kit/fuzz_host.h"

#include "core/context.h"
#include "kit/require.h"

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace jmap::fuzz {
namespace {

// In front of each piece, hidden while the piece is in use.
struct alignas(16) Head {
    std::size_t index;  // in the pool's list
    std::size_t size;
};

// Never ended, so that its blocks are not taken for lost ones.
std::vector<Head*>& spareBlocks = *new std::vector<Head*>;

Head* newPiece(std::size_t size) {
    if (size == kBlockBytes && !spareBlocks.empty()) {
        Head* const head = spareBlocks.back();
        spareBlocks.pop_back();
        ASAN_UNPOISON_MEMORY_REGION(head, sizeof *head + size);
        return head;
    }
    return static_cast<Head*>(std::malloc(sizeof(Head) + size));
}

void endPiece(Head* head) {
    ASAN_UNPOISON_MEMORY_REGION(head, sizeof *head);
    if (head->size == kBlockBytes) {
        spareBlocks.push_back(head);
        ASAN_POISON_MEMORY_REGION(head, sizeof *head + kBlockBytes);
    } else {
        std::free(head);
    }
}

// What a pool hands out, each piece by itself.
struct FuzzPool : QVPool {
    std::vector<Head*> pieces;
    int64_t* alive = nullptr;

    static Head* headOf(QVMemPtr mem) { return static_cast<Head*>(mem) - 1; }

    static QVMemPtr obtain(QVPoolh self, QVStrSize size, uint32_t flags) {
        if (size < 0) {
            return nullptr;
        }
        auto& pool = *static_cast<FuzzPool*>(self);
        const auto bytes = static_cast<std::size_t>(size);
        Head* const head = newPiece(bytes);
        if (head == nullptr) {
            return nullptr;
        }
        head->index = pool.pieces.size();
        head->size = bytes;
        pool.pieces.push_back(head);
        ASAN_POISON_MEMORY_REGION(head, sizeof *head);
        if ((flags & QV_ZERO) != 0) {
            std::memset(head + 1, 0, bytes);
        }
        return head + 1;
    }

    static QVMemPtr resize(QVPoolh self, QVMemPtr mem, QVStrSize size, uint32_t flags) {
        QVMemPtr const larger = obtain(self, size, flags);
        if (mem == nullptr || larger == nullptr) {
            return larger;
        }
        Head* const old = headOf(mem);
        ASAN_UNPOISON_MEMORY_REGION(old, sizeof *old);
        std::memcpy(larger, mem, std::min(old->size, static_cast<std::size_t>(size)));
        (void)drop(self, mem);
        return larger;
    }

    static QVStatus drop(QVPoolh self, QVMemPtr mem) {
        auto& pool = *static_cast<FuzzPool*>(self);
        Head* const head = headOf(mem);
        ASAN_UNPOISON_MEMORY_REGION(head, sizeof *head);
        const std::size_t index = head->index;
        require(index < pool.pieces.size() && pool.pieces[index] == head,
                "a piece that is released is one of the pool");
        Head* const last = pool.pieces.back();
        pool.pieces[index] = last;
        pool.pieces.pop_back();
        ASAN_UNPOISON_MEMORY_REGION(last, sizeof *last);
        last->index = index;
        ASAN_POISON_MEMORY_REGION(last, sizeof *last);
        endPiece(head);
        return QV_OK;
    }

    static QVStatus end(QVGeneric* self) {
        auto* const pool = static_cast<FuzzPool*>(reinterpret_cast<QVPool*>(self));
        std::ranges::for_each(pool->pieces, endPiece);
        --*pool->alive;
        delete pool;
        return QV_OK;
    }
};

}  // namespace

FuzzHost& FuzzHost::get() {
    static FuzzHost host;
    return host;
}

FuzzHost::FuzzHost() {
    QVPortableOptions options{};
    options.structSize = sizeof options;
    options.journalCallback = [](void*, const char*, size_t) {};
    options.maxDepth = kMaxDepth;
    require(qvPortableStart(&options, &real_) == QV_OK, "the host starts");
    handle_.owner = this;
    handle_.jnl = real_->jnl;
    handle_.nls = real_->nls;
    handle_.createPool = [](QVHndlp host, const QVPoolParms*, const QVChar*, QVStrSize) -> QVPoolh {
        auto* const pool = new FuzzPool{};
        pool->generic.destroy = FuzzPool::end;
        pool->allocate = FuzzPool::obtain;
        pool->reallocate = FuzzPool::resize;
        pool->release = FuzzPool::drop;
        pool->alive = &of(host)->poolsAlive_;
        ++*pool->alive;
        return pool;
    };
    handle_.loadExtension = [](QVHndlp host, const QVChar* name, QVStrSize nameLen, QVJnlh jnl) {
        QVHndlp real = of(host)->real_;
        return real->loadExtension(real, name, nameLen, jnl);
    };
    handle_.createTracker = [](QVHndlp host, int32_t kind, int32_t types, const QVChar* name,
                               QVStrSize nameLen) {
        QVHndlp real = of(host)->real_;
        return real->createTracker(real, kind, types, name, nameLen);
    };
    handle_.qvmrlmem = [](QVHndlp host, uint64_t* bytes) {
        *bytes = of(host)->spilling_ ? 0 : UINT64_MAX;
        return QV_OK;
    };
    qvPortableInstall(&handle_);
    require(qvPortableRegister(real_, "qvejmap", qvejmap) == QV_OK, "the engine is known");
    engine_ = reinterpret_cast<UserJMAP_S*>(real_->loadExtension(real_, U"qvejmap", 7, real_->jnl));
    require(engine_ != nullptr, "the engine loads");
    const bool shared = std::filesystem::is_directory("/dev/shm");
    const std::filesystem::path folder =
        shared ? "/dev/shm" : std::filesystem::temp_directory_path();
    cacheFile_ = folder / ("qvejmap-fuzz-" + std::to_string(getpid()));
}

}  // namespace jmap::fuzz
