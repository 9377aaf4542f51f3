// Output files that appear all together or not at all.
//
// Each file is written under a temporary name in its directory.  `commit` renames them all and
// keeps what they replace until the last has its name; until then, and when the object ends without
// it, nothing under a final name has changed and the temporary files go away, also when a signal
// ends the program.
//
// Tested by tests/tool/output_files_test.cpp, golden/interrupt.t and golden/convert.t
#pragma once

#include "tools/cli/cleanup.h"

#include <cstddef>
#include <string>
#include <vector>

class OutputFiles {
   public:
    // Files `names` in `directory`.  `makeDirectory`: it is made when it is missing.  Files that
    // exist are refused, or with `force` replaced when they are regular files.  Throws a Failure.
    OutputFiles(std::string directory, bool makeDirectory, std::vector<std::string> names,
                bool force);
    // One file, by its path; its directory must be there.
    static OutputFiles single(const std::string& path, bool force);
    ~OutputFiles();
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    // Have the two a file in common?
    [[nodiscard]] bool shares(const OutputFiles& other) const;

    // Opens the next file for writing; the one before is closed.  Throws a Failure.
    int openNext();
    // Path of the file that is open, under its final name.
    [[nodiscard]] std::string currentPath() const { return finalPath(opened_ - 1); }

    // Gives all files their names.  Throws a Failure; nothing has changed then.
    void commit();

   private:
    void refuseExisting() const;
    void makeDirectories(const std::vector<std::string>& missing);
    void close();
    bool putInPlace(std::size_t i);
    void removeTemporary();
    [[nodiscard]] std::string temporaryPath(std::size_t i) const {
        return prefix_ + std::to_string(i);
    }
    [[nodiscard]] std::string finalPath(std::size_t i) const {
        return (directory_ == "." ? std::string() : directory_ + "/") + names_[i];
    }

    cleanup::Output cleanup_;
    std::string directory_;
    std::vector<std::string> names_;
    bool force_;
    std::string prefix_;                        // of the temporary names
    std::size_t opened_ = 0;                    // temporary files made
    int descriptor_ = -1;                       // of the last of them, -1: closed
    std::vector<std::string> madeDirectories_;  // outermost first
    bool committed_ = false;
};
