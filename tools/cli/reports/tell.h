// Lines on standard error.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qvej::cli {

// Prints "qvejmap: LINE", made safe, and `excerpt` as it is.
void tell(std::string_view line, std::string_view excerpt = {});

// Tells each of the lines.
void tellEach(const std::vector<std::string>& lines);

// Prints a line, made safe, without the program's name.
void tellPlain(std::string_view line);

}  // namespace qvej::cli
