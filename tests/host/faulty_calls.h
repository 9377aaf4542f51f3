// System calls of the file module that fail where a test says so.
#pragma once

#include "host/io/syscalls.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace qvhost::test {

// Answers of a call, used up one by one; then the system answers.  A positive answer cuts the count
// of a transfer to it, 0 makes it transfer nothing, a negative one is an errno.
template <auto Call>
inline std::vector<int> answers;
inline constexpr int kAsTheSystem = INT_MAX;

// How often it was made.
template <auto Call>
inline uint64_t callsMade = 0;

// Stands in for a call.  One that acts anyway is made even when it says that it failed.
template <auto Call, bool kActsAnyway = false>
inline constexpr auto kFaulty = [](auto... args) {
    ++callsMade<Call>;
    std::vector<int>& planned = answers<Call>;
    if (planned.empty()) {
        return (posixSyscalls().*Call)(args...);
    }
    const int next = planned.front();
    planned.erase(planned.begin());
    if constexpr (sizeof...(args) == 4) {  // a transfer
        auto& count = std::get<2>(std::tie(args...));
        count = std::min<std::size_t>(count, static_cast<unsigned>(std::max(next, 0)));
    }
    const auto made = next >= 0 || kActsAnyway ? (posixSyscalls().*Call)(args...) : -1;
    errno = next < 0 ? -next : errno;
    return next < 0 ? decltype(made){-1} : made;
};

using S = Syscalls;
inline constexpr Syscalls kFaultyCalls = {
    kFaulty<&S::open>,      kFaulty<&S::fstat>,      kFaulty<&S::fchmod>, kFaulty<&S::flock>,
    kFaulty<&S::pwrite>,    kFaulty<&S::pread>,      &::ftruncate,        kFaulty<&S::unlink>,
    kFaulty<&S::duplicate>, kFaulty<&S::close, true>};

}  // namespace qvhost::test
