#include "kit/fuzz_host.h"

#include "kit/require.h"

#include <filesystem>

namespace jmap::fuzz {

FuzzHost& FuzzHost::get() {
    static FuzzHost host;
    return host;
}

FuzzHost::FuzzHost() {
    QVPortableOptions options{};
    options.structSize = sizeof options;
    options.journalCallback = [](void*, const char*, size_t) {};
    options.maxDepth = kMaxDepth;
    require(qvPortableStart(&options, &handle_) == QV_OK, "the host starts");
    require(qvPortableRegister(handle_, "qvejmap", qvejmap) == QV_OK, "the engine is known");
    engine_ =
        reinterpret_cast<UserJMAP_S*>(handle_->loadExtension(handle_, U"qvejmap", 7, handle_->jnl));
    require(engine_ != nullptr, "the engine loads");
}

std::u32string FuzzHost::cacheFile() {
    const bool shared = std::filesystem::is_directory("/dev/shm");
    return shared ? U"/dev/shm/" : (std::filesystem::temp_directory_path() / "").u32string();
}

uint64_t FuzzHost::poolsAlive() const {
    QVPortableCounts counts{};
    qvPortableCounts(handle_, &counts);
    return counts.poolsAlive;
}

}  // namespace jmap::fuzz
