// qvejmap find: where values of a document are, a line each: line, column, path and value,
// separated by TABs, and before them the file, when there may be several.  Control characters and
// backslashes appear as JSON escapes.
//
// Tested by tests/tool/golden/find.t
#include "client/escape.h"
#include "client/find/value_test.h"
#include "client/find/value_walk.h"
#include "formats/writer.h"
#include "tools/cli/options/option_values.h"
#include "tools/cli/session.h"
#include "tools/cli/verbs/verbs.h"

#include <charconv>
#include <optional>
#include <utility>

namespace qvej::cli {

namespace {

struct EnoughFound {};  // thrown to leave the rest of the document unread

void writeNumber(Writer& out, int64_t number) {
    char digits[20];
    out.append(std::string_view(digits, std::to_chars(digits, std::end(digits), number).ptr));
}

// `file`: stands before the place; empty: it does not.
void writeFound(Writer& out, const std::string& file, const FoundValue& value) {
    if (!file.empty()) {
        appendEscaped(out, file, CONTROLS | BACKSLASH);
        out.put('\t');
    }
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

// What the options look for.
ValueTest testOf(const Options& options) {
    try {
        return ValueTest(options.value, options.regex, options.ignoreCase);
    } catch (const Error& error) {
        usageError((options.value ? "--value: " : "--regex: ") + std::string(error.what()));
    }
}

}  // namespace

ExitCode runFind(const Options& options) {
    const ValueTest test = testOf(options);
    const Engine engine;
    Writer out = standardOutput();
    uint64_t left = options.limit;
    Skipped skipped;
    const auto walkOver = [&](ByteSource source) {
        DocumentReader reader(std::move(source), options.reading.text);
        const auto take = [&](const FoundValue& value) {
            if (left != 0) {
                writeFound(out, options.inputs.several ? reader.name() : std::string(), value);
            }
            if (left <= 1) {
                throw EnoughFound{};
            }
            --left;
        };
        PromptWalk walk(out, engine, reader.documentOptions({.maxDepth = options.reading.depth}),
                        options.paths, test, take);
        try {
            readText(options.reading, engine, reader, walk,
                     [&](const BadLine& line) { skipped.takeLine(reader.name(), line); });
        } catch (const Error& error) {
            out.flush();
            failReading(options.reading, reader, error);
        }
    };
    try {
        bool good = false;
        for (const std::string& name : options.inputs.files) {
            if (!options.reading.skipBadFiles) {
                walkOver(ByteSource::file(name));
                continue;
            }
            RereadableFile file(name);
            const std::optional<Error> mistake =
                mistakeOf(options.reading, engine, [&] { return file.walk(); });
            if (!mistake) {
                good = true;
                walkOver(file.walk());
            } else if (!good && &name == &options.inputs.files.back()) {
                throw AllBad(*mistake);
            } else {
                skipped.takeFile(*mistake);
            }
        }
    } catch (const EnoughFound&) {
        // The matches that were asked for have been written.
    }
    out.flush();
    skipped.tellLines();
    return skipped.exitCode();
}

}  // namespace qvej::cli
