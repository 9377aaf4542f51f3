// A document that is read, and its tables.
#pragma once

#include "client/document.h"

#include <string_view>
#include <vector>

namespace jmap::test {

struct ReadDocument {
    explicit ReadDocument(std::string_view text, const qvej::DocumentOptions& options = {})
        : document(engine, options) {
        document.feed(text);
        document.finish();
    }

    [[nodiscard]] std::vector<const qvej::Table*> tables() const {
        std::vector<const qvej::Table*> all;
        for (const qvej::Table& table : document.tables()) {
            all.push_back(&table);
        }
        return all;
    }

    qvej::Engine engine;
    qvej::Document document;
};

}  // namespace jmap::test
