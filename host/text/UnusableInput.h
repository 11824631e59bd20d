#pragma once

#include <stdexcept>

namespace host {

/// Arguments, data or an output place that cannot be used. `what()` is the sentence that the user reads; the
/// program ends with exit status 2.
class UnusableInput : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace host
