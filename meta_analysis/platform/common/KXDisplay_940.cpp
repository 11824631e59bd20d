#include "meta_analysis/platform/common/KXDisplay_940.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <array>
#include <charconv>

namespace {

thread_local KXDisplay_940::Sink* threadSink = nullptr;

template <class Number>
void AppendNumber(std::string& line, Number value)
{
    std::array<char, 32> digits; // the longest number, "-2.2250738585072014e-308", has 24
    const char* begin = digits.data();
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    line.append(" ").append(begin, end);
}

void Append(std::string& line, std::string_view text)
{
    line.append(text);
}

void Append(std::string& line, bool value)
{
    line.append(value ? " true" : " false");
}

void Append(std::string& line, int value)
{
    AppendNumber(line, value);
}

void Append(std::string& line, double value)
{
    if (KXMV::IsMissing(value))
        line.append(" missing");
    else
        AppendNumber(line, value);
}

void Append(std::string& line, const std::vector<int>& values)
{
    for (const int value : values)
        AppendNumber(line, value);
}

template <class Value>
void WriteItem(std::string_view label, const Value& value)
{
    if (threadSink == nullptr)
        return;
    std::string line(label);
    Append(line, value);
    threadSink->Line(line);
}

} // namespace

KXDisplay_940::Sink::~Sink() = default;

void KXDisplay_940::SetSink(Sink* sink) noexcept
{
    threadSink = sink;
}

void KXDisplay_940::DisplayText(std::string_view text)
{
    WriteItem(text, std::string_view());
}

void KXDisplay_940::DisplayI(std::string_view label, int value)
{
    WriteItem(label, value);
}

void KXDisplay_940::DisplayIV(std::string_view label, const std::vector<int>& values)
{
    WriteItem(label, values);
}

void KXDisplay_940::DisplayB(std::string_view label, bool value)
{
    WriteItem(label, value);
}

void KXDisplay_940::DisplayC(std::string_view label, std::string_view text)
{
    WriteItem(label, text);
}

void KXDisplay_940::DisplayDF(std::string_view label, double value)
{
    WriteItem(label, value);
}
