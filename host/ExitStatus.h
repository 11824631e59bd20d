#pragma once

namespace host {

enum ExitStatus : int
{
    EXIT_RAN = 0,           ///< with warnings or without
    EXIT_LIBRARY_ERROR = 1, ///< the library returned an error
    EXIT_UNUSABLE = 2       ///< unusable arguments or data
};

} // namespace host
