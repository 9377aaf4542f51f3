// The bytes of FILE, and their way to UTF-8 when the engine cannot read their encoding itself.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A file or standard input ("-"), read in large pieces.
class Input {
   public:
    explicit Input(const std::string& file);  // throws a Failure
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // The next piece, empty at the end.  It lives until the next call.  Throws a Failure.
    std::string_view next();

    // What messages call it: the file as given, or "<stdin>".
    [[nodiscard]] const std::string& name() const { return name_; }

   private:
    int descriptor_;
    std::string name_;
    std::vector<char> buffer_;
};

// Converts a text, piece by piece, from any encoding that ICU knows to UTF-8, and stops at the
// first byte that is wrong in it.
class Converter {
   public:
    explicit Converter(const std::string& encoding);  // throws a Failure: unknown encoding
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    struct Piece {
        std::string_view text;  // lives until the next call
        bool broken;            // behind `text` stands something that is wrong in the encoding
    };
    // An empty `input` is the end.
    Piece convert(std::string_view input);

   private:
    struct State;
    std::unique_ptr<State> state_;
};
