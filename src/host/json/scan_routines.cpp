// The kernels that this build has, and which of them the machine can run.
//
// Tested by tests/json/parser_test.cpp
#include "host/json/scan_routines.h"

#include "host/json/scan_avx2.h"
#include "host/json/scan_sse2.h"

namespace qvhost {

namespace {

template <class Scan, bool kUtf8>
constexpr ScanRoutines kRoutines = {&Scan::template text<kUtf8>, &Scan::template textStops<kUtf8>,
                                    &Scan::decimal, &Scan::space};

template <class Scan>
const ScanRoutines& routines(bool utf8) {
    return utf8 ? kRoutines<Scan, true> : kRoutines<Scan, false>;
}

}  // namespace

const ScanRoutines& scanRoutines(ScanKernel kernel, bool utf8) {
#if defined(__SSE2__)
    if ((kernel == ScanKernel::BEST || kernel == ScanKernel::AVX2) && ScanAvx2::offered()) {
        return routines<ScanAvx2>(utf8);
    }
    if (kernel != ScanKernel::PORTABLE) {
        return routines<ScanSse2>(utf8);
    }
#endif
    (void)kernel;
    return routines<ScanPortable>(utf8);
}

}  // namespace qvhost
