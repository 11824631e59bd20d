#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// A picture cannot be drawn. `what()` is the reason, which can follow a colon.
class DrawingFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// No picture can be drawn.
class NoGnuplot : public DrawingFailure
{
public:
    using DrawingFailure::DrawingFailure;
};

/// Runs the program gnuplot, without a shell, on the script and returns what it writes to its standard
/// output. Throws DrawingFailure when it fails or exceeds a time limit that grows with the script, NoGnuplot
/// when it is not installed. May run in several threads at once. gnuplot ends when this program does, however
/// that ends.
std::string RunGnuplot(const std::string& script);

} // namespace host
