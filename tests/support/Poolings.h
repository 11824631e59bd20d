#pragma once

#include "faults/Results.h"
#include "support/Compare.h"
#include "support/FinishedRun.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"

/// A way to pool 2x2 tables.
struct Pooling
{
    MA_NAMESPACE::MAModelSettings Of(MA_NAMESPACE::MAModelSettings settings) const
    {
        settings.SetBinaryEstType(effect);
        settings.SetModelType(model);
        settings.SetWeightType(weight);
        settings.SetPooledZeroCells(zeroCells);
        return settings;
    }
    bool IsBinary() const { return weight == MAConst::WEIGHT_BINARY_FIXED; }

    const char* name;
    MAConst::BINESTYPE effect;
    MAConst::MODELTYPE model;
    MAConst::WEIGHTYPE weight;
    MAConst::POOLEDZEROCELLS zeroCells = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
};

inline const Pooling poolings[] = {
    {"fixed effect", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_INVERSE_VARIANCE},
    {"random effects", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_RANDOM, MAConst::WEIGHT_INVERSE_VARIANCE},
    {"odds ratio", MAConst::BIN_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"Peto", MAConst::BIN_PETO_ODDS_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"risk ratio", MAConst::BIN_RISK_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"risk difference", MAConst::BIN_RISK_DIFFERENCE, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED},
    {"risk ratio, as read", MAConst::BIN_RISK_RATIO, MAConst::MODEL_FIXED, MAConst::WEIGHT_BINARY_FIXED,
     MAConst::POOLED_ZERO_CELLS_IF_NEEDED},
};
inline const Pooling& randomEffects = poolings[1];

using BinModel = MA_NAMESPACE::MABinModel;
using BinRun = FinishedRun<BinModel>;
using ContRun = FinishedRun<MA_NAMESPACE::MAContModel>;
using Column = std::vector<double> (BinModel::*)() const;
using Columns = std::vector<Column>;

inline Row Exponentials(Row values)
{
    for (double& value : values)
        value = std::exp(value);
    return values;
}

/// What a model build appends always, and what as its heterogeneity output.
inline const Columns estimateColumns = {
    &BinModel::GetEstEffectSize,    &BinModel::GetEstStdError,   &BinModel::GetEstZVal,
    &BinModel::GetEstSig,           &BinModel::GetEstCILower,    &BinModel::GetEstCIUpper,
    &BinModel::GetEstExpEffectSize, &BinModel::GetEstExpCILower, &BinModel::GetEstExpCIUpper};
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

/// Entry i of the columns that are not empty.
inline Row EntriesOf(const BinModel& model, std::size_t i, const Columns& columns)
{
    Row entries;
    for (const Column column : columns) {
        const Row values = (model.*column)();
        if (!values.empty())
            entries.push_back(values.at(i));
    }
    return entries;
}

/// Whether a run's model i has, to the last digit, the results of another run's model j.
inline testing::AssertionResult SameModel(const BinModel& actual, std::size_t i, const BinModel& expected,
                                          std::size_t j = 0)
{
    for (const Columns& columns : {estimateColumns, heterogeneityColumns}) {
        if (const auto same = Same(EntriesOf(actual, i, columns), EntriesOf(expected, j, columns)); !same)
            return same;
    }
    return testing::AssertionSuccess();
}

/// All results but those whose names contain one of some words.
inline Results ResultsBut(const std::vector<std::string>& words, const BinModel& model)
{
    Results results = ResultsOf(model);
    for (const std::string& word : words)
        std::erase_if(results, [&word](const Result& result) { return result.name.find(word) != word.npos; });
    return results;
}
