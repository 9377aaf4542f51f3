// Giving files their names so that none is lost on the way.
//
// Tested by tests/formats/renaming_test.cpp
#pragma once

#include <string>

namespace qvej {

// Gives `from` the name `to`, which nothing may have.  Throws qvej::Error; nothing has changed
// then, or the sentence says what has.
void renameToNew(const std::string& from, const std::string& to);

// Exchanges the names of two files.  Throws qvej::Error, about `b`; likewise.
void exchangeNames(const std::string& a, const std::string& b);

// The system calls, which tests replace.
struct FileCalls {
    int (*rename)(const char* from, const char* to, unsigned flags);
    int (*link)(const char* from, const char* to);
    int (*unlink)(const char* path);
};
extern FileCalls fileCalls;

}  // namespace qvej
