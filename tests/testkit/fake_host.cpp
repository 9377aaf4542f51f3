// A host that watches: it stands between the engine and the portable host.
//
// Objects of the portable host are handed out as they are, but their `destroy` is replaced by a
// hook that writes a line into `calls` and goes on to the original.
#include "testkit.h"

namespace jmap::test {
namespace {

struct Hooked {
    FakeHost* host;
    std::string label;
    QVStatus (*destroy)(QVGeneric*);
};

// A hook gets an object of the portable host only; what belongs to it is found here.
std::map<QVGeneric*, Hooked> hooked;

using Insert = decltype(QVTracker::insert);
Insert realInsert = nullptr;  // one routine for all trackers of the portable host

std::string narrow(const QVChar* text, QVStrSize len) {
    return {text, text + len};
}

}  // namespace

template <class Object>
Object* FakeHost::made(const std::string& label, Object* object) {
    calls.push_back(label);
    if (object != nullptr) {
        ++created_;
        watch(reinterpret_cast<QVGeneric*>(object), label);  // every object begins with it
    }
    return object;
}

FakeHost::FakeHost() {
    QVPortableOptions options{};
    options.structSize = sizeof options;
    options.journalArg = this;
    options.journalCallback = [](void* arg, const char* note, size_t noteLen) {
        static_cast<FakeHost*>(arg)->notes.emplace_back(note, noteLen);
    };
    EXPECT_QV_OK(qvPortableStart(&options, &real_));
    journal_.owner = this;
    journal_.write = [](QVJnlh jnl, int32_t kind, const QVChar* fmt, QVStrSize len, va_list args) {
        FakeHost* self = static_cast<Journal*>(jnl)->owner;
        self->formats.push_back(narrow(fmt, len));
        return self->real_->jnl->write(self->real_->jnl, kind, fmt, len, args);
    };
    journal_.flush = [](QVJnlh) { return QV_OK; };
    handle_.owner = this;
    handle_.jnl = &journal_;
    handle_.nls = real_->nls;
    handle_.loadExtension = load;
    handle_.createPool = [](QVHndlp host, const QVPoolParms* parms, const QVChar* name,
                            QVStrSize len) {
        QVHndlp real = of(host)->real_;
        return of(host)->made("pool " + narrow(name, len),
                              real->createPool(real, parms, name, len));
    };
    handle_.createTracker = createTracker;
    handle_.qvmrlmem = [](QVHndlp host, uint64_t* bytes) {
        FakeHost* self = of(host);
        const QVStatus rc = self->real_->qvmrlmem(self->real_, bytes);
        *bytes = self->available_.value_or(*bytes);
        return rc;
    };
    qvPortableInstall(&handle_);
    (void)qvPortableRegister(real_, "qvejmap", qvejmap);
}

FakeHost::~FakeHost() {
    if (engine_ != nullptr) {
        QVGeneric* generic = &engine_->exth.generic;
        EXPECT_QV_OK(generic->destroy(generic));
    }
    qvPortableInstall(real_);
    (void)qvPortableStop(real_);  // ends what is left
    std::erase_if(hooked, [this](const auto& entry) { return entry.second.host == this; });
}

UserJMAP_S* FakeHost::engine() {
    if (engine_ == nullptr) {
        engine_ = reinterpret_cast<UserJMAP_S*>(load(&handle_, U"qvejmap", 7, &journal_));
        EXPECT_NE(engine_, nullptr) << "the engine does not load";
    }
    return engine_;
}

void FakeHost::watch(QVGeneric* object, const std::string& label) {
    hooked[object] = {this, label, object->destroy};
    object->destroy = [](QVGeneric* self) {
        const Hooked entry = hooked.extract(self).mapped();
        entry.host->calls.push_back("destroy " + entry.label);
        return entry.destroy(self);
    };
}

QVTrackerh FakeHost::createTracker(QVHndlp host, int32_t kind, int32_t types, const QVChar* name,
                                   QVStrSize len) {
    FakeHost* self = of(host);
    QVTrackerh tracker = self->trackerFails()
                             ? nullptr
                             : self->real_->createTracker(self->real_, kind, types, name, len);
    if (tracker != nullptr) {
        realInsert = tracker->insert;
        tracker->insert = insert;
    }
    return self->made("tracker " + narrow(name, len), tracker);
}

QVStatus FakeHost::insert(QVTrackerh tracker, const char* key, QVStrSize keyLen, QVMemPtr value) {
    FakeHost* self = hooked.at(&tracker->generic).host;
    return self->trackerFails() ? QV_NOMEM : realInsert(tracker, key, keyLen, value);
}

bool FakeHost::trackerFails() {
    ++trackerRequests_;
    return trackerRequests_ == failingTracker_ ||
           (failingTrackers_ && trackerRequests_ > failingTracker_);
}

QVExtensionh FakeHost::load(QVHndlp host, const QVChar* name, QVStrSize nameLen, QVJnlh jnl) {
    FakeHost* self = of(host);
    const std::string label = narrow(name, nameLen);
    self->calls.push_back("load " + label);
    ++self->loads_;
    if (self->loads_ == self->failingLoad_ ||
        (self->failingLoads_ && self->loads_ > self->failingLoad_)) {
        return nullptr;
    }
    const auto found = self->substitutes_.find(label);
    const std::string& source = found == self->substitutes_.end() ? label : found->second;
    const std::u32string real(source.begin(), source.end());
    QVExtensionh ext = self->real_->loadExtension(self->real_, real.data(),
                                                  static_cast<QVStrSize>(real.size()), jnl);
    if (ext != nullptr) {
        self->watch(&ext->generic, label);
    }
    return ext;
}

void FakeHost::substitute(const std::string& name, QVEntry entry) {
    std::string& alias = substitutes_[name];
    alias.clear();
    if (entry != nullptr) {
        alias = name + "#";  // the portable host does the loader's work, under this name
        ASSERT_QV_OK(qvPortableRegister(real_, alias.c_str(), entry));
    }
}

void FakeHost::failAllocation(uint64_t n, bool always) {
    qvPortableFailAllocation(real_, n, always ? 1 : 0);
}

void FakeHost::failTracker(uint64_t n, bool always) {
    failingTracker_ = n == 0 ? 0 : trackerRequests_ + n;
    failingTrackers_ = n != 0 && always;
}

void FakeHost::failLoad(uint64_t n, bool always) {
    failingLoad_ = n == 0 ? 0 : loads_ + n;
    failingLoads_ = n != 0 && always;
}

uint64_t FakeHost::requests() {
    QVPortableCounts counts{};
    qvPortableCounts(real_, &counts);
    return counts.allocations + created_;
}

std::vector<std::string> FakeHost::leftovers() {
    std::vector<std::string> found;
    qvPortableLeftovers(
        real_,
        [](void* arg, const char* kind, const char* name) {
            static_cast<std::vector<std::string>*>(arg)->push_back(std::string(kind) + " " + name);
        },
        &found);
    return found;
}

}  // namespace jmap::test
