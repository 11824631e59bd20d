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
    char expected;       ///< (v)alid, (m)issing or (i)nvalid
};

const Classification classifications[] = {
    {"valid", {10, 3, 2, 10, 2, 2}, false, 'v'},
    {"variances", {10, 3, 4, 10, 2, 4}, true, 'v'},
    {"groups of two", {2, 3, 2, 2, 2, 2}, false, 'v'},
    {"treatment group of one", {1, 3, 2, 10, 2, 2}, false, 'i'},
    {"control group below two", {10, 3, 2, 1.5, 2, 2}, false, 'i'},
    {"negative size", {-10, 3, 2, 10, 2, 2}, false, 'i'},
    {"no spread", {10, 3, 0, 10, 2, 2}, false, 'i'},
    {"negative deviation", {10, 3, 2, 10, 2, -2}, false, 'i'},
    {"negative variance", {10, 3, -4, 10, 2, 4}, true, 'i'},
    {"zero variance", {10, 3, 4, 10, 2, 0}, true, 'i'},
    {"missing variance", {10, 3, 4, 10, 2, missing}, true, 'm'},
    {"NaN variance", {10, 3, notANumber, 10, 2, 4}, true, 'm'},
    {"missing before invalid", {1, missing, 2, 10, 2, 2}, false, 'm'},
    {"NaN mean", {10, 3, 2, 10, notANumber, 2}, false, 'm'},
    {"short record", {10, 3, 2, 10, 2}, false, 'm'},
    {"infinite sizes", {infinity, 3, 2, infinity, 2, 2}, false, 'i'}, // no effect size
    {"infinite means", {10, infinity, 2, 10, infinity, 2}, false, 'i'},
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
        EXPECT_EQ(run.model.GetNMissing(), row.expected == 'm' ? 1 : 0);
        EXPECT_EQ(run.model.GetNInvalid(), row.expected == 'i' ? 1 : 0);
        EXPECT_EQ(run.model.GetEffectSize(), row.expected == 'v' ? Row{0.5} : Row{});
        EXPECT_EQ(run.model.GetSampSize(), row.expected == 'v' ? Row{row.record[0] + row.record[3]} : Row{});
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
