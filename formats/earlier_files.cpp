// See earlier_files.h.
#include "formats/earlier_files.h"

#include "client/error.h"
#include "formats/renaming.h"

#include <string_view>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>

namespace qvej {

void EarlierFiles::set(std::vector<ListedFile> files, const Sources& sources) {
    files_ = std::move(files);
    sources_ = sources;
}

void EarlierFiles::putAside(const std::string& directory, const std::string& prefix,
                            const std::vector<std::string>& replaced) {
    if (files_.empty()) {
        return;
    }
    directory_ = directory;
    prefix_ = prefix;
    const std::unordered_set<std::string_view> names(replaced.begin(), replaced.end());
    for (std::size_t i = 0; i < files_.size(); ++i) {
        if (names.contains(files_[i].name) || !isToGo(files_[i])) {
            continue;
        }
        if (fileCalls.rename(pathOf(i).c_str(), asideOf(i).c_str(), 0) != 0) {
            throw fileError(QV_IO_WRITE, pathOf(i));
        }
        moved_.push_back(i);
    }
}

// Is it there and as listed?
bool EarlierFiles::isToGo(const ListedFile& file) {
    const std::string path = directory_ + file.name;
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) {
        return false;
    }
    if (!S_ISREG(found.st_mode) || stateOf(found) != file.state) {
        firstChanged_ = changed_++ == 0 ? path : firstChanged_;
        return false;
    }
    const Source* const source = sourceAt(path, sources_);
    if (source != nullptr) {
        staying_.push_back(path + ": " + std::string(source->what) + ", it stays");
    }
    return source == nullptr;
}

std::string EarlierFiles::takeBack() {
    std::string remains;
    for (const std::size_t i : moved_) {
        if (fileCalls.rename(asideOf(i).c_str(), pathOf(i).c_str(), 0) != 0) {
            remains += "; what was " + pathOf(i) + " is now " + asideOf(i);
        }
    }
    moved_.clear();
    return remains;
}

void EarlierFiles::finish(std::vector<std::string>& remarks) {
    for (const std::size_t i : moved_) {
        if (fileCalls.unlink(asideOf(i).c_str()) != 0) {
            remarks.push_back("what was " + pathOf(i) + " is now " + asideOf(i) + ": " +
                              fileError(QV_IO_WRITE, {}).what());
        }
    }
    remarks.insert(remarks.end(), staying_.begin(), staying_.end());
    if (changed_ != 0) {
        remarks.push_back(firstChanged_ + ": changed since an earlier run wrote it, it stays" +
                          (changed_ == 1 ? std::string()
                                         : "; likewise " + std::to_string(changed_ - 1) + " more"));
    }
}

}  // namespace qvej
