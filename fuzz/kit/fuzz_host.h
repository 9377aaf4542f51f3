// One host for all inputs of a run: the portable one, whose pools hide from the address sanitizer
// all that is not in use.
#pragma once

#include "qvejmap.h"
#include "qvportable.h"

#include <string>

namespace jmap::fuzz {

inline constexpr uint64_t kMaxDepth = 100;  // of a document

class FuzzHost {
   public:
    static FuzzHost& get();

    [[nodiscard]] UserJMAP_S* engine() const { return engine_; }
    [[nodiscard]] QVHndlp handle() const { return handle_; }
    // From now on there seems to be no memory left, so that blocks go to the cache file.
    void setSpilling(bool on) { qvPortableSetBudget(handle_, on ? 1 : 0); }
    // The folder of a cache file without a name, in memory where the system offers that.
    [[nodiscard]] static std::u32string cacheFile();
    [[nodiscard]] uint64_t poolsAlive() const;

   private:
    FuzzHost();

    QVHndlp handle_ = nullptr;
    UserJMAP_S* engine_ = nullptr;
};

}  // namespace jmap::fuzz
