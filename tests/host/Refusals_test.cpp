// Input that the program refuses with exit status 2 and a sentence, without writing anything.

#include "host/RunProgram.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct Refusal
{
    Arguments arguments;
    std::string message;
};

void ExpectRefused(const std::vector<Refusal>& refusals)
{
    for (const Refusal& refusal : refusals) {
        const ProgramRun run = RunProgram(refusal.arguments);
        EXPECT_EQ(run.exitStatus, 2) << refusal.message;
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors,
                    AllOf(StartsWith("meta-analysis: "), HasSubstr(refusal.message), EndsWith(".\n")));
    }
}

TEST(Refusals, CommandLinesWithoutMeaningAreRefused)
{
    const Arguments none;
    const Arguments effects = Effects("passive_smoking.csv");
    const Arguments binary = Binary("bcg_vaccine.csv");
    const Arguments means = Continuous("stroke_length_of_stay.csv");
    const Arguments proportion =
        Arguments{"proportion", DataFile("hyperdynamic_therapy.csv")} + "--events events --n n";
    ExpectRefused({
        {none, "No command is given"},
        {none + "pool", "'pool' is no command"},
        {none + "--level 0.9 binary", "'--level' stands before the command"},
        {none + "binary", "No data file is given"},
        {none + "binary /no/file.csv", "--treatment-events is required"},
        {none + "effects /no/file.csv --effect-size y --std-error s", "'/no/file.csv' cannot be opened"},
        {Effects(TESTS_DIR), "cannot be read: Is a directory"},
        {effects + "--effect odds-ratio",
         "--effect with --outcome continuous: 'odds-ratio' is none of cohens-d"},
        {binary + "--max-step-halving 3000000000", "--max-step-halving: '3000000000' is outside the range"},
        {effects + "--effect cohens-d --outcome binary",
         "--outcome binary: 'cohens-d' is none of odds-ratio"},
        {effects + "--effect-size study", "--effect-size is given 2 times"},
        {binary + "--levle 0.9", "'binary' has no option --levle"},
        {binary + "more.csv", "'more.csv' is one argument too many"},
        {binary + "--level", "--level needs an argument"},
        {binary + "--level 1", "--level: 1 is not between 0 and 1"},
        {binary + "--null 2", "--null needs --model fixed"},
        {binary + "--pooled-zero-cells none", "--pooled-zero-cells needs --weights mantel-haenszel"},
        {binary + "--contrast year", "--contrast needs --model fixed"},
        {binary + "--drapery", "--drapery needs --plots or --html"},
        {binary + "--bubble year --prediction-band", "--prediction-band needs --plots or --html"},
        {binary + "--prediction-band --html page.html", "--prediction-band needs --bubble"},
        {binary + "--bubble year --model fixed --prediction-band --html page.html",
         "--prediction-band needs the random-effects model"},
        {binary + "--model fixed --weights mantel-haenszel --null -1", "--null: -1 cannot be a ratio"},
        {binary + "--tau2-search scoring --max-iterations 0", "--max-iterations: 0 leaves the estimator"},
        {binary + "--preset library --trim-fill run --model fixed --max-iterations 0",
         "--max-iterations: 0 leaves"},
        {binary + "--tolerance 0", "--tolerance: 0 is not above 0"},
        {binary + "--max-iterations -1", "--max-iterations: -1 is not 0 or above"},
        {binary + "--max-iterations 2.5", "--max-iterations: '2.5' is not a whole number"},
        {binary + "--drop-double-zero=2", "--drop-double-zero: a flag takes no argument"},
        {effects + "--funnel-points 1", "--funnel-points: 1 is not 2 or above"},
        {effects + "--contour-level 0.1 --contours upper --contour-level 0.10",
         "--contour-level: '0.1' is given twice"},
        {effects + "--contour-level 0.1", "--contour-level needs --contours"},
        {binary + "--model fixed --tau2-interval none", "--tau2-interval is for the random-effects model"},
        {binary + "--model fixed --probability-below 2", "--probability-below is for the random-effects"},
        {binary + "--probability-above 0", "--probability-above: a ratio is above 0, and 0 is not"},
        {effects + "--probability-above 0 --probability-below 1", "cannot be asked for together"},
        {effects + "--tau2 dl --tau2-interval profile-likelihood", "is for --tau2 reml and --tau2 ml"},
        {binary + "--common-tau2", "--common-tau2 needs --subgroup"},
        {binary + "--common-tau2 --subgroup year --model fixed",
         "--common-tau2 is for the random-effects model"},
        {binary + "--common-tau2 --subgroup year --cumulative year", "cannot be asked for together"},
        {effects + "--small-study-test peters", "type 3 needs the tables"},
        {effects + "--side top", "--side: 'top' is none of auto, 1, 2"},
        {binary + "--treatment-n year", "Exactly one of --treatment-nonevents and --treatment-n is required"},
        {none + "effects d.csv --effect-size y", "One of --variance, --std-error, --ci-lower with"},
        {effects + "--std-error year", "Only one of --variance and --std-error"},
        {effects + "--ci-upper year", "--ci-lower and --ci-upper go together"},
        {effects + "--ci-level 0.9", "--ci-level needs --ci-lower"},
        {effects + "--ratio --outcome continuous", "--ratio needs an --effect that is a ratio: cohens-d"},
        {effects + "--ratio --effect risk-difference", "--ratio needs an --effect that is a ratio: risk-"},
        {effects + "--label" + Arguments{" "}, "--label: the text is empty"},
        {means + "--control-median year", "--control-median needs --control-q1 and --control-q3, or"},
        {means + "--control-median year --control-q1 a", "--control-q1 and --control-q3 go together"},
        {means + "--control-min a --control-max b", "--control-min needs --control-median"},
        {means + "--control-variance a", "Exactly one of --control-sd and --control-variance"},
        {none + "continuous d.csv --treatment-n n --control-n n", "--treatment-mean is required, or"},
        {none + "continuous d.csv --treatment-n n --control-n n --treatment-sd s",
         "--treatment-sd and --treatment-variance need --treatment-mean"},
        {effects + "--small-study-test 3", "type 3 needs the tables of the command binary"},
        {proportion + "--nonevents n", "Exactly one of --n and --nonevents is required"},
        {proportion + "--effect freeman", "'freeman' is none of logit, freeman-tukey, arcsine, log, raw"},
        {proportion + "--effect arcsine --zero-delta 1", "--zero-delta has no effect with --effect arcsine"},
        {proportion + "--probability-above 1.5", "1.5 is outside the range of a proportion"},
        {proportion + "--model fixed --null -0.1", "-0.1 is outside the range of a proportion"},
        {proportion + "--weights mantel-haenszel", "needs a rate ratio or a rate difference of two groups"},
    });
}

