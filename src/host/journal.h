// Journals: one note, one line.
//
// A note is formatted (see wide_format.h) and leaves as UTF-8 in one piece before `write` returns.
// The bytes of "%hs" belong to the document's encoding, which a journal does not know: they pass
// through unchanged.
//   callback       gets the note's bytes exactly, control characters included
//   file, stderr   get a line each; control characters are written as \u00XX, so that a note is one
//                  line whatever the document holds and cannot steer a terminal
//
// May be used by several threads; their notes do not mix.
//
// Tested by tests/host/journal_test.cpp
#pragma once

#include "qvehost.h"
#include "qvportable.h"

#include <memory>
#include <mutex>
#include <string>

namespace qvhost {

class Journal : public QVJnl {
   public:
    // The journal that the options ask for.  Null when its file cannot be opened.
    [[nodiscard]] static std::unique_ptr<Journal> open(const QVPortableOptions& options);
    // One that belongs to its user.
    [[nodiscard]] static QVStatus make(void (*callback)(void* arg, const char* note,
                                                        size_t noteLen),
                                       void* arg, QVJnlh* out);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

   private:
    Journal() noexcept;
    static QVStatus endJournal(QVGeneric* self);
    static QVStatus writeNote(QVJnlh jnl, int32_t kind, const QVChar* fmt, QVStrSize fmtLen,
                              va_list args);
    QVStatus emit(const std::string& note);

    std::mutex mutex_;
    void (*callback_)(void* arg, const char* note, size_t noteLen) = nullptr;
    void* callbackArg_ = nullptr;
    int fd_ = -1;
    bool ownsFd_ = false;
};

}  // namespace qvhost
