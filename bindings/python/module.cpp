// The module qvejmap._qvejmap, which the package qvejmap stands on.
#include "bindings/python/conversions.h"
#include "bindings/python/documents.h"
#include "bindings/python/failures.h"
#include "bindings/python/maps.h"
#include "bindings/python/partial_scans.h"
#include "bindings/python/source.h"

#include <nanobind/nanobind.h>

// NOLINTNEXTLINE(readability-identifier-naming): the macro makes names of it
NB_MODULE(_qvejmap, module) {
    qvej::python::registerFailures();
    qvej::python::registerDocuments(module);
    qvej::python::registerConversions(module);
    qvej::python::registerMaps(module);
    qvej::python::registerPartialScans(module);
    qvej::python::endCallsWithPython();
}
