// See capsules.h.
#include "bindings/python/capsules.h"

#include <utility>

namespace qvej::python {

namespace nb = nanobind;

namespace {

template <class Structure>
constexpr const char* kName = nullptr;
template <>
constexpr const char* kName<ArrowSchema> = "arrow_schema";
template <>
constexpr const char* kName<ArrowArray> = "arrow_array";
template <>
constexpr const char* kName<ArrowArrayStream> = "arrow_array_stream";

template <class Structure>
struct Release {
    void operator()(Structure* structure) const {
        if (structure->release != nullptr) {
            structure->release(structure);
        }
        delete structure;
    }
};

template <class Structure>
using Owned = std::unique_ptr<Structure, Release<Structure>>;

template <class Structure>
nb::object capsule(Owned<Structure> structure) {
    const auto end = [](PyObject* object) {
        void* const pointer = PyCapsule_GetPointer(object, kName<Structure>);
        Release<Structure>()(static_cast<Structure*>(pointer));
    };
    PyObject* const made = PyCapsule_New(structure.get(), kName<Structure>, end);
    if (made == nullptr) {
        throw nb::python_error();
    }
    (void)structure.release();  // the capsule has it
    return nb::steal(made);
}

}  // namespace

nb::object schemaCapsule(const TableFields& fields) {
    Owned<ArrowSchema> schema(new ArrowSchema{});
    exportSchema(fields, schema.get());
    return capsule(std::move(schema));
}

nb::object arrayCapsule(const std::shared_ptr<const RecordBatch>& batch) {
    Owned<ArrowArray> array(new ArrowArray{});
    exportBatch(batch, array.get());
    return capsule(std::move(array));
}

nb::object streamCapsule(TableFields fields, NextBatch next) {
    Owned<ArrowArrayStream> stream(new ArrowArrayStream{});
    exportStream(std::move(fields), std::move(next), stream.get());
    return capsule(std::move(stream));
}

}  // namespace qvej::python
