// Host objects that are ended with the C++ object that holds them.
#pragma once

#include "qvehost.h"

#include <memory>

namespace qvej {

struct HandleEnd {
    template <class Object>
    void operator()(Object* object) const {
        QVGeneric* generic = nullptr;
        if constexpr (requires { object->exth; }) {
            generic = &object->exth.generic;
        } else {
            generic = &object->generic;
        }
        (void)generic->destroy(generic);  // a destructor cannot report it
    }
};

// Owns a pool, a parser, a module, an informat...
template <class Object>
using Handle = std::unique_ptr<Object, HandleEnd>;

}  // namespace qvej
