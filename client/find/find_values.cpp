// See find_values.h.
#include "client/find/find_values.h"

namespace qvej {

namespace {

struct EnoughFound {};  // thrown to leave the rest of the texts unread

}  // namespace

void findValues(const OpenDocument& open, const std::vector<PathPattern>& patterns,
                const ValueTest& test, const TakeFound& take) {
    const auto walkOver = [&](DocumentReader& reader, const DocumentOptions& options) {
        ValueWalk walk(open.document().engine(), options, patterns, test,
                       [&](const FoundValue& value) {
                           if (!take(reader.name(), value)) {
                               throw EnoughFound{};
                           }
                       });
        reader.read(walk);
    };
    try {
        open.readAgain(walkOver);
    } catch (const EnoughFound&) {
        // What was wanted has been given.
    }
}

}  // namespace qvej
