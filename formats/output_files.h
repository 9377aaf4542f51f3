// Output files that appear all together or not at all.
//
// Files may be written in any order, piece by piece.  Each is written under a temporary name in its
// directory.  `commit` renames them all and keeps what they replace until the last has its name;
// until then, and when the object ends without it, nothing under a final name has changed and the
// temporary files go away, also when a signal ends the program.
//
// A directory that had to be made is filled under a temporary name, next to its place.  The files
// have their names in it, and one renaming of the directory puts all of them in place.
//
// Tested by tests/formats/output_files_test.cpp, tests/tool/golden/interrupt.t and
// tests/tool/golden/convert.t
#pragma once

#include "formats/cleanup.h"
#include "formats/directory_lock.h"
#include "formats/earlier_files.h"
#include "formats/sources.h"
#include "formats/writer.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qvej {

class OutputFiles {
   public:
    // Files `names` in `directory`.  `makeDirectory`: it is made when it is missing.  Files that
    // exist are refused, or with `force` replaced when they are regular files and none of the
    // `sources`.  With `makeDirectory` no other run may write to the directory at the same time.
    // Throws qvej::Error.
    OutputFiles(std::string directory, bool makeDirectory, std::vector<std::string> names,
                bool force, const Sources& sources = {});
    // One file, by its path; its directory must be there.
    static OutputFiles single(const std::string& path, bool force, const Sources& sources = {});
    // What can be told before there is anything to write: that one file, or files in a directory
    // that is made when it is missing, would be refused.  `made`: such a directory, which the file
    // may be for; empty: none.  Throw qvej::Error.
    static void checkFile(const std::string& path, bool force, const Sources& sources,
                          const std::string& made = {});
    static void checkDirectory(const std::string& directory);
    ~OutputFiles();
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

    // Have the two a file in common?
    [[nodiscard]] bool shares(const OutputFiles& other) const;

    // A writer to the file `i`, which this object must outlive.  Any number may be in use: some
    // files are kept open, the others are opened again when there is something to write.
    [[nodiscard]] Writer writer(std::size_t i);
    [[nodiscard]] std::unique_ptr<Target> target(std::size_t i);

    // The name of a file until `commit`, for a library that writes it by name.  It is made, and
    // empty.  Throws qvej::Error.
    [[nodiscard]] std::string made(std::size_t i);

    // Appends to a file.  Throws qvej::Error.
    void write(std::size_t i, const char* text, std::size_t size);

    // Closes a file, of which all is written.  Throws qvej::Error.
    FileState closed(std::size_t i);

    // Was there anything in the directory?
    [[nodiscard]] bool foundFiles() const { return foundFiles_; }

    // Files of an earlier run, which `commit` removes when they are as listed.
    void removeEarlier(std::vector<ListedFile> files, const Sources& sources) {
        earlier_.set(std::move(files), sources);
    }

    // Gives all files their names, and those of `with` theirs, and calls `last`, when there is one.
    // Returns sentences about what else went wrong.  Throws qvej::Error, also what `last` throws;
    // nothing has changed then, or the sentence says what has.
    [[nodiscard]] std::vector<std::string> commit(OutputFiles* with = nullptr,
                                                  const std::function<void()>& last = {});

   private:
    void refuseExisting(const Sources& sources) const;
    void makeDirectories(const std::vector<std::string>& missing);
    void lockMadeDirectory();
    [[noreturn]] void failToMake(const std::string& directory);
    int open(std::size_t i);
    void close(std::size_t i);
    void closeAll();
    void putAllInPlace();
    bool putInPlace(std::size_t i);
    std::string takeBack();
    void finish(std::vector<std::string>& remarks);
    void removeTemporary();
    [[nodiscard]] std::string temporaryPath(std::size_t i) const {
        return prefix_ + (staged_ ? names_[i] : std::to_string(i));
    }
    [[nodiscard]] std::string start() const {
        return directory_ == "." ? std::string() : directory_ + "/";
    }
    [[nodiscard]] std::string finalPath(std::size_t i) const { return start() + names_[i]; }

    std::string directory_;
    std::vector<std::string> names_;
    cleanup::Output cleanup_;
    DirectoryLock lock_;
    bool force_;
    bool foundFiles_ = false;
    std::string prefix_;            // of the temporary names
    bool staged_ = false;           // it is a directory that stands in for the final one
    std::vector<int> descriptors_;  // of each file
    std::deque<std::size_t> open_;  // files that are open, the oldest first
    std::vector<std::string> madeDirectories_;  // outermost first
    std::vector<bool> inPlace_;  // files that have their name; true: and replaced another
    EarlierFiles earlier_;
    bool committed_ = false;
};

}  // namespace qvej
