// Every operation of the engine once, in an order in which each has what it needs, for tests that
// make one of them fail.
#pragma once

#include "qvejmap.h"
#include "qvejmapx.h"

#include "core/context.h"
#include "core/readctx.h"
#include "core/text.h"

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace jmap::test {

// All faults, not a sample: JMAP_LONG=1 in the environment (scripts/test --long).
inline bool isLong() {
    const char* wanted = std::getenv("JMAP_LONG");
    return wanted != nullptr && std::string_view(wanted) == "1";
}

// How the records of a document are kept.
struct Keeping {
    const char* name;
    bool compress = false;
    bool spill = false;  // needs a file
    int rows = 2;
    const char* debug = "";
};

// A document on its way through the operations.  What is still open ends with it.
class Stage {
   public:
    // `around`: called with true before and with false after each call of the engine.
    Stage(UserJMAP_S* on, QVJnlh to, const Keeping& how, std::string cacheFile,
          void (*around)(bool) = nullptr)
        : engine(on), jnl(to), keeping(how), file(std::move(cacheFile)), around_(around) {}
    ~Stage() { (void)end(); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // Calls the engine.
    template <class Call>
    auto ask(Call call) {
        if (around_ != nullptr) {
            around_(true);
        }
        const auto answer = call();
        if (around_ != nullptr) {
            around_(false);
        }
        return answer;
    }

    // Ends what is open; the status of Term.
    QVStatus end();
    // Whether the engine tells that the document is not whole.
    [[nodiscard]] bool lossTold() const;

    UserJMAP_S* const engine;
    QVJnlh const jnl;
    const Keeping keeping;
    const std::string file;  // cache file; "DIR/": one without a name
    QVEJMAPJsonContexth doc = nullptr;
    QVMemPtr automap = nullptr;
    QVEJMAPMapContexth mapContext = nullptr;
    QVMemPtr userMap = nullptr;
    bool writer = false;
    QVEJMAPReadContexth table = nullptr;
    QVStatus rawStatus = QV_OK;  // of the texts of columns with an informat
    JMAPRecordCursorh cursor = nullptr;
    JMAPTableh newTable = nullptr;
    JMAPPassh pass = nullptr;
    std::string out;  // all that the operations gave

   private:
    void (*around_)(bool);
};

struct Operation {
    const char* name;
    QVStatus (*run)(Stage& s);  // QV_OK when it did all it should
};

// In the order in which they run.  The last one is Term.
const std::vector<Operation>& operations();

struct Played {
    std::string out;
    size_t failed = SIZE_MAX;  // the operation
    QVStatus status = QV_OK;   // of the last one
    bool told = false;         // the totals tell of a loss
};

// Plays the operations up to the first that fails or tells of a loss, and ends what is open.
// `around` is called before and after each.
Played play(
    Stage& stage, const std::function<void(size_t at, bool begins)>& around = [](size_t, bool) {});

// What came of faults, by operation and kind.
class Tally {
   public:
    void add(const std::string& fault, const Played& played);
    [[nodiscard]] bool has(const std::string& fault) const { return outcomes_.contains(fault); }
    // A line for each, of a long run.
    void print() const;

   private:
    // The operation failed; it did not, but the totals tell of a loss; nothing is missing.
    using Outcomes = std::array<uint64_t, 3>;
    std::map<std::string, Outcomes> outcomes_;
};

}  // namespace jmap::test
