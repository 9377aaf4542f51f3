// The bytes of a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// A file or standard input ("-"), read in large pieces.
class Input {
   public:
    explicit Input(const std::string& file);  // throws qvej::Error
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // The next piece, short only before the end and empty at it.  It lives until the next call.
    // Throws qvej::Error.
    std::string_view next();

    // What messages call it: the file as given, or "<stdin>".
    [[nodiscard]] const std::string& name() const { return name_; }

   private:
    int descriptor_;
    bool ended_ = false;
    std::string name_;
    std::vector<char> buffer_;
};
