// Lines on standard error.
#pragma once

#include <string_view>

namespace qvej::cli {

// Prints "qvejmap: LINE", made safe, and `excerpt` as it is.
void tell(std::string_view line, std::string_view excerpt = {});

// Prints a line, made safe, without the program's name.
void tellPlain(std::string_view line);

}  // namespace qvej::cli
