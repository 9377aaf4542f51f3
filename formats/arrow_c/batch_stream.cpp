// See batch_stream.h.
#include "formats/arrow_c/batch_stream.h"

#include "client/error.h"

#include <cerrno>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace qvej {

namespace {

struct OwnedStream {
    TableFields fields;
    NextBatch next;
    std::string error = {};  // of the last call that failed
};

OwnedStream& ownedOf(ArrowArrayStream* stream) {
    return *static_cast<OwnedStream*>(stream->private_data);
}

// Returns 0, or what went wrong as an error of the system.
template <class Work>
int tried(OwnedStream& stream, const Work& work) {
    try {
        work();
        return 0;
    } catch (const std::bad_alloc&) {
        stream.error = "out of memory";  // short texts need no memory
        return ENOMEM;
    } catch (const Error& error) {
        stream.error = sentenceOf(error);
        return EIO;
    } catch (const std::exception& error) {
        stream.error = error.what();
        return EIO;
    }
}

int getSchema(ArrowArrayStream* stream, ArrowSchema* out) {
    OwnedStream& owned = ownedOf(stream);
    return tried(owned, [&] { exportSchema(owned.fields, out); });
}

int getNext(ArrowArrayStream* stream, ArrowArray* out) {
    OwnedStream& owned = ownedOf(stream);
    return tried(owned, [&] {
        const std::shared_ptr<const RecordBatch> batch = owned.next();
        if (batch == nullptr) {
            *out = {};  // the end
        } else {
            exportBatch(batch, out);
        }
    });
}

const char* getLastError(ArrowArrayStream* stream) {
    return ownedOf(stream).error.c_str();
}

void release(ArrowArrayStream* stream) {
    delete &ownedOf(stream);
    stream->release = nullptr;
}

}  // namespace

void exportStream(TableFields fields, NextBatch next, ArrowArrayStream* out) {
    auto* const owned = new OwnedStream{std::move(fields), std::move(next)};
    *out = {getSchema, getNext, getLastError, release, owned};
}

}  // namespace qvej
