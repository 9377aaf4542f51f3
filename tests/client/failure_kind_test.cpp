#include "client/failure_kind.h"

#include <gtest/gtest.h>

#include <utility>

namespace jmap::test {
namespace {

using qvej::FailureKind;

// The first and the last of each range, what is next to them, and the exceptions in between.
TEST(FailureKinds, AreThoseOfTheStatus) {
    const std::pair<QVStatus, FailureKind> cases[] = {
        {QV_NEEDMORE, FailureKind::OTHER},
        {QV_JSON_VALUE, FailureKind::NOT_JSON},
        {QV_JSON_LINE_END, FailureKind::NOT_JSON},
        {JMAP_PARSE, FailureKind::NOT_JSON},
        {JMAP_INCOMPLETE, FailureKind::NOT_JSON},
        {QV_JSON_DEPTH, FailureKind::LIMIT},
        {QV_NOMEM, FailureKind::LIMIT},
        {QV_LIMIT_PATHS, FailureKind::LIMIT},
        {QV_LIMIT_DISK, FailureKind::LIMIT},
        {QV_LIMIT_MEMORY, FailureKind::LIMIT},
        {QV_IO_NOTFOUND, FailureKind::FILES},
        {QV_IO_DAMAGED, FailureKind::FILES},
        {QV_BADPARMS, FailureKind::USAGE},
        {QV_UNMAPPABLE, FailureKind::USAGE},
        {JMAP_NOTABLE, FailureKind::OTHER},
        {JMAP_MAP_NOPATH, FailureKind::OTHER},
        {QV_FMT_NAME, FailureKind::OTHER},
        {QV_STOPPED, FailureKind::OTHER},
    };
    for (const auto& [status, kind] : cases) {
        EXPECT_EQ(kind, qvej::kindOf(status)) << qvStatusName(status);
    }
}

}  // namespace
}  // namespace jmap::test
