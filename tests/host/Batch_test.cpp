// The command batch: many analyses in one run, whatever the form of the files.

#include "host/RunProgram.h"

#include <cstdint>
#include <map>

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string COLUMNS = "--key key --effect-size y --std-error s ";

Arguments Batch(const Arguments& files, const std::string& options = "")
{
    return Arguments{"batch"} + files + (COLUMNS + options);
}

Texts Split(const std::string& text, char separator)
{
    Texts parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

/// The results by column and key.
std::map<std::string, std::map<std::string, std::string>> Table(const std::string& output)
{
    std::map<std::string, std::map<std::string, std::string>> table;
    const Texts lines = Split(output, '\n');
    const Texts header = Split(lines.at(0), '\t');
    for (std::size_t line = 1; line < lines.size(); ++line) {
        const Texts fields = Split(lines[line], '\t');
        for (std::size_t i = 0; i < header.size(); ++i)
            table[header[i]][fields.at(0)] = fields.at(i);
    }
    return table;
}

/// Data with many keys for each file, in which no two rows are alike.
std::string Rows(const std::string& form, std::uint32_t seed, int first, int step)
{
    std::string rows;
    char row[100];
    for (int key = first; key < 20000; key += step) {
        seed = seed * 1664525U + 1013904223U;
        std::snprintf(row, sizeof row, form.c_str(), key, (seed >> 8) % 4001U / 2000.0 - 1,
                      (seed >> 12) % 97U / 100.0 + 0.03);
        rows += row;
    }
    return rows;
}

/// The same numbers as by the command for one analysis, to the last digit.
TEST(Batch, AgreesWithTheCommandEffects)
{
    const std::map<std::string, std::string> names = {
        {"estimate", "EstEffectSize"}, {"std_error", "EstStdError"},
        {"statistic", "EstZVal"},      {"p", "EstSig"},
        {"mlog10p", "EstLog10Sig"},    {"ci_lower", "EstCILower"},
        {"ci_upper", "EstCIUpper"},    {"tau2", "Tau2Var"},
        {"tau2_lower", "Tau2CILower"}, {"tau2_upper", "Tau2CIUpper"},
        {"q", "HomoTestChisquareQ"},   {"q_df", "HomoTestdf"},
        {"q_p", "HomoTestSig"},        {"i2", "I2Index"},
        {"pi_lower", "PILower"},       {"pi_upper", "PIUpper"}};
    const Texts data = {"asthma_education", "passive_smoking", "st_johns_wort", "streptokinase"};
    const TemporaryFolder folder;
    std::string all = "key,y,v\n";
    for (const std::string& name : data) {
        const json results = ResultsOf(Effects(name + ".csv"));
        for (std::size_t i = 0; i < results["EffectSize"].size(); ++i)
            all += name + "," + results["EffectSize"][i].dump() + "," + results["Variance"][i].dump() + "\n";
    }
    const Arguments batch =
        Arguments{"batch", folder.Write("all.csv", all)} + "--key key --effect-size y --variance v";
    for (const char* const options :
         {"", "--knapp-hartung adjusted --prediction t-k-1 --level 0.9", "--tau2 dl",
          "--model fixed --null 0.5", "--preset iqwig", "--preset library --tau2 ml"}) {
        const auto table = Table(ReportOf(batch + options));
        for (const std::string& set : data) {
            const json results = JsonOf(Effects(set + ".csv") + options)["results"];
            for (const auto& [column, getter] : names) {
                const json expected = results[getter].empty() ? json() : results[getter].at(0);
                const std::string found = table.at(column).at(set);
                EXPECT_EQ(found == "NA", expected.is_null()) << options << set << column;
                if (!expected.is_null()) {
                    EXPECT_EQ(std::stod(found), (column == "mlog10p" ? -1 : 1) * expected.get<double>())
                        << options << set << column;
                }
            }
        }
    }
}

/// The text in another encoding, by another program.
std::string Recoded(const TemporaryFolder& folder, const std::string& text, const std::string& command)
{
    const std::string path = folder.Write("recoded", text);
    EXPECT_EQ(std::system(("<" + path + " " + command + " >" + path + ".out").c_str()), 0) << command;
    return path + ".out";
}

/// The separators, decimal commas, missing codes, quotes and encodings that other commands read. The data
/// take several blocks, of which the first have ASCII characters alone.
TEST(Batch, ReadsTheFilesOfOtherPrograms)
{
    const TemporaryFolder folder;
    const std::string rows = Rows("rs%06d,%.4f,%.2f\n", 5, 1, 1) + "M\u00FCller,0.5,1\n" +
                             "rs,NA,1\nrs,1.25,1\n" + Rows("\u00E9%06d,%.4f,%.2f\n", 6, 1, 1);
    const std::string expected = ReportOf(Batch({folder.Write("plain", "key,y,s\n" + rows)}));
    const std::string toGerman = "sed 's/,/;/g; s/\\./,/g'";
    const struct
    {
        std::string command;
        std::string options = {};
    } cases[] = {
        {"sed 's/,/;/g'"},
        {toGerman},
        {toGerman + " | sed 's/NA/-99,0/'", "--missing x,-99"},
        {toGerman + " | (echo 'sep=;'; cat)"},
        {toGerman + " | sed '2,$s/$/;;/'"},
        {"sed 's/,/ /g; s/\\./,/g; s/^[^ ]*/\"&\"/'", "--decimal comma --separator blanks"},
        {"sed 's/,/\\t/g; s/\\./,/g; s/^[^\\t]*/\"&\"/'"},
        {toGerman + " | iconv -f UTF-8 -t UTF-16", ""},
        {toGerman + " | iconv -f UTF-8 -t UTF-16BE | gzip -c"},
        {toGerman + " | iconv -f UTF-8 -t UTF-32"},
        {toGerman + " | iconv -f UTF-8 -t LATIN1"},
        {toGerman + " | iconv -f UTF-8 -t MACINTOSH | tr '\\n' '\\r'"},
    };
    for (const auto& one : cases) {
        const std::string data = Recoded(folder, "key,y,s\n" + rows, one.command);
        EXPECT_TRUE(ReportOf(Batch({data}, one.options + " --threads 2")) == expected) << one.command;
    }
}

/// One grouped file, one in any order, sorted files, files in any order, with all separators, compressed, as
/// a stream, by any number of threads.
TEST(Batch, GivesTheSameBytesForAllFormsOfTheData)
{
    const TemporaryFolder folder;
    const std::string grouped = folder.PathOf("grouped");
    const Texts forms = {"rs%06d,%.4f, \"%.2f\" ,\"a, \"\"b\"\"\"\n", "x\trs%06d\t%.4f\t%.2f\r\n",
                         "  rs%06d    +%.4f %.2f \n"};
    const Texts headers = {"\xEF\xBB\xBFkey,y,s,note\n", "x\tkey\ty\ts\r\n", " key  y s\n"};
    Texts files;
    std::string all;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const int step = static_cast<int>(i) + 1;
        const auto seed = static_cast<std::uint32_t>(i);
        std::string rows = Rows(forms[i], seed, 1, step);
        for (std::size_t plus = rows.find("+-"); plus != std::string::npos; plus = rows.find("+-", plus))
            rows.erase(plus, 1);
        files.push_back(folder.Write("f" + std::to_string(i), headers[i] + rows));
        all += Rows("rs%06d " + std::to_string(i) + " %.4f %.2f\n", seed, 1, step);
    }
    const std::string unsorted = folder.Write("unsorted", "key file y s\n" + all);
    const std::string sorting =
        "(head -1 " + unsorted + "; tail -n +2 " + unsorted + " | LC_ALL=C sort -s -k1,1) > " + grouped;
    ASSERT_EQ(std::system((sorting + "; gzip -kf " + grouped + " " + files[1]).c_str()), 0);
    const std::string expected = ReportOf(Batch({grouped}));
    EXPECT_EQ(Split(expected, '\n').size(), 20000U);
    const Texts compressed = {files[0], files[1] + ".gz", files[2]};
    for (const Arguments& same :
         {Batch({grouped}, "--threads 3"), Batch({grouped + ".gz"}),
          Batch({unsorted}, "--unsorted --threads 2"), Batch(files), Batch(files, "--threads 4"),
          Batch(files, "--sorted"), Batch(compressed, "--sorted --threads 3"), Batch(compressed)})
        EXPECT_TRUE(ReportOf(same) == expected) << CommandLine(same);
    for (const std::string& stream : {grouped, grouped + ".gz"})
        EXPECT_TRUE(RunProgram(Batch({"-"}), "", "cat " + stream + " |").output == expected);
}

