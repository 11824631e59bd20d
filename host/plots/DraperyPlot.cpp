#include "host/plots/ForestExtent.h"
#include "host/plots/PValueCurve.h"
#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/report/EffectRows.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr double NORMAL = std::numeric_limits<double>::infinity(); // degrees of freedom
constexpr double FINE = 0.05;             // steps of the pooled curve, in standard errors
constexpr std::size_t MOST_STUDIES = 300; // beyond which no curve could be told from others

/// Makes the drapery plot of all studies or of a group: the p-value functions of each study and of the pooled
/// effect, and the region of the prediction intervals of all levels. Rücker and Schwarzer (2021), Research
/// Synthesis Methods 12, 312-323.
class Drapery
{
public:
    Drapery(const AnalysisData& data, const PlotOfGroup& plot);

    bool HasCurves() const { return studies_.size() > 1; }
    Picture Draw() const;

private:
    double PooledDf() const;
    TestedEstimate Prediction() const;
    void AddStudies();
    Extent Effects() const;
    Layer Studies(const Extent& effects) const;
    Layer Region(const Extent& effects) const;
    Layer Curve(const TestedEstimate& tested, const Extent& effects, const char* color, double width,
                std::string legend) const;
    std::vector<std::string> Notes(const Extent& effects) const;

    const AnalysisData& data_;
    const MABaseModel& base_;
    const PlotOfGroup& plot_;
    std::size_t model_; ///< the entry of the pooled model
    double alpha_;
    std::size_t studyCount_ = 0;
    std::vector<TestedEstimate> studies_; ///< those of the largest weights, where there are too many
    TestedEstimate pooled_;
    TestedEstimate prediction_; ///< without test where nothing is predicted
};

Drapery::Drapery(const AnalysisData& data, const PlotOfGroup& plot)
    : data_(data),
      base_(data.base),
      plot_(plot),
      model_(plot.number == 0 ? PooledRows(data).effects.values.size() - 1 : plot.number - 1),
      alpha_(AlphaOf(data.settings)),
      pooled_({plot.estimate, PooledRows(data).stdErrors[model_], PooledDf()}),
      prediction_(Prediction())
{
    AddStudies();
}

/// Missing where the test is by the normal distribution.
double Drapery::PooledDf() const
{
    const std::vector<double> df = base_.GetEstDf();
    return model_ < df.size() && IsNumber(df[model_]) ? df[model_] : NORMAL;
}

/// The distribution behind the prediction interval, of which the library has the limits at one level.
TestedEstimate Drapery::Prediction() const
{
    const std::vector<double> lower = base_.GetPILower();
    if (model_ >= lower.size() || !IsNumber(lower[model_]))
        return {KXMV::Missing(), 0, 0};
    const double stdDev = std::sqrt(pooled_.stdError * pooled_.stdError + base_.GetTau2Var()[model_]);
    const double residualDf = std::isinf(pooled_.df) ? base_.GetHomoTestdf()[model_] : pooled_.df;
    switch (data_.settings.GetPrediction()) {
    case MAConst::PREDICTION_T_K_MINUS_2:
        return {pooled_.estimate, stdDev, residualDf - 1};
    case MAConst::PREDICTION_T_K_MINUS_1:
        return {pooled_.estimate, stdDev, residualDf};
    case MAConst::PREDICTION_NORMAL:
        return {pooled_.estimate, stdDev, NORMAL};
    }
    return {KXMV::Missing(), 0, 0};
}

void Drapery::AddStudies()
{
    const std::vector<double> effects = base_.GetEffectSize();
    const std::vector<double> stdErrors = base_.GetStdError();
    for (const std::size_t study : StudiesOf(data_, plot_))
        if (const TestedEstimate tested = {effects[study], stdErrors[study], NORMAL}; tested.HasTest())
            studies_.push_back(tested);
    studyCount_ = studies_.size();
    if (studyCount_ <= MOST_STUDIES)
        return;
    const auto end = studies_.begin() + MOST_STUDIES;
    std::nth_element(studies_.begin(), end, studies_.end(),
                     [](const auto& one, const auto& other) { return one.stdError < other.stdError; });
    studies_.erase(end, studies_.end());
}

