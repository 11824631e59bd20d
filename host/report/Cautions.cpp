#include "host/report/Cautions.h"

#include "host/report/CautionWording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>

namespace host {

std::string Listed(const std::vector<std::string>& texts)
{
    constexpr std::size_t MOST = 5;
    if (texts.size() <= MOST)
        return fmt::format("{}", fmt::join(texts, "; "));
    const std::vector<std::string> first(texts.begin(), texts.begin() + MOST);
    return fmt::format("{}; and {} more", fmt::join(first, "; "), texts.size() - MOST);
}

ReportSections CautionsSection(const Cautions& cautions)
{
    return cautions.sentences.empty() ? ReportSections()
                                      : ReportSections{{"Cautions", {}, cautions.sentences}};
}

} // namespace host
