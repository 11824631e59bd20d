#pragma once

#include "GetterNames.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

// Calls `visit(name, getter)` for every getter of an analysis or of a regression's output; the second is a
// pointer to a member function.

#define VISIT(getter) visit(#getter, &Source::getter);

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MAAnalysisResults* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MAAnalysisResults;
    GETTERS_OF_MAAnalysisResults(VISIT)
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MABinModel* model, Visit visit)
{
    using Source = MA_NAMESPACE::MABinModel;
    VisitGetters<Visit&>(static_cast<const MA_NAMESPACE::MAAnalysisResults*>(model), visit);
    GETTERS_OF_MABinModel(VISIT)
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MAOutcomeModel* model, Visit visit)
{
    using Source = MA_NAMESPACE::MAOutcomeModel;
    VisitGetters<Visit&>(static_cast<const MA_NAMESPACE::MAAnalysisResults*>(model), visit);
    GETTERS_OF_MAOutcomeModel(VISIT)
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MARegOutputStats* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MARegOutputStats;
    GETTERS_OF_MARegOutputStats(VISIT)
}

#undef VISIT
