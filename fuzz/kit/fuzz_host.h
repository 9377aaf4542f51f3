// One host for all inputs of a run.
//
// It is the portable one, except for its pools: each piece is an allocation of its own, so that the
// sanitizer sees where it ends and what is used after its release.  Only the blocks of records, a
// mebibyte each, are kept and used again, since most inputs fill a few hundred bytes of them.
#pragma once

#include "qvejmap.h"
#include "qvportable.h"

#include <cstdint>
#include <string>

namespace jmap::fuzz {

inline constexpr uint64_t kMaxDepth = 100;  // of a document

class FuzzHost {
   public:
    static FuzzHost& get();

    [[nodiscard]] UserJMAP_S* engine() const { return engine_; }
    [[nodiscard]] QVHndlp handle() const { return real_; }
    [[nodiscard]] QVJnlh journal() const { return real_->jnl; }  // formats notes and drops them
    // From now on there seems to be no memory left, so that blocks go to the cache file.
    void setSpilling(bool on) { spilling_ = on; }
    // A name for a cache file, in memory where the system offers that.
    [[nodiscard]] const std::string& cacheFile() const { return cacheFile_; }
    // Pools that have not been ended.
    [[nodiscard]] int64_t poolsAlive() const { return poolsAlive_; }

   private:
    // What the engine sees; the slots find the way back.
    struct Handle : QVHndl {
        FuzzHost* owner;
    };
    FuzzHost();
    static FuzzHost* of(QVHndlp host) { return static_cast<Handle*>(host)->owner; }

    QVHndlp real_ = nullptr;
    Handle handle_{};
    UserJMAP_S* engine_ = nullptr;
    bool spilling_ = false;
    int64_t poolsAlive_ = 0;
    std::string cacheFile_;
};

}  // namespace jmap::fuzz
