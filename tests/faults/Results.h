#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <string>
#include <vector>

/// A result as its getter returns it, a number or a list being a table of one row.
struct Result
{
    std::string name;
    std::vector<std::vector<double>> rows;
};

/// Every result that a getter returns as numbers, of an analysis or a `MARegOutputStats`.
using Results = std::vector<Result>;
template <class Source>
Results ResultsOf(const Source& source);

/// The name of the first result that is not the same to the last bit; empty when there is none.
std::string FirstDifference(const Results& left, const Results& right);
