// Path text: with 0x02 inside the engine, with "/" for the user.
//
// Tested by tests/scan/path_text_test.cpp
#include "path_text.h"

#include "core/pool.h"
#include "core/text.h"

#include <algorithm>
#include <cstring>

namespace jmap {
namespace {

std::string_view shownIn(JMAP_PRIVATE* p, std::string_view path, QVStrSize* sl, char** sb) {
    const char* text = sepToSlashes(p, path.data(), lengthOf(path), sl, sb);
    return text == nullptr ? std::string_view("") : std::string_view(text, path.size());
}

// ASCII only: no locale, no multi-byte letters.
constexpr char asciiUpper(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

}  // namespace

char* sepToSlashes(JMAP_PRIVATE* p, const char* s, QVStrSize l, QVStrSize* sl, char** sb) {
    if (l < 1) {
        return nullptr;
    }
    if (l >= *sl) {
        (void)poolFree(p->cpool, *sb);  // the buffer is replaced whatever the pool says
        *sb = poolBytes(p->cpool, 2 * l);
        if (*sb == nullptr) {
            *sl = 0;
            return nullptr;
        }
        *sl = 2 * l;
    }
    std::replace_copy(s, s + l, *sb, p->sep, '/');
    return *sb;
}

std::string_view shown(JMAP_PRIVATE* p, std::string_view path) {
    return shownIn(p, path, &p->sepLongest, &p->sepbuf);
}

std::string_view shown2(JMAP_PRIVATE* p, std::string_view path) {
    return shownIn(p, path, &p->sepLongest2, &p->sepbuf2);
}

void slashToSep(JMAP_PRIVATE* p, char* s, QVStrSize l) {
    if (l > 0) {
        std::replace(s, s + l, '/', p->sep);
    }
}

int splitPath(JMAP_PRIVATE* p, const char* path, QVStrSize pathLen, const char** first,
              QVStrSize* firstLen, const char** last, QVStrSize* lastLen) {
    QVStrSize i = pathLen;  // where the last component begins
    while (i > 0 && path[i - 1] != p->sep) {
        --i;
    }
    *last = path + i;
    *lastLen = pathLen - i;
    *first = i > 0 ? path : nullptr;
    *firstLen = i > 0 ? i - 1 : 0;
    return 0;
}

int charNormCompare(const char* s1, QVStrSize l1, const char* s2, QVStrSize l2) {
    if (l1 != l2) {
        return 0;
    }
    const std::string_view a = view(s1, l1);
    const auto same = [](char x, char y) { return asciiUpper(x) == asciiUpper(y); };
    return std::equal(a.begin(), a.end(), s2, same) ? 1 : 0;
}

}  // namespace jmap
