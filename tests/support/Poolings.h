#pragma once

#include "support/Compare.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MABinModel.h"

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
    bool IsBinary() const { return weight == MAConst::WEIGHT_BINARY_FIXED; }
    bool IsRatio() const { return effect != MAConst::BIN_RISK_DIFFERENCE; }

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
inline const Pooling& randomEffects = poolings[1];

using BinModel = MA_NAMESPACE::MABinModel;
using BinRun = FinishedRun<BinModel>;
using Column = std::vector<double> (BinModel::*)() const;
using Columns = std::vector<Column>;

/// What a model build appends always, and what as its heterogeneity output.

inline const Columns estimateColumns = {&BinModel::GetEstEffectSize, &BinModel::GetEstStdError,
                                        &BinModel::GetEstZVal,       &BinModel::GetEstSig,
                                        &BinModel::GetEstCILower,    &BinModel::GetEstCIUpper};
inline const Columns heterogeneityColumns = {&BinModel::GetHomoTestChisquareQ,
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
/// ... and for a ratio.
inline const Columns ratioColumns = {&BinModel::GetEstExpEffectSize, &BinModel::GetEstExpCILower,
                                     &BinModel::GetEstExpCIUpper};

/// Whether entry i of each column is, to the last digit, entry j of another run's.
inline testing::AssertionResult SameEntries(const Columns& columns, const BinModel& actual, std::size_t i,
                                            const BinModel& expected, std::size_t j)
{
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const Column column = columns[c];
        const std::vector<double> left = (actual.*column)();
        const std::vector<double> right = (expected.*column)();
        if (i >= left.size() || j >= right.size())
            return testing::AssertionFailure() << "column " << c << " has no such entry";
        const testing::AssertionResult result = Same(left[i], right[j]);
        if (!result)
            return testing::AssertionFailure() << "column " << c << " " << result.message();
    }
    return testing::AssertionSuccess();
}
