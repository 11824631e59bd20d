#include "support/PooledFigures.h"

#include "meta_analysis/analysis/MAContModel.h"

using namespace MA_NAMESPACE;

namespace {

/// A measure of the reference figures and the settings that ask for it.
struct Measure
{
    const char* key;
    MAConst::CONTESTYPE type;
    bool equalVariances;
    bool adjusted;
    MAConst::STUDYGROUPTYPE glassGroup;
};

const Measure measures[] = {
    {"MD", MAConst::CONT_MEAN_DIFFERENCE, false, false, MAConst::GROUP_CONTROL},
    {"MD_equal_var", MAConst::CONT_MEAN_DIFFERENCE, true, false, MAConst::GROUP_CONTROL},
    {"cohen_d", MAConst::CONT_COHENS_D, false, false, MAConst::GROUP_CONTROL},
    {"cohen_d_adjusted", MAConst::CONT_COHENS_D, false, true, MAConst::GROUP_CONTROL},
    {"hedges_g", MAConst::CONT_HEDGES_G, false, false, MAConst::GROUP_CONTROL},
    {"hedges_g_adjusted", MAConst::CONT_HEDGES_G, false, true, MAConst::GROUP_CONTROL},
    {"glass_control", MAConst::CONT_GLASS_DELTA, false, false, MAConst::GROUP_CONTROL},
    {"glass_treatment", MAConst::CONT_GLASS_DELTA, false, false, MAConst::GROUP_TREATMENT},
    {"glass_control", MAConst::CONT_GLASS_DELTA, false, false, static_cast<MAConst::STUDYGROUPTYPE>(7)},
};

struct Classification
{
    const char* name;
    Row record;          ///< treatment size, mean, dispersion, control size, mean, dispersion
    bool givesVariances; ///< the dispersions are variances
    MAConst::EXCLUSION reason;
};

const Classification classifications[] = {
    {"valid", {10, 3, 2, 10, 2, 2}, false, MAConst::EXCLUSION_NONE},
    {"variances", {10, 3, 4, 10, 2, 4}, true, MAConst::EXCLUSION_NONE},
    {"groups of two", {2, 3, 2, 2, 2, 2}, false, MAConst::EXCLUSION_NONE},
    {"treatment group of one", {1, 3, 2, 10, 2, 2}, false, MAConst::EXCLUSION_GROUP_TOO_SMALL},
    {"control group below two", {10, 3, 2, 1.5, 2, 2}, false, MAConst::EXCLUSION_GROUP_TOO_SMALL},
    {"negative size", {-10, 3, 2, 10, 2, 2}, false, MAConst::EXCLUSION_GROUP_TOO_SMALL},
    {"no spread", {10, 3, 0, 10, 2, 2}, false, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    {"negative deviation", {10, 3, 2, 10, 2, -2}, false, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    {"negative variance", {10, 3, -4, 10, 2, 4}, true, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    {"zero variance", {10, 3, 4, 10, 2, 0}, true, MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    {"missing variance", {10, 3, 4, 10, 2, missing}, true, MAConst::EXCLUSION_MISSING_VALUE},
    {"NaN variance", {10, 3, notANumber, 10, 2, 4}, true, MAConst::EXCLUSION_MISSING_VALUE},
    {"missing before invalid", {1, missing, 2, 10, 2, 2}, false, MAConst::EXCLUSION_MISSING_VALUE},
    {"NaN mean", {10, 3, 2, 10, notANumber, 2}, false, MAConst::EXCLUSION_MISSING_VALUE},
    {"short record", {10, 3, 2, 10, 2}, false, MAConst::EXCLUSION_MISSING_VALUE},
    {"infinite sizes", {infinity, 3, 2, infinity, 2, 2}, false, MAConst::EXCLUSION_NOT_POOLABLE},
    {"infinite means", {10, infinity, 2, 10, infinity, 2}, false, MAConst::EXCLUSION_NOT_POOLABLE},
};

} // namespace

TEST(MAContModel, RecordsAreClassified)
{
    for (const Classification& row : classifications) {
        SCOPED_TRACE(row.name);
        MAModelSettings settings = MeansSettings();
        if (row.givesVariances) {
            settings.SetTreatmentStdErrorIndex(-1);
            settings.SetControlStdErrorIndex(-1);
            settings.SetTreatmentVarianceIndex(2);
            settings.SetControlVarianceIndex(5);
        }
        const FinishedRun<MAContModel> run(settings, {row.record});
        EXPECT_TRUE(run.status.IsOK());
        ExpectExcluded(run.model, 1, row.reason);
        const bool isStudy = row.reason == MAConst::EXCLUSION_NONE;
        EXPECT_EQ(run.model.GetEffectSize(), isStudy ? Row{0.5} : Row{});
        EXPECT_EQ(run.model.GetSampSize(), isStudy ? Row{row.record[0] + row.record[3]} : Row{});
    }
}

TEST(MAContModel, GroupSummariesMeetTheReferenceFigures)
{
    for (const char* const name : {"stroke_length_of_stay", "elevated_co2"}) {
        const DataSet data(name);
        const nlohmann::json reference = LoadReference(name);
        for (const Measure& measure : measures) {
            SCOPED_TRACE(std::string(name) + " " + measure.key);
            MAModelSettings settings = MeansSettings(data.IndexOf("treatment_n"));
            settings.SetContinousEstType(measure.type);
            settings.SetVarEqualAssumption(measure.equalVariances);
            settings.SetVarianceAdjustment(measure.adjusted);
            settings.SetGlassDsVarDependentGroup(measure.glassGroup);

            const nlohmann::json& figures = reference.at(measure.key);
            const FinishedRun<MAContModel> run(settings, data.rows);
            EXPECT_TRUE(run.status.IsOK());
            EXPECT_TRUE(Close(run.model.GetEffectSize(), figures.at("yi").get<Row>(), studyTolerance));
            EXPECT_TRUE(Close(run.model.GetVariance(), figures.at("vi").get<Row>(), studyTolerance));
            ExpectStudyTests(run.model);
            ExpectPooled<MAContModel>(settings, data.rows, figures.at("pooled"));
        }
    }
}

TEST(MAContModel, ReadyMadeEffectsMeetTheReferenceFigures)
{
    for (const char* const name : {"passive_smoking", "teacher_expectancy", "writing_to_learn"}) {
        SCOPED_TRACE(name);
        const DataSet data(name);
        ExpectPooled<MAContModel>(EffectSettings(data.IndexOf("effect")), data.rows,
                                  LoadReference(name).at("pooled"));
    }
}