TEST(Batch, AlignsEffectsWithTheAllelesOfTheFirstFile)
{
    struct Case
    {
        const char* first;
        const char* second;
        const char* estimate; ///< of effects 1 and 1 with equal weights; "1" for one that is left out
        const char* k;
    };
    const Case cases[] = {{"A G", "a g", "1", "2"},   {"A G", "g A", "0", "2"},   {"A G", "T C", "1", "2"},
                          {"A G", "C t", "0", "2"},   {"A T", "T A", "0", "2"},   {"A T", "A T", "1", "2"},
                          {"c g", "G C", "0", "2"},   {"A G", "A C", "1", "1"},   {"A G", "A T", "1", "1"},
                          {"AT A", "A at", "0", "2"}, {"AT A", "TA T", "1", "1"}, {"A G", "NA G", "1", "1"},
                          {"A G", "A A", "1", "1"},   {"I D", "D I", "0", "2"},   {". G", "G A", "1", "1"}};
    const std::string options = "--effect-allele e --other-allele o --model fixed --columns estimate,k ";
    for (const Case& one : cases) {
        const TemporaryFolder folder;
        const std::string header = "key e o y s\n";
        const auto row = [](const char* alleles) { return std::string("m ") + alleles + " 1 1\n"; };
        const Arguments files = {folder.Write("1", header + row(one.first)),
                                 folder.Write("2", header + row(one.second))};
        const std::string expected =
            std::string("key\testimate\tk\nm\t") + one.estimate + "\t" + one.k + "\n";
        EXPECT_EQ(ReportOf(Batch(files, options)), expected) << one.first << one.second;
        EXPECT_EQ(ReportOf(Batch(files, options + "--sorted")), expected) << one.first << one.second;
        EXPECT_EQ(ReportOf(Batch({folder.Write("g", header + row(one.first) + row(one.second))}, options)),
                  expected);
    }
}

