// The status table of docs/FORMATS.md is that of qvstatus.h.
#include "testkit/testkit.h"

#include <fstream>

namespace jmap::test {
namespace {

std::string row(const std::string& name, const std::string& value, const std::string& sentence) {
    const std::string bare = value.substr(0, value.find('u'));  // without a constant's suffix
    return "| " + name + " | " + bare + " | " + sentence + " |\n";
}

TEST(StatusTable, OfTheDocumentEqualsThatOfTheHeader) {
#define ROW(name, value, sentence) +row(#name, #value, sentence)
    const std::string expected = "| name | value | meaning |\n|---|---|---|\n" QV_STATUS_LIST(ROW);
#undef ROW
    std::ifstream document(JMAP_SOURCE_DIR "/docs/FORMATS.md");
    std::string found;
    bool inSection = false;
    for (std::string line; std::getline(document, line);) {
        inSection = line.starts_with("## ") ? line == "## Status codes" : inSection;
        found += inSection && line.starts_with("|") ? line + "\n" : "";
    }
    EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace jmap::test
