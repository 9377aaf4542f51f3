// Finding, checking and unloading modules.
//
// Tested by tests/host/loader_test.cpp
#include "host/loader.h"

#include "host/host_object.h"
#include "host/kernel.h"
#include "host/rim.h"

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <memory>
#include <tuple>
#include <type_traits>
#include <unistd.h>

namespace qvhost {

namespace {

struct CloseObject {
    void operator()(void* object) const { dlclose(object); }
};
using SharedObject = std::unique_ptr<void, CloseObject>;

// The loader's record of an instance, at `handle` of its header.
struct LoadedModule {
    LoadedModule(QVHndlp host, QVExtensionh ext, std::string_view name)
        : entry(host, ObjectKind::MODULE, ext->generic, name) {}

    SharedObject object{};  // null for a built-in module
    HostObject entry;
};

// Releases the instance, then unloads its code.
QVStatus endModule(QVGeneric* self) {
    const auto ext = reinterpret_cast<QVExtensionh>(self);  // a module begins with its head
    const std::unique_ptr<LoadedModule> record(static_cast<LoadedModule*>(ext->handle));
    return ext->realDestroy == nullptr ? QV_OK : ext->realDestroy(ext);
}

bool isPlainName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-';
    });
}

// True when the module is content with the interface of this host.
bool isInterfaceEnough(QVExtensionh ext) {
    if (ext->getReqVersion == nullptr) {
        return true;
    }
    std::size_t a = 0;
    std::size_t b = 0;
    std::size_t c = 0;
    if (ext->getReqVersion(ext, &a, &b, &c) != QV_OK) {
        return false;
    }
    constexpr std::tuple<std::size_t, std::size_t, std::size_t> kOurs = {
        QV_HOST_VERSION_MAJOR, QV_HOST_VERSION_MINOR, QV_HOST_VERSION_PATCH};
    return std::tuple(a, b, c) <= kOurs;
}

void note(QVJnlh jnl, const char32_t* fmt, ...) {
    if (jnl == nullptr) {
        return;
    }
    va_list args;
    va_start(args, fmt);
    // A note that cannot be written changes nothing about the load.
    (void)jnl->write(jnl, QV_NOTE, fmt, static_cast<QVStrSize>(std::u32string_view(fmt).size()),
                     args);
    va_end(args);
}

// Opens the first object of that name which exists and loads.  Says why one that exists does not.
QVEntry findShared(const std::vector<std::string>& directories, const std::string& name, QVJnlh jnl,
                   SharedObject& object) {
    for (const std::string& directory : directories) {
        std::string path = directory;
        path.append("/").append(name).append(".so");
        if (access(path.c_str(), F_OK) != 0) {
            continue;
        }
        object.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
        if (object == nullptr) {
            note(jnl, U"module %hs not loaded: %hs", name.c_str(), dlerror());
            continue;
        }
        void* const entry = dlsym(object.get(), name.c_str());
        if (entry != nullptr) {
            return reinterpret_cast<QVEntry>(entry);
        }
        note(jnl, U"module %hs not loaded: %hs has no entry point of that name", name.c_str(),
             path.c_str());
    }
    return nullptr;
}

std::vector<std::string> split(std::string_view path) {
    std::vector<std::string> parts;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find(':'));
        if (!part.empty()) {
            parts.emplace_back(part);
        }
        path.remove_prefix(std::min(part.size() + 1, path.size()));
    }
    return parts;
}

}  // namespace

Loader::Loader(const char* modulePath)
    : directories_(split(modulePath == nullptr ? "" : modulePath)) {}

void Loader::add(std::string_view name, QVEntry entry) {
    const std::lock_guard lock(mutex_);
    builtIns_.push_back({std::string(name), entry});
}

QVEntry Loader::builtIn(std::string_view name) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(builtIns_.rbegin(), builtIns_.rend(),
                                    [name](const BuiltIn& b) { return b.name == name; });
    return found == builtIns_.rend() ? nullptr : found->entry;
}

QVExtensionh Loader::load(QVHndlp host, const std::string& name, QVJnlh jnl) {
    SharedObject object;
    QVEntry entry = builtIn(name);
    if (entry == nullptr && isPlainName(name)) {
        entry = findShared(directories_, name, jnl, object);
    }
    if (entry == nullptr) {
        return nullptr;
    }
    const QVExtensionh ext = entry(host, jnl);
    if (ext == nullptr) {
        return nullptr;
    }
    const auto release = [](QVExtensionh refused) {
        if (refused->realDestroy != nullptr) {
            (void)refused->realDestroy(refused);  // the load has failed already
        }
    };
    std::unique_ptr<std::remove_pointer_t<QVExtensionh>, decltype(release)> instance(ext, release);
    if (!isInterfaceEnough(ext)) {
        note(jnl, U"module %hs not loaded: it needs a newer host", name.c_str());
        return nullptr;
    }
    // Listed only now, after what the entry point has made, so that a host which stops ends the
    // module before the modules and pools that it stands on.
    auto record = std::make_unique<LoadedModule>(host, ext, name);
    record->object = std::move(object);
    ext->generic.destroy = &Rim<&endModule>::call;
    ext->hndl = host;
    ext->handle = record.release();
    return instance.release();
}

}  // namespace qvhost
