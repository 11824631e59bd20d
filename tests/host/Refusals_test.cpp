// Input that the program refuses with exit status 2 and a sentence, without writing anything.

#include "host/RunProgram.h"

using testing::AnyOf;
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
        EXPECT_THAT(run.errors, AllOf(StartsWith("meta-analysis: "), HasSubstr(refusal.message),
                                      AnyOf(EndsWith(".\n"), EndsWith("?\n"))));
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
        {none + "binry d.csv", "Did you mean binary?"},
        {none + "help binray", "'binray' is no command. Did you mean binary?"},
        {none + "--level 0.9 binary", "'--level' stands before the command"},
        {none + "binary", "No data file is given"},
        {none + "binary /no/file.csv", "--treatment-events is required"},
        {none + "effects /no/file.csv --effect-size y --std-error s", "'/no/file.csv' cannot be opened"},
        {Effects(TESTS_DIR), "cannot be read: Is a directory"},
        {effects + "--effect odds-ratio", "'odds-ratio' is none of cohens-d, mean-difference, hedges-g, "
                                          "glass-delta. It is one of --outcome binary."},
        {binary + "--max-step-halving 3000000000", "--max-step-halving: '3000000000' is outside the range"},
        {effects + "--effect cohens-d --outcome binary",
         "--outcome binary: 'cohens-d' is none of odds-ratio"},
        {effects + "--effect-size study", "--effect-size is given 2 times"},
        {binary + "--levle 0.9", "'binary' has no option --levle. Did you mean --level?"},
        {binary + "--covariate year", "'binary' has no option --covariate. It is an option of regression."},
        {binary + "--effect risk-ration", "'risk-ration' is none of odds-ratio, peto, risk-ratio, "
                                          "risk-difference. Did you mean risk-ratio?"},
        {binary + "--study Latitud", "has no column 'Latitud'. Did you mean latitude?"},
        {binary + "more.csv", "'more.csv' is one argument too many"},
        {binary + "--level", "--level needs an argument"},
        {binary + "--level 1", "--level: 1 is not between 0 and 1"},
        {binary + "--level 49.9", "--level: 49.9 is not between 0 and 1, and no percentage from 50 to"},
        {binary + "--level 100", "--level: 100 is not between 0 and 1"},
        {binary + "--contours upper --contour-level 95", "0.05 for 95 % confidence"},
        {binary + "--null 2", "--null needs --model fixed"},
        {binary + "--pooled-zero-cells none", "--pooled-zero-cells needs --weights mantel-haenszel"},
        {binary + "--contrast year", "--contrast needs --model fixed"},
        {binary + "--plots new --forest-columns mean-sd", "columns of this analysis give no 'mean-sd', and"},
        {binary + "--drapery", "--drapery needs --plots or --html"},
        {binary + "--bubble year --prediction-band", "--prediction-band needs --plots or --html"},
        {binary + "--prediction-band --html page.html", "--prediction-band needs a bubble plot"},
        {binary + "--bubble year --model fixed --prediction-band --html page.html",
         "--prediction-band needs --model random"},
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
        {binary + "--keep-missing-groups", "--keep-missing-groups needs --subgroup"},
        {binary + "--common-tau2 --subgroup year --model fixed",
         "--common-tau2 is for the random-effects model"},
        {binary + "--common-tau2 --subgroup year --cumulative year", "cannot be asked for together"},
        {effects + "--small-study-test peters", "type 3 needs the tables"},
        {effects + "--side top", "--side: 'top' is none of auto, 1, 2"},
        {binary + "--treatment-n year", "Exactly one of --treatment-nonevents and --treatment-n is required"},
        {none + "effects d.csv --effect-size y", "One of --variance, --std-error, --ci-lower with"},
        {none + "effects d.csv --effect-size y --std-error y",
         "'y' is given to --effect-size and again to --std-"},
        {none + "proportion d.csv --events n --n n", "'n' is given to --events and again to --n"},
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
        {proportion + "--weights mantel-haenszel", "is for 2x2 tables, rate ratios and rate differences"},
    });
}

/// Options that have no effect together with the others, whose need is not by the command alone.
TEST(Refusals, OptionsWithoutEffectAreRefused)
{
    const Arguments effects = Effects("passive_smoking.csv");
    const Arguments binary = Binary("bcg_vaccine.csv");
    const Arguments means = Continuous("stroke_length_of_stay.csv");
    const Arguments regression = Regression("teacher_expectancy.csv");
    const Arguments batch = Arguments{"batch", DataFile("passive_smoking.csv")} +
                            "--unsorted --key country --effect-size effect --variance variance";
    ExpectRefused({
        {binary + "--weights MH", "--weights mantel-haenszel needs --model fixed"},
        {effects + "--weights mantel-haenszel --model fixed", "cohens-d has inverse-variance weights"},
        {means + "--weights mantel-haenszel --model fixed", "mantel-haenszel pools the events of two groups"},
        {effects + "--model fixed --tau2 DL", "--tau2 is for the random-effects model"},
        {regression + "--model fixed --tau2 dl", "--tau2 is for the random-effects model"},
        {batch + "--model fixed --tau2 dl", "--tau2 is for the random-effects model"},
        {effects + "--model fixed --knapp-hartung adjusted", "--knapp-hartung is for the random-effects"},
        {effects + "--model fixed --prediction normal", "--prediction is for the random-effects"},
        {batch + "--prediction normal --columns k,estimate", "--prediction needs pi_lower or pi_upper"},
        {batch + "--null 1", "--null needs --model fixed"},
        {binary + "--zero-cells none --zero-delta 1", "--zero-delta has no effect with --zero-cells none"},
        {means + "--equal-variances", "--equal-variances needs --effect mean-difference"},
        {means + "--variance-adjustment --effect MD", "--variance-adjustment needs --effect cohens-d"},
        {means + "--glass-group treatment --effect SMD", "--glass-group needs --effect glass-delta"},
        {effects + "--side left", "--side needs --trim-fill"},
        {effects + "--trim-fill run --trim-fill-model fixed --trim-fill-tau2 dl",
         "--trim-fill-tau2 has no effect with --trim-fill-model fixed"},
        {effects + "--test-intercept off", "--test-intercept needs --small-study-test or --trim-fill"},
        {effects + "--small-study-test egger --test-dispersion", "--test-dispersion needs --model fixed"},
        {effects + "--descending", "--descending needs --cumulative"},
        {effects + "--center-bubble", "--center-bubble needs --bubble"},
        {effects + "--funnel-y precision", "--funnel-y needs --plots, --html or --json"},
        {effects + "--plot-format png", "--plot-format needs --plots"},
        {regression + "--dispersion", "--dispersion needs --model fixed"},
        {regression + "--knapp-hartung adjusted --normal-tests", "--normal-tests has no effect with"},
    });
}

