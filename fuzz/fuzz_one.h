// What each target defines: its property, checked on one input.  Gives 0; a property that does not
// hold ends the program.  fuzzer_entry.cpp calls it for the fuzzer, replay.cpp for kept inputs.
#pragma once

#include <cstddef>
#include <cstdint>

int fuzzOne(const uint8_t* data, std::size_t size);
