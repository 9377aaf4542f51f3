// Walks over a document's text and gives the values that are looked for, as they come.
//
//     ValueWalk walk(engine, reader.documentOptions(), patterns, test, handler);
//     reader.read(walk);
//
// Paths are those of the document: an array adds no name, its elements have the path of the array.
// Memory: the path, a pair of words for each open container, and the longest token.
//
// Tested by tests/tool/golden/find.t
#pragma once

#include "../shape/path_matcher.h"
#include "../text_parser.h"
#include "value_test.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct FoundValue {
    Spot at;
    std::string_view path;  // with "/"
    std::string_view text;  // of a container its bracket
};

class ValueWalk : public TextConsumer, private JSNParseCB {
   public:
    using Handler = std::function<void(const FoundValue&)>;

    // `patterns`: a value must match one of them; none: any path will do.  Containers are found by
    // their path alone.  What the handler throws ends the walk.  Throws QV_NOMEM.
    ValueWalk(const Engine& engine, const DocumentOptions& options,
              const std::vector<PathPattern>& patterns, const ValueTest& test, Handler handler);

    void feed(std::string_view text) override;
    void finish() override;
    [[nodiscard]] Place end() const override { return parser_.end(); }

   private:
    struct Level {
        std::size_t pathSize;
        const PathMatcher::Node* node;
    };

    template <auto Routine, class... Args>
    static QVStatus guarded(JSNParseCB* cb, Args... args) noexcept;
    QVStatus open(std::string_view bracket);
    QVStatus close();
    QVStatus name(std::string_view text);
    QVStatus scalar(std::string_view text);
    QVStatus string(const JSNChar* text, QVStrSize textLen, int32_t flags);
    void found(std::string_view text);
    void rethrow();

    [[nodiscard]] bool wanted() const { return !matched_ || !node_->matched.empty(); }

    PathMatcher matcher_;
    const bool matched_;  // are there patterns?
    const ValueTest& test_;
    Handler handler_;
    // Of the value that comes next.
    std::string path_ = "/root";
    const PathMatcher::Node* node_;
    std::vector<Level> levels_;  // the open containers
    std::exception_ptr failure_;
    TextParser parser_;
};

}  // namespace qvej
