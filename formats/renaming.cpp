// See renaming.h.
//
// Where the file system knows no flags of renameat2, several steps take the place of one.  When a
// later one fails, the earlier ones are undone.
#include "formats/renaming.h"

#include "client/error.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace qvej {

namespace {

int systemRename(const char* from, const char* to, unsigned flags) {
    return flags == 0 ? std::rename(from, to) : ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags);
}

bool rename(const std::string& from, const std::string& to, unsigned flags = 0) {
    return fileCalls.rename(from.c_str(), to.c_str(), flags) == 0;
}

bool unlink(const std::string& path) {
    return fileCalls.unlink(path.c_str()) == 0;
}

// Did a rename fail because the file system does not know its flag?
bool flagUnknown() {
    return errno == EINVAL || errno == ENOSYS;
}

// The failure that errno tells, with what could not be undone; empty: nothing.
Error failureOf(const std::string& file, const Error& failure, const std::string& remains) {
    return remains.empty()
               ? failure
               : Error(failure.status(), std::string(failure.what()) + "; " + remains, file);
}

}  // namespace

FileCalls fileCalls = {systemRename, ::link, ::unlink};

void renameToNew(const std::string& from, const std::string& to) {
    if (rename(from, to, RENAME_NOREPLACE)) {
        return;
    }
    // A link never replaces either.
    if (!flagUnknown() || fileCalls.link(from.c_str(), to.c_str()) != 0) {
        throw fileError(QV_IO_WRITE, to);
    }
    if (!unlink(from)) {
        const Error failure = fileError(QV_IO_WRITE, to);
        throw failureOf(to, failure, unlink(to) ? "" : "the new file is there already");
    }
}

void exchangeNames(const std::string& a, const std::string& b) {
    if (rename(a, b, RENAME_EXCHANGE)) {
        return;
    }
    const std::string aside = a + "-aside";
    if (!flagUnknown() || !rename(b, aside)) {
        throw fileError(QV_IO_WRITE, b);
    }
    const bool placed = rename(a, b);
    if (placed && rename(aside, a)) {
        return;
    }
    const Error failure = fileError(QV_IO_WRITE, b);
    const bool undone = (!placed || rename(b, a)) && rename(aside, b);
    throw failureOf(b, failure, undone ? "" : "the file that was there is now " + aside);
}

}  // namespace qvej
