// The instance: made by the module's entry point, ended by its release operation.
//
// Tested by tests/frame/entry_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// The version of the host interface that the engine needs: 7.1.1.  Works for any `ext`.
QVStatus qvejmapgrv(QVExtensionh ext, size_t* a, size_t* b, size_t* c);

// The engine's own version: 1.0.0.  Works for any `ext`.
QVStatus qvejmapgv(QVExtensionh ext, size_t* a, size_t* b, size_t* c);

// Ends the instance: its modules in the order of their loading, then its pool and with it the
// instance itself.  Every document has been ended before.  Always QV_OK.
QVStatus qvejmaprd(QVExtensionh ext);

}  // namespace jmap
