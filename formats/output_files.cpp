// See output_files.h.
#include "formats/output_files.h"

#include "client/error.h"
#include "formats/cleanup.h"
#include "formats/renaming.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qvej {

namespace {

constexpr std::size_t kMostOpen = 200;  // files open at a time
constexpr int kNotMade = -2;            // in place of a descriptor: no temporary file of ours
constexpr int kClosed = -1;

class FileTarget final : public Target {
   public:
    FileTarget(OutputFiles& files, std::size_t i) : files_(files), i_(i) {}
    void write(const char* text, std::size_t size) override { files_.write(i_, text, size); }

   private:
    OutputFiles& files_;
    std::size_t i_;
};

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string directoryOf(const std::string& file) {
    return file.find('/') == std::string::npos ? "." : parentOf(file);
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

// What does not exist of `directory` and its parents, innermost first.
std::vector<std::string> missingDirectories(const std::string& directory) {
    std::vector<std::string> missing;
    struct stat found = {};
    for (std::string path = directory; !path.empty(); path = parentOf(path)) {
        if (::stat(path.c_str(), &found) == 0) {
            if (!S_ISDIR(found.st_mode)) {
                throw Error(QV_IO_REFUSED, "not a directory", path);
            }
            break;
        }
        if (errno != ENOENT && errno != ENOTDIR) {
            throw fileError(QV_IO_OPEN, path);
        }
        missing.push_back(path);
    }
    return missing;
}

std::filesystem::path wholePath(const std::string& path) {
    const std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
    return whole.has_filename() ? whole : whole.parent_path();
}

// Does the directory come into being with `made`?  It is the same, or above it.
bool comesWith(const std::string& made, const std::string& directory) {
    const std::filesystem::path inner = wholePath(made);
    const std::filesystem::path outer = wholePath(directory);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first ==
           outer.end();
}

std::string besides(const std::string& directory) {
    return directory.substr(0, directory.rfind('/') + 1);
}

// 128 random bits: no other program can foresee the name, so that nothing has it.
std::string randomHex() {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::random_device random;  // the system's own source on this platform
    std::string text;
    for (int word = 0; word < 4; ++word) {
        uint32_t bits = random();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4) {
            text.push_back(kDigits[bits & 15]);
        }
    }
    return text;
}

// Is there anything in the directory?  What a killed run left does not count.
bool holdsFiles(const std::string& directory) {
    std::error_code trouble;
    for (const auto& entry : std::filesystem::directory_iterator(directory, trouble)) {
        if (!entry.path().filename().string().starts_with(".qvejmap-")) {
            return true;
        }
    }
    return false;
}

// Is there a regular file?  False when there is nothing; throws for all else.
bool fileExists(const std::string& path) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) {
        if (errno == ENOENT) {
            return false;
        }
        throw fileError(QV_IO_OPEN, path);
    }
    if (!S_ISREG(found.st_mode)) {
        throw Error(QV_IO_REFUSED, "not a regular file, not replaced", path);
    }
    return true;
}

}  // namespace

OutputFiles::OutputFiles(std::string directory, bool makeDirectory, std::vector<std::string> names,
                         bool force, const Sources& sources)
    : directory_(withoutTrailingSlashes(std::move(directory))),
      names_(std::move(names)),
      cleanup_(makeDirectory ? directory_ : finalPath(0)),
      force_(force),
      prefix_(directory_ + "/.qvejmap-" + randomHex() + "-"),
      descriptors_(names_.size(), kNotMade) {
    const std::vector<std::string> missing =
        makeDirectory ? missingDirectories(directory_) : std::vector<std::string>();
    if (!missing.empty()) {
        staged_ = true;
        prefix_ = besides(directory_) + ".qvejmap-" + randomHex() + "/";
    } else {
        if (makeDirectory) {
            lock_.lock(directory_);
            foundFiles_ = holdsFiles(directory_);
        }
        refuseExisting(sources);
    }
    cleanup_.set(prefix_, staged_ ? &names_ : nullptr, directory_, 0);
    cleanup_.setCount(names_.size());
    makeDirectories(missing);
    if (staged_) {
        lockMadeDirectory();
    }
}

