// Engines and documents on several threads: limits and notes are of one document alone.  Also for
// ThreadSanitizer (scripts/test tsan).
#include "client/engine.h"

#include "qvportable.h"

#include "client/cursor.h"
#include "client/error.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using qvej::Document;
using qvej::DocumentOptions;
using qvej::Engine;

// Runs it with 0 and with 1, on two threads at once.
void onTwoThreads(const std::function<void(int)>& work) {
    std::thread first(work, 0), second(work, 1);
    first.join();
    second.join();
}

void feed(Document& document, const DocumentOptions& options, std::string_view text) {
    if (options.several) {
        document.beginText("a", {});
        document.feed(text);
        document.endText();
    } else {
        document.feed(text);
    }
    document.finish();
}

// QV_OK, or why the document is refused.
QVStatus statusOf(Engine& engine, const DocumentOptions& options, std::string_view text) {
    try {
        Document document(engine, options);
        feed(document, options, text);
        return QV_OK;
    } catch (const qvej::Error& error) {
        return error.status();
    }
}

// The rows of the only table.
std::string rowsOf(const Document& document) {
    std::string rows;
    qvej::Cursor cursor(document, document.tables().at(0));
    while (cursor.next()) {
        rows += std::to_string(static_cast<int>(cursor.cell(1).number)) + ";";
    }
    return rows;
}

TEST(Engine, LivesAsLongAsItsUserWhateverOthersDo) {
    EXPECT_EQ(qvGlobalHandle(), nullptr);
    {
        auto first = std::make_unique<Engine>();
        Engine second;
        Document document(second);
        document.feed(R"([{"v":1},)");
        first.reset();  // not in reverse order
        document.feed(R"({"v":2}])");
        first = std::make_unique<Engine>();
        document.finish();
        EXPECT_EQ(rowsOf(document), "1;2;");
    }
    EXPECT_EQ(qvGlobalHandle(), nullptr);
    onTwoThreads([](int /*thread*/) {
        for (int turn = 0; turn < 20; ++turn) {
            Engine engine;
            Document document(engine);
            document.feed(R"([{"v":3},{"v":4}])");
            document.finish();
            EXPECT_EQ(rowsOf(document), "3;4;");
        }
    });
    EXPECT_EQ(qvGlobalHandle(), nullptr);
}

TEST(Document, HasADepthOfItsOwn) {
    Engine engine;
    qvej::Shape shape;
    shape.addRule("drop /root/x");
    const struct {
        const char* name;
        DocumentOptions options;
    } kForms[] = {
        {"one document", {}},
        {"lines", {.lines = true}},
        {"several texts", {.several = true}},
        {"a shape", {.shape = shape}},
    };
    onTwoThreads([&](int thread) {
        for (const auto& form : kForms) {
            SCOPED_TRACE(form.name);
            DocumentOptions options = form.options;
            for (const std::size_t most : {3, 7, 0}) {
                options.maxDepth = most == 0 ? 0 : most + static_cast<std::size_t>(thread);
                for (std::size_t depth = 1; depth < 10; ++depth) {
                    const std::string text = std::string(depth, '[') + std::string(depth, ']');
                    const bool fits = most == 0 || depth <= options.maxDepth;
                    EXPECT_EQ(statusOf(engine, options, text), fits ? QV_OK : QV_JSON_DEPTH)
                        << depth << " of " << options.maxDepth;
                }
            }
        }
    });
}

TEST(Document, HasNotesOfItsOwn) {
    Engine engine;
    onTwoThreads([&](int thread) {
        const std::string name = thread == 0 ? "zero" : "one";
        for (int turn = 0; turn < 20; ++turn) {
            std::string notes;
            DocumentOptions options;
            options.description = name;
            options.debug = ",LEVEL,";
            options.several = turn % 2 == 1;
            options.journal = [&](std::string_view note) {
                notes += note.starts_with("Parsing") ? std::string(note) + "|" : "";
            };
            EXPECT_EQ(statusOf(engine, options, R"({"v":1})"), QV_OK);
            EXPECT_EQ(notes, "Parsing of " + name + " begins|Parsing of " + name + " ends|");
        }
    });
}

TEST(Document, HasABudgetOfItsOwn) {
    constexpr uint64_t kMiB = uint64_t{1} << 20;
    Engine engine;
    onTwoThreads([&](int thread) {
        // One has too little, the other one has none.
        EXPECT_EQ(statusOf(engine, {.memoryBudget = thread == 0 ? 0U : 1U}, R"({"v":1})"),
                  thread == 0 ? QV_OK : QV_LIMIT_MEMORY);

        // Less than is to be kept free is left by the budget, but not by the machine.
        DocumentOptions options;
        options.keepFree = 128 * kMiB;
        options.memoryBudget = thread == 0 ? 0 : qvPortableHeld(engine.host()) + 64 * kMiB;
        Document document(engine, options);
        feed(document, options, R"([{"v":5}])");
        EXPECT_EQ(document.totals().blocksOnDisk, thread == 0 ? 0 : 1);
        EXPECT_EQ(rowsOf(document), "5;");
    });
}

}  // namespace
