#include "host/report/ModelRows.h"

#include "host/report/EffectRows.h"

#include <map>
#include <numeric>

using namespace MA_NAMESPACE;

namespace host {

namespace {

struct ModelColumn
{
    double ModelRow::*field;
    std::vector<double> (MABaseModel::*get)() const;
};

constexpr ModelColumn MODEL_COLUMNS[] = {
    {&ModelRow::tau2, &MABaseModel::GetTau2Var},
    {&ModelRow::tau2Upper, &MABaseModel::GetTau2CIUpper},
    {&ModelRow::tau2Convergence, &MABaseModel::GetTau2Convergence},
    {&ModelRow::i2, &MABaseModel::GetI2Index},
    {&ModelRow::i2Lower, &MABaseModel::GetI2CILower},
    {&ModelRow::i2Upper, &MABaseModel::GetI2CIUpper},
    {&ModelRow::q, &MABaseModel::GetHomoTestChisquareQ},
    {&ModelRow::qDf, &MABaseModel::GetHomoTestdf},
    {&ModelRow::qSig, &MABaseModel::GetHomoTestSig},
    {&ModelRow::predictionLower, &MABaseModel::GetPILower},
    {&ModelRow::predictionUpper, &MABaseModel::GetPIUpper},
    {&ModelRow::df, &MABaseModel::GetEstDf},
};

void Fill(std::vector<ModelRow>& rows, double ModelRow::*field, const std::vector<double>& values)
{
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row].*field = row < values.size() ? values[row] : KXMV::Missing();
}

/// The positions among the studies of each group's, or of those in the steps of a cumulative analysis where
/// it lacks some, and then of all.
std::vector<std::vector<std::size_t>> StudiesOfModels(const AnalysisData& data, std::size_t modelCount)
{
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    std::vector<std::size_t> all(records.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (modelCount < 2)
        return {all};
    std::map<int, std::size_t> studyOf;
    for (const std::size_t study : all)
        studyOf[records[study]] = study;
    std::vector<std::vector<std::size_t>> ofModels;
    for (const std::vector<int>& members : data.base.GetSubGroupStudyID()) {
        ofModels.emplace_back();
        for (const int record : members)
            ofModels.back().push_back(studyOf.at(record));
    }
    ofModels.push_back(all);
    return ofModels;
}

} // namespace

std::vector<ModelRow> ModelRowsOf(const AnalysisData& data)
{
    const Estimates pooled = PooledRows(data).effects;
    const std::vector<std::vector<std::size_t>> studies = StudiesOfModels(data, pooled.values.size());
    const std::vector<std::string> labels = data.RowLabels(studies.size());
    std::vector<ModelRow> rows(studies.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        rows[row].label = rows.size() > 1 ? labels[row] : "";
        rows[row].studies = studies[row];
    }
    rows.back().isOverall = true;
    for (const ModelColumn& column : MODEL_COLUMNS)
        Fill(rows, column.field, (data.base.*column.get)());
    Fill(rows, &ModelRow::estimate, pooled.values);
    Fill(rows, &ModelRow::ciLower, pooled.lower);
    Fill(rows, &ModelRow::ciUpper, pooled.upper);
    return rows;
}

} // namespace host