void OutputFiles::lockMadeDirectory() {
    try {
        lock_.lock(directory_);
    } catch (const Error&) {
        removeTemporary();
        throw;
    }
}

OutputFiles OutputFiles::single(const std::string& path, bool force, const Sources& sources) {
    const std::size_t slash = path.rfind('/');
    const std::string directory = directoryOf(path);
    if (::access((directory + "/.").c_str(), W_OK) != 0) {
        throw fileError(QV_IO_OPEN, slash == std::string::npos || slash == 0 ? path : directory);
    }
    return {directory, false, {path.substr(slash + 1)}, force, sources};
}

void OutputFiles::checkFile(const std::string& path, bool force, const Sources& sources,
                            const std::string& made) {
    const std::string directory = directoryOf(path);
    const bool there = ::access((directory + "/.").c_str(), F_OK) == 0;
    if (there || made.empty() || !comesWith(made, directory)) {
        (void)single(path, force, sources);
    }
}

void OutputFiles::checkDirectory(const std::string& directory) {
    const std::string path = withoutTrailingSlashes(directory);
    if (!missingDirectories(path).empty()) {
        return;
    }
    if (::access(path.c_str(), W_OK) != 0) {
        throw fileError(QV_IO_OPEN, path);
    }
    DirectoryLock().lock(path);
}

OutputFiles::~OutputFiles() {
    if (!committed_) {
        removeTemporary();
    }
}

void OutputFiles::refuseExisting(const Sources& sources) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const std::string path = finalPath(i);
        if (!fileExists(path)) {
            continue;
        }
        refuseSource(path, sources);
        if (!force_) {
            throw Error(QV_IO_REFUSED, "the file exists (--force replaces it)", path);
        }
    }
}

void OutputFiles::makeDirectories(const std::vector<std::string>& missing) {
    for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
        const cleanup::Hold hold;
        if (::mkdir(path->c_str(), 0777) == 0) {
            madeDirectories_.push_back(*path);
            cleanup_.set(prefix_, staged_ ? &names_ : nullptr, *path, madeDirectories_.size());
            cleanup_.setCount(names_.size());
        } else if (errno != EEXIST) {
            failToMake(*path);
        }
    }
    if (staged_ && ::mkdir(prefix_.c_str(), 0777) != 0) {
        failToMake(directory_);
    }
}

void OutputFiles::failToMake(const std::string& directory) {
    const Error failure = fileError(QV_IO_OPEN, directory);
    removeTemporary();
    throw failure;
}

bool OutputFiles::shares(const OutputFiles& other) const {
    return isSameFile(directory_, other.directory_) &&
           std::any_of(names_.begin(), names_.end(), [&](const auto& name) {
               return std::find(other.names_.begin(), other.names_.end(), name) !=
                      other.names_.end();
           });
}

Writer OutputFiles::writer(std::size_t i) {
    return Writer(target(i));
}

std::unique_ptr<Target> OutputFiles::target(std::size_t i) {
    return std::make_unique<FileTarget>(*this, i);
}

std::string OutputFiles::made(std::size_t i) {
    (void)closed(i);
    return temporaryPath(i);
}

void OutputFiles::write(std::size_t i, const char* text, std::size_t size) {
    if (!writeAll(descriptors_[i] < 0 ? open(i) : descriptors_[i], text, size)) {
        throw fileError(QV_IO_WRITE, finalPath(i));
    }
}

int OutputFiles::open(std::size_t i) {
    if (open_.size() == kMostOpen) {
        close(open_.front());
        open_.pop_front();
    }
    const std::string path = temporaryPath(i);
    const cleanup::Hold hold;
    const int how = descriptors_[i] == kNotMade ? O_CREAT | O_EXCL : O_APPEND;
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | how, 0666);
    if (descriptor < 0) {
        throw fileError(QV_IO_OPEN, directory_);
    }
    open_.push_back(i);
    return descriptors_[i] = descriptor;
}

void OutputFiles::close(std::size_t i) {
    if (::close(std::exchange(descriptors_[i], kClosed)) != 0) {
        throw fileError(QV_IO_WRITE, finalPath(i));
    }
}

