#include "host/report/citation/References.h"

#include "host/text/ProgramInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>
#include <string_view>

namespace host {

namespace {

/// An article, or a book, which has no volume.
struct Reference
{
    std::string_view key;
    std::string_view authors; ///< as BibTeX has them
    std::string_view text;    ///< "DerSimonian and Laird 1986"
    std::string_view title;
    std::string_view place; ///< the journal, or the publisher
    int year;
    int volume;
    std::string_view pages;
    std::string_view doi; ///< may be empty
};

constexpr std::array REFERENCES{
    Reference{"Begg1994", "Begg, Colin B. and Mazumdar, Madhuchhanda", "Begg and Mazumdar 1994",
              "Operating characteristics of a rank correlation test for publication bias", "Biometrics", 1994,
              50, "1088--1101", "10.2307/2533446"},
    Reference{"Bell2002", "Bell, Robert M. and McCaffrey, Daniel F.", "Bell and McCaffrey 2002",
              "Bias reduction in standard errors for linear regression with multi-stage samples",
              "Survey Methodology", 2002, 28, "169--181", ""},
    Reference{"Cochran1954", "Cochran, William G.", "Cochran 1954",
              "The combination of estimates from different experiments", "Biometrics", 1954, 10, "101--129",
              "10.2307/3001666"},
    Reference{"DerSimonian1986", "DerSimonian, Rebecca and Laird, Nan", "DerSimonian and Laird 1986",
              "Meta-analysis in clinical trials", "Controlled Clinical Trials", 1986, 7, "177--188",
              "10.1016/0197-2456(86)90046-2"},
    Reference{"Duval2000", "Duval, Sue and Tweedie, Richard", "Duval and Tweedie 2000",
              "Trim and fill: a simple funnel-plot-based method of testing and adjusting for publication "
              "bias in meta-analysis",
              "Biometrics", 2000, 56, "455--463", "10.1111/j.0006-341X.2000.00455.x"},
    Reference{"Egger1997",
              "Egger, Matthias and Davey Smith, George and Schneider, Martin and Minder, Christoph",
              "Egger et al. 1997", "Bias in meta-analysis detected by a simple, graphical test",
              "British Medical Journal", 1997, 315, "629--634", "10.1136/bmj.315.7109.629"},
    Reference{"Fisher1921", "Fisher, Ronald A.", "Fisher 1921",
              "On the ``probable error'' of a coefficient of correlation deduced from a small sample",
              "Metron", 1921, 1, "", ""},
    Reference{"Freeman1950", "Freeman, Murray F. and Tukey, John W.", "Freeman and Tukey 1950",
              "Transformations related to the angular and the square root",
              "Annals of Mathematical Statistics", 1950, 21, "607--611", "10.1214/aoms/1177729756"},
    Reference{"Greenland1985", "Greenland, Sander and Robins, James M.", "Greenland and Robins 1985",
              "Estimation of a common effect parameter from sparse follow-up data", "Biometrics", 1985, 41,
              "55--68", ""},
    Reference{
        "Harbord2006", "Harbord, Roger M. and Egger, Matthias and Sterne, Jonathan A. C.",
        "Harbord, Egger and Sterne 2006",
        "A modified test for small-study effects in meta-analyses of controlled trials with binary endpoints",
        "Statistics in Medicine", 2006, 25, "3443--3457", "10.1002/sim.2380"},
    Reference{"Hardy1996", "Hardy, Rebecca J. and Thompson, Simon G.", "Hardy and Thompson 1996",
              "A likelihood approach to meta-analysis with random effects", "Statistics in Medicine", 1996,
              15, "619--629", ""},
    Reference{"Hartung2001", "Hartung, Joachim and Knapp, Guido", "Hartung and Knapp 2001",
              "On tests of the overall treatment effect in meta-analysis with normally distributed responses",
              "Statistics in Medicine", 2001, 20, "1771--1782", "10.1002/sim.791"},
    Reference{"Hedges1981", "Hedges, Larry V.", "Hedges 1981",
              "Distribution theory for {Glass}'s estimator of effect size and related estimators",
              "Journal of Educational Statistics", 1981, 6, "107--128", "10.3102/10769986006002107"},
    Reference{"Hedges1983", "Hedges, Larry V.", "Hedges 1983", "A random effects model for effect sizes",
              "Psychological Bulletin", 1983, 93, "388--395", ""},
    Reference{"HedgesOlkin1985", "Hedges, Larry V. and Olkin, Ingram", "Hedges and Olkin 1985",
              "Statistical Methods for Meta-Analysis", "Academic Press", 1985, 0, "", ""},
    Reference{"Higgins2002", "Higgins, Julian P. T. and Thompson, Simon G.", "Higgins and Thompson 2002",
              "Quantifying heterogeneity in a meta-analysis", "Statistics in Medicine", 2002, 21,
              "1539--1558", "10.1002/sim.1186"},
    Reference{"Higgins2004", "Higgins, Julian P. T. and Thompson, Simon G.", "Higgins and Thompson 2004",
              "Controlling the risk of spurious findings from meta-regression", "Statistics in Medicine",
              2004, 23, "1663--1682", "10.1002/sim.1752"},
    Reference{"Higgins2009", "Higgins, Julian P. T. and Thompson, Simon G. and Spiegelhalter, David J.",
              "Higgins, Thompson and Spiegelhalter 2009", "A re-evaluation of random-effects meta-analysis",
              "Journal of the Royal Statistical Society A", 2009, 172, "137--159",
              "10.1111/j.1467-985X.2008.00552.x"},
    Reference{"Hunter1990", "Hunter, John E. and Schmidt, Frank L.", "Hunter and Schmidt 1990",
              "Methods of Meta-Analysis: Correcting Error and Bias in Research Findings", "Sage", 1990, 0, "",
              ""},
    Reference{"IntHout2014", "IntHout, Joanna and Ioannidis, John P. A. and Borm, George F.",
              "IntHout, Ioannidis and Borm 2014",
              "The {Hartung-Knapp-Sidik-Jonkman} method for random effects meta-analysis is straightforward "
              "and considerably outperforms the standard {DerSimonian-Laird} method",
              "BMC Medical Research Methodology", 2014, 14, "25", "10.1186/1471-2288-14-25"},
    Reference{"Katz1978", "Katz, D. and Baptista, J. and Azen, S. P. and Pike, M. C.", "Katz et al. 1978",
              "Obtaining confidence intervals for the risk ratio in cohort studies", "Biometrics", 1978, 34,
              "469--474", ""},
    Reference{"Knapp2003", "Knapp, Guido and Hartung, Joachim", "Knapp and Hartung 2003",
              "Improved tests for a random effects meta-regression with a single covariate",
              "Statistics in Medicine", 2003, 22, "2693--2710", "10.1002/sim.1482"},
    Reference{"Lau1992",
              "Lau, Joseph and Antman, Elliott M. and Jimenez-Silva, Jeanette and Kupelnick, Bruce and "
              "Mosteller, Frederick and Chalmers, Thomas C.",
              "Lau et al. 1992", "Cumulative meta-analysis of therapeutic trials for myocardial infarction",
              "New England Journal of Medicine", 1992, 327, "248--254", ""},
    Reference{"Luo2018", "Luo, Dehui and Wan, Xiang and Liu, Jiming and Tong, Tiejun", "Luo et al. 2018",
              "Optimally estimating the sample mean from the sample size, median, mid-range, and/or "
              "mid-quartile range",
              "Statistical Methods in Medical Research", 2018, 27, "1785--1805", "10.1177/0962280216669183"},
    Reference{"Mantel1959", "Mantel, Nathan and Haenszel, William", "Mantel and Haenszel 1959",
              "Statistical aspects of the analysis of data from retrospective studies of disease",
              "Journal of the National Cancer Institute", 1959, 22, "719--748", "10.1093/jnci/22.4.719"},
    Reference{"Miller1978", "Miller, John J.", "Miller 1978",
              "The inverse of the {Freeman-Tukey} double arcsine transformation", "The American Statistician",
              1978, 32, "138", ""},
    Reference{"Morris1983", "Morris, Carl N.", "Morris 1983",
              "Parametric empirical {Bayes} inference: theory and applications",
              "Journal of the American Statistical Association", 1983, 78, "47--55", ""},
    Reference{"Paule1982", "Paule, Robert C. and Mandel, John", "Paule and Mandel 1982",
              "Consensus values and weighting factors",
              "Journal of Research of the National Bureau of Standards", 1982, 87, "377--385",
              "10.6028/jres.087.022"},
    Reference{
        "Peters2006",
        "Peters, Jaime L. and Sutton, Alex J. and Jones, David R. and Abrams, Keith R. and Rushton, Lesley",
        "Peters et al. 2006", "Comparison of two methods to detect publication bias in meta-analysis",
        "Journal of the American Medical Association", 2006, 295, "676--680", "10.1001/jama.295.6.676"},
    Reference{"Pustejovsky2018", "Pustejovsky, James E. and Tipton, Elizabeth", "Pustejovsky and Tipton 2018",
              "Small-sample methods for cluster-robust variance estimation and hypothesis testing in fixed "
              "effects models",
              "Journal of Business and Economic Statistics", 2018, 36, "672--683",
              "10.1080/07350015.2016.1247004"},
    Reference{"Robins1986", "Robins, James and Breslow, Norman and Greenland, Sander",
              "Robins, Breslow and Greenland 1986",
              "Estimators of the {Mantel-Haenszel} variance consistent in both sparse data and large-strata "
              "limiting models",
              "Biometrics", 1986, 42, "311--323", "10.2307/2531052"},
    Reference{"Sidik2002", "Sidik, Kurex and Jonkman, Jeffrey N.", "Sidik and Jonkman 2002",
              "A simple confidence interval for meta-analysis", "Statistics in Medicine", 2002, 21,
              "3153--3159", "10.1002/sim.1262"},
    Reference{"Sidik2005", "Sidik, Kurex and Jonkman, Jeffrey N.", "Sidik and Jonkman 2005",
              "Simple heterogeneity variance estimation for meta-analysis", "Applied Statistics", 2005, 54,
              "367--384", "10.1111/j.1467-9876.2005.00489.x"},
    Reference{
        "Sweeting2004", "Sweeting, Michael J. and Sutton, Alexander J. and Lambert, Paul C.",
        "Sweeting, Sutton and Lambert 2004",
        "What to add to nothing? Use and avoidance of continuity corrections in meta-analysis of sparse data",
        "Statistics in Medicine", 2004, 23, "1351--1375", "10.1002/sim.1761"},
    Reference{"Thompson2002", "Thompson, Simon G. and Higgins, Julian P. T.", "Thompson and Higgins 2002",
              "How should meta-regression analyses be undertaken and interpreted?", "Statistics in Medicine",
              2002, 21, "1559--1573", "10.1002/sim.1187"},
    Reference{"Tipton2015", "Tipton, Elizabeth", "Tipton 2015",
              "Small sample adjustments for robust variance estimation with meta-regression",
              "Psychological Methods", 2015, 20, "375--393", "10.1037/met0000011"},
    Reference{"Viechtbauer2005", "Viechtbauer, Wolfgang", "Viechtbauer 2005",
              "Bias and efficiency of meta-analytic variance estimators in the random-effects model",
              "Journal of Educational and Behavioral Statistics", 2005, 30, "261--293",
              "10.3102/10769986030003261"},
    Reference{"Viechtbauer2007", "Viechtbauer, Wolfgang", "Viechtbauer 2007",
              "Confidence intervals for the amount of heterogeneity in meta-analysis",
              "Statistics in Medicine", 2007, 26, "37--52", "10.1002/sim.2514"},
    Reference{"Viechtbauer2010", "Viechtbauer, Wolfgang and Cheung, Mike W.-L.",
              "Viechtbauer and Cheung 2010", "Outlier and influence diagnostics for meta-analysis",
              "Research Synthesis Methods", 2010, 1, "112--125", "10.1002/jrsm.11"},
    Reference{"Wan2014", "Wan, Xiang and Wang, Wenqian and Liu, Jiming and Tong, Tiejun", "Wan et al. 2014",
              "Estimating the sample mean and standard deviation from the sample size, median, range and/or "
              "interquartile range",
              "BMC Medical Research Methodology", 2014, 14, "135", "10.1186/1471-2288-14-135"},
    Reference{"Welch1951", "Welch, B. L.", "Welch 1951",
              "On the comparison of several mean values: an alternative approach", "Biometrika", 1951, 38,
              "330--336", ""},
    Reference{"Woolf1955", "Woolf, Barnet", "Woolf 1955",
              "On estimating the relation between blood group and disease", "Annals of Human Genetics", 1955,
              19, "251--253", ""},
    Reference{"Yusuf1985",
              "Yusuf, Salim and Peto, Richard and Lewis, John and Collins, Rory and Sleight, Peter",
              "Yusuf et al. 1985",
              "Beta blockade during and after myocardial infarction: an overview of the randomized trials",
              "Progress in Cardiovascular Diseases", 1985, 27, "335--371", "10.1016/S0033-0620(85)80003-7"},
};

const Reference& ReferenceOf(std::string_view key)
{
    const auto found = std::find_if(REFERENCES.begin(), REFERENCES.end(),
                                    [&](const Reference& reference) { return reference.key == key; });
    if (found == REFERENCES.end())
        throw std::logic_error(fmt::format("There is no reference '{}'.", key));
    return *found;
}

std::string Field(std::string_view name, std::string_view value)
{
    return value.empty() ? "" : fmt::format("  {} = {{{}}},\n", name, value);
}

std::string BibTexOf(const Reference& reference)
{
    const bool isArticle = reference.volume != 0;
    std::string text = fmt::format("@{}{{{},\n", isArticle ? "article" : "book", reference.key);
    text += Field("author", reference.authors) + Field("title", fmt::format("{{{}}}", reference.title));
    text += Field(isArticle ? "journal" : "publisher", reference.place);
    text += Field("year", std::to_string(reference.year));
    if (isArticle)
        text += Field("volume", std::to_string(reference.volume));
    return text + Field("pages", reference.pages) + Field("doi", reference.doi) + "}\n";
}

/// @misc is known to every style.
std::string BibTexOfProgram()
{
    return fmt::format("@misc{{{0},\n  author = {{{{The developers of {0}}}}},\n  title = {{{{{0}}}}},\n"
                       "  note = {{Computer program, version {1}}},\n}}\n",
                       PROGRAM_NAME, PROGRAM_VERSION);
}

} // namespace

std::string ReferenceText(const std::string& key)
{
    return std::string(ReferenceOf(key).text);
}

std::string BibTexOf(const std::vector<std::string>& keys)
{
    std::string text;
    std::set<std::string> written;
    for (const std::string& key : keys)
        if (written.insert(key).second)
            text += BibTexOf(ReferenceOf(key)) + '\n';
    return text + BibTexOfProgram();
}

} // namespace host