TEST(Batch, RejectsRowsWithTheirReasons)
{
    const std::map<std::string, std::string> reasons = {{"a\t1", "more or fewer fields"},
                                                        {"a\t1\t1\t1", "more or fewer fields"},
                                                        {"\t1\t1", "key is missing"},
                                                        {".\t1\t1", "key is missing"},
                                                        {"a\tNA\t1", "effect size is missing"},
                                                        {"a\t-nan\t1", "effect size is missing"},
                                                        {"a\tx\t1", "effect size is not a number"},
                                                        {"a\t1,5\t.5", "the other decimal mark"},
                                                        {"a\tinf\t1", "effect size is infinite"},
                                                        {"a\t1e999\t1", "effect size is infinite"},
                                                        {"a\t1\tn/a", "error is missing"},
                                                        {"a\t1\t1.5x", "error is not a number"},
                                                        {"a\t1\t0", "not above 0"},
                                                        {"a\t1\t-1", "not above 0"},
                                                        {"a\t1\tinf", "error is infinite"},
                                                        {"a\t1\t1e-200", "too small or too large"},
                                                        {"a\t1\t1e200", "too small or too large"},
                                                        {"a\t+-1\t1", "not a number"}};
    for (const auto& [row, reason] : reasons) {
        const TemporaryFolder folder;
        const std::string data = folder.Write("d", "key\ty\ts\na\t5\t2\n" + row + "\na\t5\t2\n");
        const std::string rejects = folder.PathOf("rejects");
        EXPECT_EQ(ReportOf(Batch({data}, "--model fixed --columns k,estimate --rejects " + rejects)),
                  "key\tk\testimate\na\t2\t5\n");
        const Texts lines = Split(folder.Read("rejects"), '\n');
        EXPECT_EQ(lines.at(0), "file\tline\treason\tkey");
        EXPECT_THAT(lines.at(1), AllOf(StartsWith(data + "\t3\t"), HasSubstr(reason))) << row;
        EXPECT_EQ(lines.size(), 2U);
    }
}

