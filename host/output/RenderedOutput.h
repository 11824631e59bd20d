#pragma once

#include "host/cli/Options.h"
#include "host/output/RunOutput.h"

#include <string>
#include <vector>

namespace host {

struct OutputFile
{
    std::string path;
    std::string bytes;
};

/// Everything that a run writes.
struct RenderedOutput
{
    std::string text = {}; ///< of standard output
    std::vector<OutputFile> files = {};
    std::vector<OutputFile> pictures = {};
    std::vector<std::string> notes = {};    ///< sentences about what is written
    std::vector<std::string> failures = {}; ///< a sentence for each thing that is missing, each once
};

void AddFailure(std::vector<std::string>& failures, const std::string& sentence);

/// Makes the forms that the options ask for. A run that ended with an error has the JSON alone. A picture
/// whose file is in use for something else is left out.
RenderedOutput Render(const Options& options, const RunOutput& output);

} // namespace host
