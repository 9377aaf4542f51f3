// Conversions at the same time, as other programs than the tool may have them: the handlers of
// signals, which know two outputs, are the tool's alone.
#include "client/find/table_choice.h"
#include "client/open/open_document.h"
#include "formats/conversion.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace jmap::test {
namespace {

TEST(ConversionThreads, DoNotMeet) {
    constexpr int kThreads = 4;
    const ScratchFolder folder;
    const auto convert = [&](int number) {
        std::string text = "[";
        for (int i = 0; i <= number; ++i) {
            text += (i == 0 ? "" : ",") + std::string(R"({"id":1,"items":[{"sku":"a"}]})");
        }
        text += "]";
        for (int again = 0; again < 10; ++again) {
            const qvej::OpenDocument open({.memory = text});
            qvej::TableConversion conversion(open.document(), qvej::each(open.document().tables()),
                                             {.out = folder.path / std::to_string(number),
                                              .format = qvej::findFormat("csv"),
                                              .force = true});
            conversion.write();
            (void)conversion.destination().commit(nullptr);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back(convert, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < kThreads; ++i) {
        const std::string rows = folder.read(std::to_string(i) + "/items.csv");
        EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 2 + i);
    }
}

}  // namespace
}  // namespace jmap::test