TEST(Refusals, UnusableColumnsAndFieldsAreRefused)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "who,effect,variance\n\"A\nB\",1,2\nC,x,2\n");
    const Arguments smoking = Effects("passive_smoking.csv");
    ExpectRefused({
        {Effects(data), "t.csv, line 4, column 'effect': 'x' is not a number"},
        {smoking + "--bubble country --subgroup country", "column 'country': 'USA' is not a number"},
        {smoking + "--bubble year --bubble year", "--bubble: column 'year' is given twice"},
    });
}

TEST(Refusals, RegressionsWithoutAModelAreRefused)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v,x,g,one,none,a:b,a,b:a\n1,1,1,p,5,NA,1,1,2\n"
                                                   "2,1,2,q,5,NA,2,2,1\n3,1,4,q,NA,NA,5,3,3\n");
    const Arguments regression = {"regression", data};
    const Arguments effects = regression + "--effect-size y";
    const Arguments command = effects + "--variance v";
    ExpectRefused({
        {effects, "Exactly one of --variance, --std-error and --weight is required"},
        {command + "--factor one", "--factor: column 'one' has no other value than '5'"},
        {command + "--factor none", "--factor: column 'none' has no values"},
        {command + "--covariate y", "Column 'y' is given to --effect-size and again to --covariate"},
        {effects + "--weight y", "Column 'y' is given to --effect-size and again to --weight"},
        {command + "--covariate x --factor x", "to --covariate and again to --factor"},
        {command + "--covariate x --interaction x:g", "'x:g' is not A:B with two columns"},
        {command + "--factor g --interaction g:g", "'g:g' is a factor with itself"},
        {command + "--covariate x --factor g --interaction x:g --interaction g:x",
         "--interaction: 'g:x' is in the model already"},
        {command + "--covariate a --covariate b:a --covariate a:b --interaction a:b:a",
         "'a:b:a' can be parted into two columns at more than one colon"},
        {command + "--no-intercept", "leaves nothing to estimate"},
        {command + "--covariate x --hypothesis 1,b", "--hypothesis '1,b': 'b' is not a number"},
        {command + "--covariate x --factor g --predict x=3", "--predict 'x=3': a value is lacking for g"},
        {command + "--factor g --predict g=z", "--predict 'g=z': 'z' is no level of 'g', which has p, q"},
        {command + "--covariate x --predict x=1,z=2", "'z=2' is not NAME=VALUE"},
        {command + "--covariate x --predict x=1,x=2", "'x' has two values"},
        {command + "--factor g --reference g=r", "--reference 'g=r': 'r' is no level of 'g'"},
        {command + "--covariate x --reference x=1", "it is not FACTOR=LEVEL"},
        {command + "--factor g --reference g=p --reference g=q", "its factor has two references"},
        {command + "--treatment-n x", "are columns of different data"},
        {regression + "--treatment-events x", "--treatment-nonevents and --treatment-n is required"},
        {command + "--effect odds-ratio", "--effect has no effect on ready-made effect sizes"},
        {regression + "--treatment-events x --zero-cells all --glass-group control",
         "--glass-group has no effect on these columns"},
        {command + "--cluster one", "--cluster: column 'one' has no other value than '5'; clusters need two"},
        {command + "--sandwich cr1", "--sandwich needs --cluster"},
        {command + "--seed 1", "--seed needs --permutations"},
    });
}

/// The places are checked before the analysis.
TEST(Refusals, ImpossibleOutputPlacesAreRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("file", "");
    const std::string data = DataFile("bcg_vaccine.csv");
    ExpectRefused({
        {Bcg({"--plots", file}), "is no folder"},
        {Bcg({"--html", data}), "--html: '" + data + "' is the data file"},
        {Bcg({"--html", file, "--json", file}), "is the file of --json"},
        {Bcg({"--html", folder.PathOf("./a"), "--json", folder.PathOf("a")}), "is the file of --json"},
        {Bcg({"--json", folder.PathOf("new"), "--plots", folder.PathOf("./new/")}),
         "is the folder of --plots"},
        {Bcg({"--html", folder.PathOf("new/page")}), "there is no folder '"},
        {Bcg({"--json", ""}), "--json: '' cannot be written"},
    });
    EXPECT_EQ(folder.Files(), Texts{"file"});
}

} // namespace
