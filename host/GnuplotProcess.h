#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// Pictures cannot be drawn. `what()` is a sentence for the user.
class DrawingFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Runs the program gnuplot, without a shell, on the script and returns what it writes to its standard
/// output. Throws DrawingFailure when it is not installed or fails.
std::string RunGnuplot(const std::string& script);

} // namespace host