FileState OutputFiles::closed(std::size_t i) {
    if (descriptors_[i] == kNotMade) {
        (void)open(i);
    }
    if (descriptors_[i] >= 0) {
        open_.erase(std::find(open_.begin(), open_.end(), i));
        close(i);
    }
    struct stat found = {};
    if (::lstat(temporaryPath(i).c_str(), &found) != 0) {
        throw fileError(QV_IO_WRITE, finalPath(i));
    }
    return stateOf(found);
}

// Closes what is open, and makes the files that nothing was written to.
void OutputFiles::closeAll() {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (descriptors_[i] == kNotMade) {
            (void)open(i);
        }
    }
    for (; !open_.empty(); open_.pop_front()) {
        close(open_.front());
    }
}

std::vector<std::string> OutputFiles::commit(OutputFiles* with, const std::function<void()>& last) {
    closeAll();
    if (with != nullptr) {
        with->closeAll();
    }
    const cleanup::Hold hold;  // all or nothing
    cleanup_.setState(cleanup::Output::BETWEEN);
    try {
        if (with != nullptr) {
            with->putAllInPlace();
        }
        putAllInPlace();
        if (last) {
            last();
        }
    } catch (const Error& failure) {
        std::string sentence = failure.what() + takeBack();
        sentence += with == nullptr ? std::string() : with->takeBack();
        cleanup_.setState(cleanup::Output::UNTOUCHED);
        throw Error(failure.status(), sentence, failure.file());
    }
    std::vector<std::string> remarks;
    finish(remarks);
    if (with != nullptr) {
        with->finish(remarks);
    }
    return remarks;
}

void OutputFiles::putAllInPlace() {
    // Fails when something is in the final directory by now: a file of rejected values, say.
    if (staged_ && ::rename(prefix_.c_str(), directory_.c_str()) == 0) {
        return;
    }
    earlier_.putAside(start(), prefix_, names_);
    while (inPlace_.size() < names_.size()) {
        inPlace_.push_back(putInPlace(inPlace_.size()));
    }
}

// The final names are what they were.  Returns what else there is to say of a failure: a file that
// was there and cannot be put back keeps its temporary name.
std::string OutputFiles::takeBack() {
    std::string remains;
    for (std::size_t i = 0; i < inPlace_.size(); ++i) {
        const std::string path = finalPath(i);
        if (!inPlace_[i]) {
            if (fileCalls.unlink(path.c_str()) != 0) {
                remains += "; " + path + " is new";
            }
        } else if (fileCalls.rename(temporaryPath(i).c_str(), path.c_str(), 0) != 0) {
            remains += "; what was " + path + " is now " + temporaryPath(i);
            descriptors_[i] = kNotMade;
            cleanup_.setCount(0);
        }
    }
    inPlace_.clear();
    return remains + earlier_.takeBack();
}

// Nothing can be taken back: what was replaced goes.
void OutputFiles::finish(std::vector<std::string>& remarks) {
    for (std::size_t i = 0; i < inPlace_.size(); ++i) {
        if (inPlace_[i] && fileCalls.unlink(temporaryPath(i).c_str()) != 0) {
            remarks.push_back("what was " + finalPath(i) + " is now " + temporaryPath(i) + ": " +
                              fileError(QV_IO_WRITE, {}).what());
        }
    }
    earlier_.finish(remarks);
    if (staged_) {
        (void)::rmdir(prefix_.c_str());
    }
    cleanup_.setState(cleanup::Output::COMPLETE);
    committed_ = true;
}

// Gives a file its final name.  True when there was one of that name, which the temporary name then
// stands for.
bool OutputFiles::putInPlace(std::size_t i) {
    const bool replace = force_ && fileExists(finalPath(i));
    (replace ? exchangeNames : renameToNew)(temporaryPath(i), finalPath(i));
    return replace;
}

void OutputFiles::removeTemporary() {
    const cleanup::Hold hold;
    for (const std::size_t i : open_) {
        (void)::close(descriptors_[i]);
    }
    open_.clear();
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (descriptors_[i] != kNotMade) {
            (void)::unlink(temporaryPath(i).c_str());
        }
    }
    if (staged_) {
        (void)::rmdir(prefix_.c_str());
    }
    for (; !madeDirectories_.empty(); madeDirectories_.pop_back()) {
        (void)::rmdir(madeDirectories_.back().c_str());  // fails when it has files of others
    }
}

}  // namespace qvej