/// The first row of a key in a file counts even when it cannot be used.
TEST(Batch, UsesAKeyOnceAFile)
{
    const TemporaryFolder folder;
    const Arguments files = {folder.Write("1", "key y s\na 1 1\na 9 1\nb x 1\nb 9 1\n"),
                             folder.Write("2", "key y s\na 3 1\n")};
    for (const char* const mode : {"", "--sorted"}) {
        const ProgramRun run =
            RunProgram(Batch(files, std::string("--model fixed --columns k,estimate,status ") + mode));
        EXPECT_EQ(run.output, "key\tk\testimate\tstatus\na\t2\t2\t0\nb\t0\tNA\t460105\n");
        EXPECT_EQ(
            run.errors,
            "meta-analysis: 3 rows are left out, which --rejects lists: 1 where the effect size is not a "
            "number; 2 where the key has an earlier row in this file.\n");
    }
}

TEST(Batch, LeavesNoOutputOfARefusedRun)
{
    const TemporaryFolder folder;
    const std::string unsorted = folder.Write("unsorted", "key y s\nb 1 1\na 2 1\n");
    const std::string sorted = folder.Write("sorted", "key y s\na 1 1\n");
    const ProgramRun run = RunProgram(Batch({sorted, unsorted}, "--sorted --output " + folder.PathOf("out")));
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(folder.Files(), testing::Not(testing::Contains(StartsWith("out"))));
}

TEST(Batch, ReadsLinesOfAMegabyte)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("d", "key y s x\na 1 1 " + std::string(1 << 20, 'x') + "\na 3 1 x");
    EXPECT_EQ(ReportOf(Batch({data}, "--model fixed --columns k,estimate")), "key\tk\testimate\na\t2\t2\n");
}

TEST(Batch, LeavesNoHalfWrittenFile)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("d", "key y s\na 1 1\n");
    const std::string out = folder.Write("out", "old");
    const std::string stream = "cat " + data + "; sleep 2) | ";
    const std::string places = " --output " + out + " --rejects " + folder.PathOf("rejects");
    const std::string interrupted = "(" + stream + "timeout 1 " + CommandLine(Batch({"-"})) + places;
    EXPECT_NE(std::system(interrupted.c_str()), 0);
    EXPECT_EQ(folder.Files(), (Texts{"d", "out"}));
    EXPECT_EQ(folder.Read("out"), "old");
    EXPECT_EQ(RunProgram(Batch({data}) + places).exitStatus, 0);
    EXPECT_THAT(folder.Read("out"), StartsWith("key\tk\testimate"));
    EXPECT_EQ(folder.Files(), (Texts{"d", "out", "rejects"}));
    const ProgramRun full = RunProgram(Batch({data}), "/dev/full");
    EXPECT_EQ(full.exitStatus, 2);
    EXPECT_EQ(full.errors, "meta-analysis: Standard output cannot be written: No space left on device.\n");
    const std::string head = "set -o pipefail; " + CommandLine(Batch({data})) + " 2>&1 | true";
    EXPECT_EQ(std::system(("bash -c " + ShellQuoted(head)).c_str()), 0);
}

} // namespace
