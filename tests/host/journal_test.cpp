#include "tests/host/host_fixture.h"

namespace qvhost::test {
namespace {

QVStatus note(QVJnlh jnl, const char32_t* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const QVStatus status = jnl->write(jnl, QV_NOTE, fmt, lengthOf(std::u32string_view(fmt)), args);
    va_end(args);
    return status;
}

TEST(Journal, GivesACallbackTheNoteAsItIsAndOthersOneCleanLine) {
    const RunningHost host;
    EXPECT_QV_OK(note(host.handle->jnl, U"path [%.*hs] count %ld", 6, "\2r\n\xE9t\x1B!", 3L));
    EXPECT_EQ(host.notes, std::vector<std::string>{"path [\2r\n\xE9t\x1B] count 3"});
    testing::internal::CaptureStderr();
    EXPECT_QV_OK(note(RunningHost(nullptr, "").handle->jnl, U"%4.2g %% of original", 12.5));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "  12 % of original\n");

    const ScratchFolder folder;
    const std::string file = folder.path / "notes";
    EXPECT_QV_OK(note(RunningHost(nullptr, file.c_str()).handle->jnl, U"before"));
    const RunningHost appending(nullptr, file.c_str());
    EXPECT_QV_OK(destroy(appending.handle->jnl));  // the host keeps its journal
    EXPECT_QV_OK(note(appending.handle->jnl, U"[%hs]", "a\nb\x1B[2J\x7F\xC2\x9B\xC3\xA9\xE9"));
    EXPECT_EQ(folder.read("notes"), "before\n[a\\u000ab\\u001b[2J\\u007f\\u009b\xC3\xA9\xE9]\n");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});
    EXPECT_QV(QV_IO_FULL, note(RunningHost(nullptr, "/dev/full").handle->jnl, U"lost"));
}

TEST(Journal, MayBelongToNoHost) {
    std::vector<std::string> notes;
    const auto take = [](void* arg, const char* text, size_t textLen) {
        static_cast<std::vector<std::string>*>(arg)->emplace_back(text, textLen);
    };
    const RunningHost host;
    QVJnlh jnl = nullptr;
    EXPECT_QV(QV_BADPARMS, qvPortableJournal(nullptr, &notes, &jnl));
    ASSERT_QV_OK(qvPortableJournal(take, &notes, &jnl));
    EXPECT_QV_OK(note(jnl, U"%ld", 7L));
    EXPECT_QV_OK(destroy(jnl));
    EXPECT_EQ(notes, std::vector<std::string>{"7"});
    EXPECT_TRUE(host.notes.empty());
}

}  // namespace
}  // namespace qvhost::test
