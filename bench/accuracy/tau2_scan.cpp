// Tries the search for the between-study variance on random analyses and prints a table.
//   tau2_scan [ANALYSES]     100,000 by default; takes a minute

#include "Tau2Scan.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

const char* NameOf(VarianceFamily family)
{
    switch (family) {
    case VarianceFamily::Uniform:
        return "uniform on 0.01 to 0.2";
    case VarianceFamily::Lognormal:
        return "lognormal, SD of the logarithm 1.5";
    case VarianceFamily::WideLognormal:
        return "lognormal, SD of the logarithm 3";
    case VarianceFamily::Equal:
        return "equal";
    case VarianceFamily::PowersOfTen:
        break;
    }
    return "1e-8 to 1";
}

struct Tally
{
    int analyses = 0;
    int misses = 0;
    double evaluations = 0.0;
    int mostEvaluations = 0;
    double error = 0.0;
    double unitError = 0.0;

    void Add(const Tau2Verdict& verdict);
    void Print(const char* name) const;
};

void Tally::Add(const Tau2Verdict& verdict)
{
    ++analyses;
    misses += verdict.isMiss ? 1 : 0;
    evaluations += verdict.evaluations;
    mostEvaluations = std::max(mostEvaluations, verdict.evaluations);
    error = std::max(error, verdict.error);
    unitError = std::max(unitError, verdict.unitError);
}

void Tally::Print(const char* name) const
{
    std::printf("| %s | %d | %d | %.1f | %d | %.1e | %.1e |\n", name, analyses, misses,
                evaluations / analyses, mostEvaluations, error, unitError);
}

Tally TallyOf(VarianceFamily family, int analyses)
{
    Tally tally;
    Tau2Simulation simulation(20240229 + static_cast<unsigned>(family));
    for (int i = 0; i < analyses; ++i)
        tally.Add(JudgeSearch(simulation.Next(family), 1.7));
    return tally;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const int analyses =
        argumentCount > 1 ? static_cast<int>(std::strtol(arguments[1], nullptr, 10)) : 100000;
    const int perFamily = analyses / static_cast<int>(std::size(varianceFamilies));
    std::puts("| variances | analyses | misses | evaluations, mean | most | error | change by unit |");
    std::puts("|---|---|---|---|---|---|---|");
    int misses = 0;
    for (const VarianceFamily family : varianceFamilies) {
        const Tally tally = TallyOf(family, perFamily);
        tally.Print(NameOf(family));
        misses += tally.misses;
    }
    return misses == 0 ? 0 : 1;
}
