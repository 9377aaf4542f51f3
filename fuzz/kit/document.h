// A scanned document, and texts for everything of it that must not depend on how it was scanned.
#pragma once

#include "qvejmapx.h"

#include "kit/fuzz_host.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace jmap::fuzz {

struct ScanWay {
    std::size_t split = 0;  // bytes of each buffer; 0: one buffer
    bool emptyEnd = false;  // the last buffer is empty
    bool compress = false;
    bool spill = false;
    bool notes = false;  // every debug keyword
};

class Document {
   public:
    explicit Document(std::string_view json, const ScanWay& way = {});
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // Parses a user map in buffers of `split` bytes (0: one) and gives its errorText.
    std::string readMap(std::string_view map, std::size_t split) const;

    QVStatus status = QV_OK;  // of the last JsonInput
    QVEJMAPJsonContexth handle = nullptr;

    [[nodiscard]] UserJMAP_S* engine() const { return FuzzHost::get().engine(); }
    [[nodiscard]] QVMemPtr automap() const;
    [[nodiscard]] QVMemPtr usermap() const;  // with its lengths settled

    // The errorText of a document that could not be read, else nothing.
    [[nodiscard]] std::string failure() const;
    [[nodiscard]] std::string records() const;
    [[nodiscard]] std::string statistics() const;
    [[nodiscard]] std::string mapDocument() const;

   private:
    QVJnlh journal_;
};

// Status, place, token, and what else the last buffer of a map tells, in a line.
std::string errorText(QVStatus status, const ERRORINFO& e);

// The text without the first bytes of a character at its end, which a text has that was cut at a
// limit, and which JSON cannot hold.
std::string_view wholeText(std::string_view text);

// The path of a table, a column or a statistic, which `write` writes.
template <class Handle>
std::string pathOf(void (*write)(Handle, char*), Handle handle, QVStrSize pathLen) {
    std::string path(static_cast<std::size_t>(pathLen), '\0');
    write(handle, path.data());
    return path;
}

// A text as JSON writes it, with its quotes.
std::string quoted(std::string_view text);

inline std::string_view textOf(const char* text, QVStrSize textLen) {
    return {text, static_cast<std::size_t>(textLen)};
}

// Calls `take` with the text in buffers of `split` bytes (0: one) and whether it is the last one.
// Each is a copy that ends where its memory ends, so that a sanitizer sees a read past it.
template <class Take>
void inBuffers(std::string_view text, std::size_t split, bool emptyEnd, const Take& take) {
    for (bool done = false; !done;) {
        const std::string_view part = text.substr(0, split == 0 ? text.size() : split);
        text.remove_prefix(part.size());
        done = text.empty() && (!emptyEnd || part.empty());
        char* const copy = new char[part.size()];
        part.copy(copy, part.size());
        const bool more = take(copy, static_cast<QVStrSize>(part.size()), done);
        delete[] copy;
        if (!more) {
            return;
        }
    }
}

}  // namespace jmap::fuzz
