#include "meta_analysis/analysis/steps/RegTestRecordIterator.h"

#include "meta_analysis/analysis/studies/MACountVariables.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/effectsize/MATableRule.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

constexpr double zeroCountConstant = 0.5;
constexpr std::size_t largestComputedColumnCount = 3;

} // namespace

RegTestRecordIterator::RegTestRecordIterator(MultiPassRecordIter& source, int columnCount,
                                             MAConst::RegBaseTestType test)
    : source_(&source), columnCount_(columnCount), test_(test)
{}

RegTestRecordIterator::~RegTestRecordIterator() = default;

void RegTestRecordIterator::SetCountIndices(int treatmentEvents, int treatmentNonEvents, int controlEvents,
                                            int controlNonEvents)
{
    treatmentEvents_ = treatmentEvents;
    treatmentNonEvents_ = treatmentNonEvents;
    controlEvents_ = controlEvents;
    controlNonEvents_ = controlNonEvents;
}

void RegTestRecordIterator::SetSizeIndices(int treatment, int control)
{
    treatmentSize_ = treatment;
    controlSize_ = control;
}

void RegTestRecordIterator::SetOmegaWeight(int index, MAConst::OMGWeightType type)
{
    omegaIndex_ = index;
    omegaType_ = type;
}

bool RegTestRecordIterator::ResizeRecord()
{
    return record_.Resize(static_cast<std::size_t>(columnCount_) + largestComputedColumnCount);
}

bool RegTestRecordIterator::Start()
{
    return source_->Start();
}

bool RegTestRecordIterator::Reset()
{
    return source_->Reset();
}

int RegTestRecordIterator::GetError() const
{
    return source_->GetError();
}

const Record* RegTestRecordIterator::Next()
{
    while (const Record* source = source_->Next()) {
        if (!AppendColumns(*source))
            continue;
        for (int i = 0; i < columnCount_; ++i)
            record_.Set(i, source->Get(i));
        return &record_;
    }
    return nullptr;
}

/// False for a record that the test passes over.
bool RegTestRecordIterator::AppendColumns(const Record& source)
{
    if (test_ == MAConst::REG_TEST_EFFECT_ON_STD_ERROR) {
        AppendStdError(source);
        return true;
    }
    MATable table{};
    if (test_ < MAConst::REG_TEST_SCORE_VARIANCE || test_ > MAConst::REG_TEST_EFFECT_ON_SIZE ||
        !ReadTable(source, table))
        return false;
    AppendTableColumns(table);
    return true;
}

void RegTestRecordIterator::AppendStdError(const Record& source)
{
    const double omega = source.Get(omegaIndex_);
    double stdError = omega;
    if (omegaType_ == MAConst::OMEGA_WEIGHT)
        stdError = std::sqrt(1.0 / omega);
    else if (omegaType_ == MAConst::OMEGA_VARIANCE)
        stdError = std::sqrt(omega);
    record_.Set(columnCount_, stdError);
}

bool RegTestRecordIterator::ReadTable(const Record& source, MATable& table) const
{
    const MACountVariables variables = {{treatmentEvents_, treatmentNonEvents_, treatmentSize_},
                                        {controlEvents_, controlNonEvents_, controlSize_}};
    table = variables.Read(source);
    return MATableRule(zeroAdjustment_, dropBinZero_).Judge(table) == MATableVerdict::Study;
}

void RegTestRecordIterator::AppendTableColumns(const MATable& counts)
{
    const MATable table = MAZeroCorrection{zeroAdjustment_, zeroCountConstant}.Corrected(counts);
    const double n = table.Size();
    const double events = table.a + table.c;
    const double nonEvents = table.b + table.d;
    if (test_ == MAConst::REG_TEST_EFFECT_ON_SIZE) {
        record_.Set(columnCount_, 1.0 / n);
        record_.Set(columnCount_ + 1, nonEvents * events / n);
        return;
    }
    const bool usesMargins = test_ == MAConst::REG_TEST_SCORE_VARIANCE;
    const double score = usesMargins ? table.ExcessEvents() : table.ExcessEvents() * n / nonEvents;
    const double variance = usesMargins
                                ? table.HypergeometricVariance()
                                : table.ControlSize() * table.TreatmentSize() * events / (nonEvents * n);
    record_.Set(columnCount_, score / variance);
    record_.Set(columnCount_ + 1, 1.0 / std::sqrt(variance));
    record_.Set(columnCount_ + 2, variance);
}

} // namespace MA_NAMESPACE
