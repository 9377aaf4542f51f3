// Removes unfinished output when a signal ends the tool.
//
// The handler runs on the main thread: the others block all signals.  It stops threads that make
// files, removes what is named here, says so in one line, and lets the signal do what it does by
// default.  It makes only async-signal-safe calls, on names that were laid down beforehand.  A
// second signal ends the tool at once and names what stays.
//
// Tested by tests/formats/cleanup_test.cpp, tests/tool/interrupt_test.sh and
// tests/tool/golden/interrupt.t
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qvej {

namespace cleanup {

// Installs the handlers, except for signals that are ignored (nohup).  A program that does not call
// it has its own signals: outputs are then not named to anyone, and any number may be written at a
// time, on any threads.
void install();

// An output, and what is unfinished of it: the files PREFIX0, PREFIX1, ... up to a count, or the
// files of given names in the directory PREFIX, which goes too; and directories that were made for
// them.  While the object lives; with the handlers two may at a time.
class Output {
   public:
    explicit Output(const std::string& name);  // what messages call it
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // `names`: of the files in `prefix`, which then ends with "/"; they stay as they are while this
    // object lives.  Null: the files are numbered.  `directories`: how many of the last components
    // of `directory` were made.  Throws qvej::Error for a path that is too long.
    void set(const std::string& prefix, const std::vector<std::string>* names,
             const std::string& directory, std::size_t directories);
    void setCount(std::size_t count);

    enum State {
        UNTOUCHED,  // nothing has its final name
        BETWEEN,    // under a Hold only
        COMPLETE,   // everything has its final name, nothing is to be removed
    };
    void setState(State state);

   private:
    std::size_t slot_;
};

// For steps that a signal must not divide: making a file, giving files their names.  While it lives
// on the main thread, the first signal waits for its end.  On another thread, the handler waits for
// its end, and the thread stops for good instead of beginning one after a signal.
class Hold {
   public:
    Hold();
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
};

}  // namespace cleanup

}  // namespace qvej
