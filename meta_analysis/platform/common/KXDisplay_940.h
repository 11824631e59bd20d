#pragma once

#include "meta_analysis/platform/common/Export.h"

#include <string>
#include <string_view>
#include <vector>

/// Debug display: writes labelled values, one item a line, to a sink that the host provides.
///
/// Each thread has its own sink, so that threads do not disturb each other, and none at first: the
/// library is silent, and nothing is formatted. With a sink, the functions throw what the sink throws, and
/// std::bad_alloc when memory runs out.
class META_ANALYSIS_EXPORT KXDisplay_940
{
public:
    /// Where the lines of the display go.
    class META_ANALYSIS_EXPORT Sink
    {
    public:
        virtual ~Sink();

        /// Receives one line, without a line end.
        virtual void Line(const std::string& line) = 0;
    };

    /// Sets the sink of the calling thread, null for none. It is not owned.
    static void SetSink(Sink* sink) noexcept;

    static void DisplayText(std::string_view text);

    /// The label, and after a blank the value.
    static void DisplayI(std::string_view label, int value);

    /// The label, and after a blank each the values.
    static void DisplayIV(std::string_view label, const std::vector<int>& values);

    /// The label, and after a blank "true" or "false".
    static void DisplayB(std::string_view label, bool value);

    /// The label, directly followed by the text.
    static void DisplayC(std::string_view label, std::string_view text);

    /// The label, and after a blank the value: "missing", or the shortest digits that read back as the
    /// same double, in any locale.
    static void DisplayDF(std::string_view label, double value);
};
