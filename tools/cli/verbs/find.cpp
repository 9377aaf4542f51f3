// qvejmap find: where values of a document are, a line each: line, column, path and value,
// separated by TABs.  Control characters and backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/find.t
#include "client/escape.h"
#include "formats/writer.h"
#include "tools/cli/find/value_test.h"
#include "tools/cli/find/value_walk.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <charconv>
#include <utility>

namespace qvej::cli {

namespace {

struct EnoughFound {};  // thrown to leave the rest of the document unread

void writeNumber(Writer& out, int64_t number) {
    char digits[20];
    out.append(std::string_view(digits, std::to_chars(digits, std::end(digits), number).ptr));
}

void writeFound(Writer& out, const FoundValue& value) {
    writeNumber(out, value.at.line);
    out.put('\t');
    writeNumber(out, value.at.column);
    for (const std::string_view text : {value.path, value.text}) {
        out.put('\t');
        appendEscaped(out, text, CONTROLS | BACKSLASH);
    }
    out.put('\n');
}

// A walk whose matches do not wait for the next piece of the text, which may be long in coming.
class PromptWalk final : public ValueWalk {
   public:
    template <class... Args>
    explicit PromptWalk(Writer& out, Args&&... args)
        : ValueWalk(std::forward<Args>(args)...), out_(out) {}

    void feed(std::string_view text) override {
        ValueWalk::feed(text);
        out_.flush();
    }

   private:
    Writer& out_;
};

}  // namespace

ExitCode runFind(const Options& options) {
    const ValueTest test(options.value, options.regex, options.ignoreCase);
    DocumentReader reader(ByteSource::file(options.operands[0]), options.reading.text);
    const Engine engine({.maxDepth = options.reading.depth});
    Writer out = standardOutput();
    uint64_t left = options.limit;
    const auto take = [&](const FoundValue& value) {
        if (left != 0) {
            writeFound(out, value);
        }
        if (left <= 1) {
            throw EnoughFound{};
        }
        --left;
    };
    PromptWalk walk(out, engine, reader.documentOptions(), options.paths, test, take);
    try {
        reader.read(walk);
    } catch (const EnoughFound&) {
        // The matches that were asked for have been written.
    } catch (const Error& error) {
        out.flush();
        failReading(options.reading, reader, error);
    }
    out.flush();
    return DONE;
}

}  // namespace qvej::cli
