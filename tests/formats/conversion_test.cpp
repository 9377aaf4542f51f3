// Conversions without a command line: where they go, what they tell, what an early end leaves.
#include "formats/conversion.h"

#include "client/error.h"
#include "client/find/table_choice.h"
#include "client/open/open_document.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace jmap::test {
namespace {

using qvej::ConversionTarget;
using qvej::OpenDocument;
using qvej::OutputPlace;
using qvej::TableConversion;

namespace fs = std::filesystem;

// An array of so many objects, with a table below.
std::string objects(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "[" : ",\n") + std::string(R"({"id":)") + std::to_string(i) +
                R"(,"items":[{"sku":"a"},{"sku":"b"}]})";
    }
    return text + "]";
}

std::size_t entriesOf(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

ConversionTarget csv(const fs::path& out) {
    return {.out = out, .format = qvej::findFormat("csv")};
}

TEST(Conversion, NamesSayFormatsAndPlaces) {
    constexpr struct {
        const char *out, *format;
        OutputPlace place, asCsv;
    } kCases[] = {
        {"out", "csv", OutputPlace::DIRECTORY, OutputPlace::DIRECTORY},
        {"a/b.DB", "sqlite", OutputPlace::STORE_FILE, OutputPlace::DIRECTORY},
        {"b.xlsx", "xlsx", OutputPlace::STORE_FILE, OutputPlace::DIRECTORY},
        {"b.parquet", "parquet", OutputPlace::TABLE_FILE, OutputPlace::DIRECTORY},
        {"postgresql://h/d", "postgres", OutputPlace::DATABASE, OutputPlace::DIRECTORY},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.out);
        EXPECT_EQ(qvej::formatOf(c.out), c.format);
        EXPECT_EQ(qvej::placeOf(c.out, *qvej::findFormat(c.format)), c.place);
        EXPECT_EQ(qvej::placeOf(c.out, *qvej::findFormat("csv")), c.asCsv);
    }
    EXPECT_EQ(qvej::placeOf("out", *qvej::findFormat("sqlite")), OutputPlace::STORE_FILE);
    for (const auto& [out, format] :
         {std::pair("postgresql://u:secret@h/d", "csv"), std::pair("file.db", "postgres")}) {
        try {
            qvej::checkTarget({.out = out, .format = qvej::findFormat(format)});
            ADD_FAILURE() << out;
        } catch (const qvej::Error& error) {
            EXPECT_EQ(QV_BADPARMS, error.status());
            EXPECT_EQ(std::string::npos, error.file().find("secret"));
        }
    }
}

TEST(Conversion, OfOpenDocumentsAppearsWithItsCommit) {
    const std::string text = R"([{"id":1,"n":2.5},{"id":2,"n":"x"}])";
    const ScratchFolder folder;
    const OpenDocument open({.memory = text});
    std::vector<qvej::ConversionPhase> phases;
    uint64_t rows = 0;
    TableConversion conversion(
        open.document(), qvej::each(open.document().tables()), csv(folder.path / "out"),
        {.onPhase = [&](qvej::ConversionPhase phase) { phases.push_back(phase); },
         .onRows = [&](uint64_t more) { rows += more; }});
    conversion.write();
    EXPECT_FALSE(fs::exists(folder.path / "out" / "root.csv"));
    EXPECT_EQ(conversion.destination().commit(nullptr), std::vector<std::string>{});
    EXPECT_EQ(folder.read("out/root.csv"), "ordinal_root,id,n\r\n1,1,2.5\r\n2,2,x\r\n");
    ASSERT_EQ(conversion.schema().tables.size(), 1u);
    EXPECT_EQ(conversion.schema().tables[0].rows, 2u);
    using enum qvej::ConversionPhase;
    EXPECT_EQ(phases, (std::vector{ROWS, END}));
    EXPECT_EQ(rows, 2u);
}

TEST(Conversion, LeavesNothingWhenItIsEnded) {
    struct Interrupted {};
    const std::string text = objects(20'000);
    const OpenDocument open({.memory = text});
    for (const unsigned threads : {1u, 2u}) {
        for (const bool phase : {false, true}) {
            const ScratchFolder folder;
            const auto stop = [](auto) { throw Interrupted(); };
            qvej::ConversionOptions options = {.threads = threads};
            (phase ? void(options.onPhase = stop) : void(options.onRows = stop));
            EXPECT_THROW(TableConversion(open.document(), qvej::each(open.document().tables()),
                                         csv(folder.path / "made" / "out"), options)
                             .write(),
                         Interrupted);
            EXPECT_EQ(entriesOf(folder.path), 0u) << threads << phase;
        }
    }
}

}  // namespace
}  // namespace jmap::test
