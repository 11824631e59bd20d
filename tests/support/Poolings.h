#pragma once

#include "support/Compare.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MABinModel.h"

#include <vector>

/// A way to pool 2x2 tables.
struct Pooling
{
    MA_NAMESPACE::MAModelSettings Of(MA_NAMESPACE::MAModelSettings settings) const
    {
        settings.SetBinaryEstType(effect);
        settings.SetModelType(model);
        settings.SetWeightType(weight);
        return settings;
    }

    const char* name;
    MAConst::BINESTYPE effect;
    MAConst::MODELTYPE model;
    MAConst::WEIGHTYPE weight;
};

inline const Pooling poolings[] = {
    {"fixed effect", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_INVERSE_VARIANCE},
    {"random effects", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_RANDOM, MAConst::WEIGHT_INVERSE_VARIANCE},
    {"odds ratio", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"Peto", MAConst::BIN_PETO_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"risk ratio", MAConst::BIN_RISK_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"risk difference", MAConst::BIN_RISK_DIFFERENCE, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
};

using BinModel = MA_NAMESPACE::MABinModel;
using BinRun = FinishedRun<BinModel>;
using Column = std::vector<double> (BinModel::*)() const;

/// What a model build appends always, and what it appends as its heterogeneity output.
inline const Column estimateColumns[] = {&BinModel::GetEstEffectSize, &BinModel::GetEstStdError,
                                         &BinModel::GetEstZVal,       &BinModel::GetEstSig,
                                         &BinModel::GetEstCILower,    &BinModel::GetEstCIUpper};
inline const Column heterogeneityColumns[] = {&BinModel::GetHomoTestChisquareQ,
                                              &BinModel::GetHomoTestdf,
                                              &BinModel::GetHomoTestSig,
                                              &BinModel::GetH2Index,
                                              &BinModel::GetH2CILower,
                                              &BinModel::GetH2CIUpper,
                                              &BinModel::GetI2Index,
                                              &BinModel::GetI2CILower,
                                              &BinModel::GetI2CIUpper,
                                              &BinModel::GetTau2Var,
                                              &BinModel::GetPILower,
                                              &BinModel::GetPIUpper};
/// ... and as well, for a ratio.
inline const Column ratioColumns[] = {&BinModel::GetEstExpEffectSize, &BinModel::GetEstExpCILower,
                                      &BinModel::GetEstExpCIUpper};

/// Whether an entry of each column is the same number as an entry of another run's.
template <std::size_t count>
testing::AssertionResult SameEntries(const Column (&columns)[count], const BinModel& actual, std::size_t i,
                                     const BinModel& expected, std::size_t j)
{
    for (const Column& column : columns) {
        const std::vector<double> left = (actual.*column)();
        const std::vector<double> right = (expected.*column)();
        const auto position = &column - columns;
        if (i >= left.size() || j >= right.size())
            return testing::AssertionFailure() << "column " << position << " has no such entry";
        const testing::AssertionResult result = Same(left[i], right[j]);
        if (!result)
            return testing::AssertionFailure() << "column " << position << " " << result.message();
    }
    return testing::AssertionSuccess();
}
