// Sentences that the pages of help and the manual page share.
#pragma once

#include <string_view>

namespace qvej::cli {

inline constexpr std::string_view kSummary = "Reads a JSON document and presents it as tables.\n";

inline constexpr std::string_view kNotes =
    R"(FILE may be "-" for standard input, and may be compressed with gzip or zstd.
SIZE is a number of bytes, or of 1024 bytes and its powers with K, M, G or T.
Options work in any position.  A file that is named like a verb is written
./map.
)";

inline constexpr std::string_view kExitCodes =
    R"(Exit codes: 0 done, 1 done but some values were rejected, cut, overwritten or
strayed or, with --account, lost, or --skip-bad-lines or --skip-bad-files left
some out (map check, map diff: not the same), 2 wrong usage, 3 not valid JSON,
4 no such table or trouble with the map, 5 trouble with a file, 6 a limit was
reached.
)";

}  // namespace qvej::cli
