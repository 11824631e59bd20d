#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/RegressionData.h"
#include "host/report/Report.h"

#include "meta_analysis/settings/MAConst.h"

#include <string>
#include <utility>
#include <vector>

namespace host {

/// What was done, as a sentence without full stop, and the keys of its references. Empty for what was not.
struct Method
{
    std::string sentence = {};
    std::vector<std::string> keys = {};
};

/// The sentences on the methods, to be pasted into a paper, and the references of exactly these as BibTeX.
ReportSections MethodsSections(const AnalysisData& data);
ReportSections MethodsSections(const RegressionData& data);

// Shared by analyses and meta-regressions.

ReportSections SectionsOf(std::vector<Method> methods);

/// What each maker says of the data.
template <class Makers, class Data>
ReportSections SectionsBy(const Makers& makers, const Data& data)
{
    std::vector<Method> methods;
    for (const auto& make : makers)
        methods.push_back(make(data));
    return SectionsOf(std::move(methods));
}

/// Of an analysis or a meta-regression.
template <class Data>
Method MethodOfLevel(const Data& data)
{
    return {"The confidence level is " + data.level, {}};
}

Method MethodOfInfluence(const MA_NAMESPACE::MAModelSettings& settings);

/// The estimator of tau², with its references.
Method MethodOfTau2(MAConst::TAU2ESTIMATOR estimator);
Method MethodOfTau2Interval(MAConst::TAU2INTERVAL interval);
Method MethodOfKnappHartung(MAConst::KNAPPHADJTYPE adjustment);
Method MethodOfConversions(const StudyNotes& notes);

} // namespace host