TEST(Refusals, UnusableColumnsAndFieldsAreRefused)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "who,effect,variance\n\"A\nB\",1,2\nC,x,2\n");
    const Arguments smoking = Effects("passive_smoking.csv");
    const auto file = [&folder](const std::string& text) { return Effects(folder.Write("f.csv", text)); };
    const auto expectRefused = [&file](const std::string& text, const std::string& message) {
        ExpectRefused({{file(text), "f.csv" + message}}); // the next file replaces this one
    };
    const std::string header = "effect,variance\n";
    expectRefused("", "' is empty");
    expectRefused(header, "' has a header line and no data rows");
    expectRefused(header + "1,2\n1\n", "', line 3: 1 field, but the header has 2");
    expectRefused(header + "1,\"2\n3,4\n", "', line 2: the quoted field that starts here is never closed");
    expectRefused(header + "1,5\" tall\n", "', line 2: a misplaced double quote");
    expectRefused(header + std::string("1,\0\n", 4), "', line 2: a byte of value 0");
    expectRefused("effect,Variance\n1,2\n", "' has no column 'variance'. Did you mean Variance?");
    expectRefused("effect,variance,effect\n1,2,3\n", "', line 1: column 1 and column 3 are both named");
    ExpectRefused({
        {Effects(data), "t.csv', line 4, column 'effect': 'x' is not a number"},
        {Effects(data) + "--separator semicolon",
         "is separated by commas, and its header line has no semicolons"},
        {Effects(folder.Write("d.csv", "effect,variance\n-,1\n")), "a missing value, --missing NA,- says so"},
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

TEST(Refusals, BatchesWithoutMeaningAreRefused)
{
    const TemporaryFolder folder;
    const auto batch = [](const Arguments& files, const std::string& options = "") {
        return Arguments{"batch"} + files + ("--key key --effect-size y --std-error s " + options);
    };
    const std::string good = folder.Write("good", "key y s\nb 1 1\na 2 1\n");
    const std::string sorted = folder.Write("sorted", "key y s\na 1 1\n");
    const std::string zip = folder.PathOf("zip");
    const std::string cut = folder.PathOf("cut");
    ASSERT_EQ(std::system(("gzip -c " + good + " > " + zip + "; head -c 30 " + zip + " > " + cut).c_str()),
              0);
    ExpectRefused({
        {batch({}), "No data file is given"},
        {batch({"/no/file"}), "'/no/file' cannot be opened"},
        {batch({TESTS_DIR}), "Is a directory"},
        {batch({folder.Write("empty", "")}), "is empty: a header line"},
        {batch({good, folder.Write("head", "key y s\n\n")}), "has a header line and no data"},
        {batch({good, folder.Write("has", "key y\na 1\n")}), "has' has no column 's'."},
        {batch({good, folder.Write("case", "Key y s\na 1 1\n")}), "no column 'key'. Did you mean Key?"},
        {batch({folder.Write("twice", "key y s y\na 1 1 1\n")}), "two columns are named 'y'"},
        {batch({cut}), "cut' ends in the middle of its gzip data"},
        {batch({folder.Write("zero", std::string("key y s\na 1 1\n\0 1 1\n", 21))}),
         "line 3: a byte of value 0"},
        {batch({folder.Write("long", "key y s\n" + std::string(1 << 25, 'x'))}),
         "line 2: the line is longer than"},
        {batch({sorted}, "--separator tab"), "sorted' has no column 'key'"},
        {batch({folder.Write("comma", "key,y,s\na,1,1\n")}, "--separator tab"),
         "comma' is separated by commas"},
        {batch({good}, "--effect-allele y --other-allele o"), "'y' is given to --effect-size and again"},
        {batch({sorted, good}, "--sorted"), "good', line 3: the file is not sorted"},
        {batch({good}, "--sorted"), "--sorted has no effect on one file"},
        {batch({good, sorted}, "--unsorted"), "--unsorted has no effect on several"},
        {batch({good, good}), "good' is given twice"},
        {batch({good}, "--effect-allele y"), "--effect-allele and --other-allele go together"},
        {batch({good}, "--columns k,std_eror"), "'std_eror' is no result. Did you mean std_error?"},
        {batch({good}, "--columns k,k"), "--columns: 'k' is given twice"},
        {batch({good}, "--output " + good), "is a data file"},
        {batch({good}, "--rejects -"), "cannot be the same place"},
        {batch({good}, "--variance s"), "Exactly one of --variance and --std-error"},
        {batch({good}, "--weights mantel-haenszel"), "no option --weights"},
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
