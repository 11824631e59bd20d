#include "host/output/WriteOutput.h"

#include "host/output/OutputWriting.h"
#include "host/output/RenderedOutput.h"
#include "host/system/Progress.h"
#include "host/text/StatusText.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace host {

namespace {

void WriteLibraryError(int code, const std::string& detail)
{
    const char* const gap = detail.empty() ? "" : " ";
    WriteToStandardError(fmt::format("error {}: {}{}{}", code, SentenceOf(code), gap, detail).c_str());
}

/// Whether `write` succeeded; if not, its sentence joins the failures.
template <class Write>
bool Try(std::vector<std::string>& failures, const Write& write)
{
    try {
        write();
        return true;
    } catch (const UnusableInput& problem) {
        AddFailure(failures, problem.what());
        return false;
    }
}

/// A part that cannot be written does not keep the others from being written.
void Write(RenderedOutput& rendered, const Options& options)
{
    std::vector<std::string>& failures = rendered.failures;
    Try(failures, [&] { WriteStandardOutput(rendered.text); });
    for (const OutputFile& file : rendered.files)
        Try(failures, [&] { WriteFile(file.path, file.bytes); });
    if (rendered.pictures.empty() || !Try(failures, [&] { MakeFolder(*options.plotsFolder); }))
        return;
    for (const OutputFile& file : rendered.pictures)
        Try(failures, [&] { WriteFile(file.path, file.bytes); });
}

/// Writes the first few only, because hundreds of pictures may have one cause.
void WriteFailures(const std::vector<std::string>& failures)
{
    constexpr std::size_t MOST_SENTENCES = 10;
    const std::size_t count = std::min(failures.size(), MOST_SENTENCES);
    for (std::size_t i = 0; i < count; ++i)
        WriteToStandardError(failures[i].c_str());
    if (count < failures.size())
        WriteToStandardError(
            fmt::format("{} more things are missing likewise.", failures.size() - count).c_str());
}

} // namespace

ExitStatus WriteOutput(const Options& options, const RunOutput& output)
{
    RenderedOutput rendered = WithProgress("Making the report", [&] { return Render(options, output); });
    Write(rendered, options);
    const KXStatus& status = output.status.IsError() ? output.status : output.furtherStatus;
    if (status.IsError())
        WriteLibraryError(status.GetCode(), output.errorDetail);
    for (const std::string& note : rendered.notes)
        WriteToStandardError(note.c_str());
    WriteFailures(rendered.failures);
    if (!rendered.failures.empty())
        return EXIT_UNUSABLE;
    return status.IsError() ? EXIT_LIBRARY_ERROR : EXIT_RAN;
}

} // namespace host
