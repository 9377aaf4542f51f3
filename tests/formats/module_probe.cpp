// A shared library that asks for modules.
#include "client/error.h"
#include "formats/module.h"

#include <string>

// The build of that module, or why there is none.
extern "C" __attribute__((visibility("default"))) const char* qvejmapProbe(const char* name) {
    static std::string answer;
    try {
        answer = qvej::formatModule(name).build();
    } catch (const qvej::Error& error) {
        answer = error.what();
    }
    return answer.c_str();
}