/// That of a forest plot, and the pooled curve down to a p-value of 0.001.
Extent Drapery::Effects() const
{
    constexpr double reach = 3.3; // in standard errors
    const double critical = KXDistFun::IdfStdNorm(1 - alpha_ / 2);
    std::vector<ForestRow> rows;
    for (const TestedEstimate& study : studies_) {
        rows.push_back({ForestRow::Kind::STUDY});
        rows.back().place = {study.estimate, study.estimate - critical * study.stdError,
                             study.estimate + critical * study.stdError};
    }
    if (!pooled_.HasTest())
        return EffectExtent(rows, data_.measure.hasNoEffect);
    rows.push_back({ForestRow::Kind::POOLED});
    rows.back().place = {pooled_.estimate, pooled_.estimate - reach * pooled_.stdError,
                         pooled_.estimate + reach * pooled_.stdError};
    return EffectExtent(rows, data_.measure.hasNoEffect);
}

/// Fainter and with fewer points where there are many.
Layer Drapery::Studies(const Extent& effects) const
{
    constexpr double few = 20;
    constexpr std::size_t many = 100;
    const double share = std::min(1.0, few / static_cast<double>(studies_.size()));
    Layer layer = {Layer::Kind::LINE, color::STUDY, {}, {}, 1, "Study"};
    layer.opacity = 0.25 + 0.6 * share;
    for (const TestedEstimate& study : studies_)
        layer.pieces.push_back(PValueCurve(study, effects, alpha_, studies_.size() > many ? 0.2 : 0.1));
    return layer;
}

Layer Drapery::Region(const Extent& effects) const
{
    std::vector<Point> outline = PValueCurve(prediction_, effects, alpha_, FINE);
    outline.push_back({effects.Last(), 0});
    outline.push_back({effects.First(), 0});
    return {Layer::Kind::AREA, color::BAND, {std::move(outline)}, {}, 0, "Prediction region"};
}

Layer Drapery::Curve(const TestedEstimate& tested, const Extent& effects, const char* color, double width,
                     std::string legend) const
{
    return {Layer::Kind::LINE, color, {PValueCurve(tested, effects, alpha_, FINE)}, {}, width,
            std::move(legend)};
}

std::vector<std::string> Drapery::Notes(const Extent& effects) const
{
    std::vector<std::string> notes = {
        fmt::format("A curve is 1 at the estimate, and crosses p = {:g} at the limits of its {} interval.",
                    alpha_, data_.level)};
    if (!pooled_.HasTest())
        notes.push_back("The pooled effect has no test, and so no curve.");
    else if (data_.measure.hasNoEffect && effects.Contains(0))
        notes.push_back("Pooled effect: p of no effect " + EqualsText(PValueOf(pooled_, 0)) + '.');
    if (studies_.size() < studyCount_)
        notes.push_back(fmt::format("Of {} the {} with the smallest standard errors are drawn.",
                                    CountOfStudies(studyCount_), studies_.size()));
    return notes;
}

Picture Drapery::Draw() const
{
    const Extent effects = Effects();
    Picture picture = NewScatterPlot(NameOfGroupPlot({"drapery", "Drapery plot", ""}, plot_), 520, 360);
    picture.x = AnalysisAxis(data_.measure, effects);
    Extent significances;
    significances.Cover({0, 1});
    picture.y = NumberAxis("p-value of the hypothesis that this is the effect", significances);
    if (prediction_.HasTest())
        picture.layers.push_back(Region(effects));
    picture.layers.push_back(Studies(effects));
    if (data_.measure.hasNoEffect && effects.Contains(0))
        picture.layers.push_back(NullLine({0, 0}, {0, 1}));
    picture.layers.push_back(LineBetween({effects.First(), alpha_}, {effects.Last(), alpha_},
                                         Layer::Kind::DASHED_LINE, color::INK,
                                         fmt::format("p = {:g}, {} limits", alpha_, data_.level)));
    if (prediction_.HasTest()) // the studies may hide the region
        picture.layers.push_back(Curve(prediction_, effects, color::POOLED, 1.2, ""));
    if (pooled_.HasTest())
        picture.layers.push_back(Curve(pooled_, effects, color::ACCENT, 2.2, "Pooled effect"));
    picture.description = fmt::format(
        "{}: p-values over hypothetical values of the {}, a curve for each of {}, and one for the pooled "
        "effect{}. "
        "A curve crosses {:g} at the limits of its {} interval.",
        picture.title, data_.measure.name, CountOfStudies(studies_.size()),
        prediction_.HasTest() ? ", with the region of the prediction intervals of all levels" : "", alpha_,
        data_.level);
    return WithNotes(Finished(std::move(picture)), Notes(effects));
}

} // namespace

std::vector<Picture> DraperyPictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    if (!data.request.hasDrapery)
        return pictures;
    for (const PlotOfGroup& plot : AllAndGroups(data, data.groupLabels.size() + 1))
        if (const Drapery drapery(data, plot); drapery.HasCurves())
            pictures.push_back(drapery.Draw());
    return pictures;
}

} // namespace host
