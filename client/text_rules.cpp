// See text_rules.h.
#include "client/text_rules.h"

namespace qvej {

JSNTextRules textRules(const DocumentOptions& options, std::function<int64_t(int64_t)>& columnOf) {
    JSNTextRules rules = {};
    rules.lines = options.lines ? 1 : 0;
    rules.sequence = options.sequence ? 1 : 0;
    rules.maxDepth = options.maxDepth;
    if (columnOf) {
        rules.arg = &columnOf;
        rules.columnOf = [](void* arg, int64_t offset) {
            return (*static_cast<std::function<int64_t(int64_t)>*>(arg))(offset);
        };
    }
    return rules;
}

}  // namespace qvej
