#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <string>
#include <vector>

/// A result as its getter returns it, a number or a list being a table of one row.
struct Result
{
    std::string name;
    std::vector<std::vector<double>> rows;
};

/// Every result of an analysis or a regression that a getter returns.
using Results = std::vector<Result>;

Results ResultsOf(const MA_NAMESPACE::MABinModel& model);
Results ResultsOf(const MA_NAMESPACE::MAAnalysisResults& model);
Results ResultsOf(const MA_NAMESPACE::MARegOutputStats& output);

/// The name of the first result that is not the same to the last bit; empty when there is none.
std::string FirstDifference(const Results& left, const Results& right);
