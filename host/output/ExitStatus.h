#pragma once

namespace host {

enum ExitStatus : int
{
    EXIT_RAN = 0,           ///< with warnings or without
    EXIT_LIBRARY_ERROR = 1, ///< the library returned an error
    EXIT_UNUSABLE = 2       ///< arguments or data, or a file that could not be written
};

} // namespace host
