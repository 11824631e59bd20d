#pragma once

#include "meta_analysis/platform/common/KXDisplay_940.h"

#include <string>

/// What an object writes to the debug display; "; " ends a line.
template <class Shown>
std::string DisplayOf(const Shown& shown)
{
    struct Listing : KXDisplay_940::Sink
    {
        void Line(const std::string& line) override { text += line + "; "; }
        std::string text;
    };
    Listing listing;
    KXDisplay_940::SetSink(&listing);
    shown.Display();
    KXDisplay_940::SetSink(nullptr);
    return listing.text;
}
