// The built-in module "qvioe": files of blocks, as the table QVIOE.
//
// Names are turned into paths as file_name.h says; what output may write to is said in
// block_file.h. An instance knows every file that it wrote by its name, for as long as it lives: a
// later open for input finds it there, whatever has become of the name in the file system.  Opening
// a name for output again makes the instance forget the older file; readers that still have it go
// on undisturbed.
//
// Tested by tests/host/io_test.cpp
#pragma once

#include "qvehost.h"

namespace qvhost {

struct Syscalls;

// Makes an instance.  Null when there is no memory.
QVExtensionh qvioeEntry(QVHndlp hndl, QVJnlh jnl);

// The same over other system calls, which must outlive all its files.
[[nodiscard]] QVExtensionh createIo(const Syscalls& calls) noexcept;

}  // namespace qvhost
