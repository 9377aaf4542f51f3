// What must not stay behind when a signal ends the tool: unfinished output.
//
// The handlers remove what is named here, with nothing but async-signal-safe calls on names that
// were laid down beforehand, and then let the signal do what it does by default.
//
// Tested by tests/tool/golden/interrupt.t and tests/tool/cleanup_test.cpp
#pragma once

#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

namespace cleanup {

// Installs the handlers, except for signals that are ignored (nohup).
void install();

// Unfinished output: the files PREFIX0, PREFIX1, ... up to a count, or the files of given names in
// the directory PREFIX, which goes too; and directories that were made for them.  While the object
// lives; two may at a time.
class Output {
   public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // `names`: of the files in `prefix`, which then ends with "/"; they stay as they are while this
    // object lives.  Null: the files are numbered.  `directories`: how many of the last components
    // of `directory` were made.  Throws qvej::Error for a path that is too long.
    void set(const std::string& prefix, const std::vector<std::string>* names,
             const std::string& directory, std::size_t directories);
    void setCount(std::size_t count);

   private:
    std::size_t slot_;
};

// Holds the signals back while it lives.
class Hold {
   public:
    Hold();
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    sigset_t before_;
};

}  // namespace cleanup

}  // namespace qvej
