// Where notes go.
//
// Tested by tests/host/journal_test.cpp
#include "host/journal.h"

#include "host/rim.h"
#include "host/wide_format.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace qvhost {

namespace {

// The host owns its journal; ending it through the table does nothing.
QVStatus keepJournal(QVGeneric* /*self*/) {
    return QV_OK;
}

// Every note is out when `write` returns.
QVStatus flushJournal(QVJnlh /*jnl*/) {
    return QV_OK;
}

void appendEscape(std::string& line, unsigned char c) {
    static constexpr std::string_view kHex = "0123456789abcdef";
    line += "\\u00";
    line += kHex[c >> 4U];
    line += kHex[c & 15U];
}

// The note as a line: control characters (also U+0080 to U+009F as UTF-8) are escaped.
std::string lineOf(std::string_view note) {
    std::string line;
    line.reserve(note.size() + 1);
    for (std::size_t i = 0; i < note.size(); ++i) {
        const auto c = static_cast<unsigned char>(note[i]);
        const auto next = i + 1 < note.size() ? static_cast<unsigned char>(note[i + 1]) : 0U;
        if (c < 0x20 || c == 0x7F) {
            appendEscape(line, c);
        } else if (c == 0xC2 && next >= 0x80 && next <= 0x9F) {
            appendEscape(line, static_cast<unsigned char>(next));
            ++i;
        } else {
            line += note[i];
        }
    }
    line += '\n';
    return line;
}

QVStatus writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return errno == ENOSPC || errno == EDQUOT ? QV_IO_FULL : QV_IO_WRITE;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return QV_OK;
}

}  // namespace

Journal::Journal() noexcept : QVJnl{} {
    std::memcpy(generic.tag, "jrnl", sizeof generic.tag);
    generic.destroy = &keepJournal;
    write = &Rim<&writeNote>::call;
    flush = &flushJournal;
}

Journal::~Journal() {
    if (ownsFd_) {
        ::close(fd_);
    }
}

std::unique_ptr<Journal> Journal::open(const QVPortableOptions& options) {
    std::unique_ptr<Journal> journal(new Journal);
    if (options.journalCallback != nullptr) {
        journal->callback_ = options.journalCallback;
        journal->callbackArg_ = options.journalArg;
    } else if (options.journalFile != nullptr) {
        // Notes may show what the document holds, so a new file is for this user only.
        constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
        journal->fd_ = ::open(options.journalFile, kFlags, 0600);
        if (journal->fd_ < 0) {
            return nullptr;
        }
        journal->ownsFd_ = true;
    } else {
        journal->fd_ = STDERR_FILENO;
    }
    return journal;
}

QVStatus Journal::make(void (*callback)(void* arg, const char* note, size_t noteLen), void* arg,
                       QVJnlh* out) {
    auto* journal = new Journal;
    journal->generic.destroy = &endJournal;
    journal->callback_ = callback;
    journal->callbackArg_ = arg;
    *out = journal;
    return QV_OK;
}

QVStatus Journal::endJournal(QVGeneric* self) {
    delete static_cast<Journal*>(reinterpret_cast<QVJnlh>(self));  // it begins with its head
    return QV_OK;
}

QVStatus Journal::writeNote(QVJnlh jnl, int32_t /*kind*/, const QVChar* fmt, QVStrSize fmtLen,
                            va_list args) {
    const std::string note = formatUtf8(fmt, fmtLen, args);
    return static_cast<Journal*>(jnl)->emit(note);
}

QVStatus Journal::emit(const std::string& note) {
    const std::lock_guard lock(mutex_);
    if (callback_ != nullptr) {
        callback_(callbackArg_, note.data(), note.size());
        return QV_OK;
    }
    return writeAll(fd_, lineOf(note));
}

}  // namespace qvhost
