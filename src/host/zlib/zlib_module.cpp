// The module "qvezlib".  Its stream record is zlib's own under another name, so that callers need
// no zlib header; this file proves that the two have one layout and passes pointers on.  The record
// is never copied: zlib's state points back to it.
//
// Tested by tests/frame/equality_test.cpp
#include "host/zlib/zlib_module.h"

#include "host/module_instance.h"

#include <zlib.h>

#include <cstddef>

namespace qvhost {
namespace {

template <class A, class B>
constexpr bool kSameSize = sizeof(A) == sizeof(B);

#define QVZ_SAME_FIELD(field)                                                \
    static_assert(offsetof(QVZStream, field) == offsetof(z_stream, field) && \
                  kSameSize<decltype(QVZStream::field), decltype(z_stream::field)>)
QVZ_SAME_FIELD(next_in);
QVZ_SAME_FIELD(avail_in);
QVZ_SAME_FIELD(total_in);
QVZ_SAME_FIELD(next_out);
QVZ_SAME_FIELD(avail_out);
QVZ_SAME_FIELD(total_out);
QVZ_SAME_FIELD(msg);
QVZ_SAME_FIELD(state);
QVZ_SAME_FIELD(zalloc);
QVZ_SAME_FIELD(zfree);
QVZ_SAME_FIELD(opaque);
QVZ_SAME_FIELD(data_type);
QVZ_SAME_FIELD(adler);
QVZ_SAME_FIELD(reserved);
#undef QVZ_SAME_FIELD
static_assert(sizeof(QVZStream) == sizeof(z_stream) && alignof(QVZStream) == alignof(z_stream));
static_assert(QVZ_FINISH == Z_FINISH && QVZ_STREAM_END == Z_STREAM_END);

z_streamp native(QVZStream* z) noexcept {
    return reinterpret_cast<z_streamp>(z);
}

struct Instance : QVZLIB {};

void fillTable(Instance& made) noexcept {
    made.deflateInit2 = [](QVZStream* z, int level, int method, int windowBits, int memLevel,
                           int strategy) {
        return deflateInit2(native(z), level, method, windowBits, memLevel, strategy);
    };
    made.deflateBound = [](QVZStream* z, unsigned long sourceLen) {
        return deflateBound(native(z), sourceLen);
    };
    made.deflate = [](QVZStream* z, int flush) { return deflate(native(z), flush); };
    made.deflateEnd = [](QVZStream* z) { return deflateEnd(native(z)); };
    made.inflateInit2 = [](QVZStream* z, int windowBits) {
        return inflateInit2(native(z), windowBits);
    };
    made.inflate = [](QVZStream* z, int flush) { return inflate(native(z), flush); };
    made.inflateEnd = [](QVZStream* z) { return inflateEnd(native(z)); };
}

}  // namespace

QVExtensionh qvezlibEntry(QVHndlp, QVJnlh) {
    return makeInstance<Instance, QVZLIB>("zlib", fillTable);
}

}  // namespace qvhost
