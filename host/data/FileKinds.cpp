#include "host/data/FileKinds.h"

#include "host/text/AsciiCase.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

using namespace std::string_view_literals;

constexpr const char* FROM_SPREADSHEET = "open it in a spreadsheet program, and save its sheet as CSV UTF-8";
constexpr const char* FROM_R = "write it by R: write.csv(readRDS(FILE), \"data.csv\", row.names = FALSE)";

struct FileKind
{
    std::string_view start;
    const char* name;
    const char* way; ///< to a file that can be read
};

/// Signatures are those of the formats' own descriptions.
constexpr FileKind KINDS[] = {
    {"BZh"sv, "compressed by bzip2", "'bzcat FILE | ... -' reads it"},
    {"\xfd\x37zXZ\0"sv, "compressed by xz", "'xzcat FILE | ... -' reads it"},
    {"\x28\xb5\x2f\xfd"sv, "compressed by zstd", "'zstdcat FILE | ... -' reads it"},
    {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv, "an Excel workbook (.xls) or another Office document",
     FROM_SPREADSHEET},
    {"$FL2@"sv, "a data file of SPSS (.sav)", "save it by SPSS as CSV"},
    {"$FL3@"sv, "a data file of SPSS (.zsav)", "save it by SPSS as CSV"},
    {"<stata_dta>"sv, "a data set of Stata (.dta)", "write it by Stata: export delimited using data.csv"},
    {"HEADER RECORD*******LIB"sv, "a transport file of SAS (.xpt)", "write it by PROC EXPORT of SAS as CSV"},
    {"X\n\0\0\0"sv, "an R object (.rds)", FROM_R},
    {"RDX2\nX\n"sv, "an R workspace (.RData)", "load it in R, and write the data by write.csv"},
    {"RDX3\nX\n"sv, "an R workspace (.RData)", "load it in R, and write the data by write.csv"},
    {"%PDF-"sv, "a PDF document", "take its table over into a spreadsheet, and save that as CSV"},
    {"{\\rtf"sv, "a text document (.rtf)", "take its table over into a spreadsheet, and save that as CSV"},
    {"PAR1\x15"sv, "a Parquet file", "write it as CSV by the program that made it"},
    {"ARROW1\0\0"sv, "an Arrow file", "write it as CSV by the program that made it"},
    {"SQLite format 3\0"sv, "an SQLite database", "'sqlite3 -header -csv FILE \"SELECT ...\"' writes a CSV"},
};

/// Archives are told by the names of the files in them.
constexpr FileKind ARCHIVES[] = {
    {"xl/"sv, "an Excel workbook (.xlsx)", FROM_SPREADSHEET},
    {"application/vnd.oasis.opendocument.spreadsheet"sv, "an OpenDocument sheet (.ods)", FROM_SPREADSHEET},
    {"Index/Document.iwa"sv, "a Numbers document", "export it from Numbers as CSV"},
    {"word/"sv, "a Word document (.docx)", "take its table over into a spreadsheet, and save that as CSV"},
    {""sv, "a ZIP archive", "unpack it, and take the CSV file in it"},
};

/// Markup is told in any case, behind blanks.
constexpr FileKind MARKUPS[] = {
    {"<!doctype html"sv, "a web page (HTML) and no CSV file, whatever its name", FROM_SPREADSHEET},
    {"<html"sv, "a web page (HTML) and no CSV file, whatever its name", FROM_SPREADSHEET},
    {"<table"sv, "a web page (HTML) and no CSV file, whatever its name", FROM_SPREADSHEET},
    {"{\""sv, "a JSON file", "write its values as CSV by the program that made it"},
    {"[{\""sv, "a JSON file", "write its values as CSV by the program that made it"},
    {"<?xml"sv, "an XML document, perhaps a workbook", FROM_SPREADSHEET},
};

/// Stata's former formats start with the number of the release, the byte order, 1 and 0.
bool IsFormerStata(std::string_view start)
{
    constexpr std::string_view RELEASES = "\x69\x6c\x6e\x6f\x71\x72\x73";
    return start.size() > 3 && RELEASES.find(start[0]) != std::string_view::npos &&
           (start[1] == 1 || start[1] == 2) && start[2] == 1 && start[3] == 0;
}

bool IsSas(std::string_view start)
{
    constexpr std::string_view MAGIC = "\0\0\0\0\0\0\0\0\0\0\0\0\xc2\xea\x81\x60\xb3\x14\x11\xcf"sv;
    return start.starts_with(MAGIC);
}

bool StartsInAnyCase(std::string_view text, std::string_view start)
{
    return EqualInAnyCase(text.substr(0, start.size()), start);
}

[[noreturn]] void Refuse(const std::string& name, const char* kind, const char* way)
{
    throw UnusableInput(fmt::format("{} is {}: {}.", name, kind, way));
}

void RefuseArchives(std::string_view start, const std::string& name)
{
    for (const FileKind& kind : ARCHIVES)
        if (start.find(kind.start) != std::string_view::npos)
            Refuse(name, kind.name, kind.way);
}

} // namespace

void RefuseOtherKinds(std::string_view start, const std::string& name)
{
    for (const FileKind& kind : KINDS)
        if (start.starts_with(kind.start))
            Refuse(name, kind.name, kind.way);
    if (start.starts_with("PK\x03\x04"))
        RefuseArchives(start.substr(0, std::size_t{1} << 16), name);
    if (IsFormerStata(start))
        Refuse(name, "a data set of Stata (.dta)", "write it by Stata: export delimited using data.csv");
    if (IsSas(start))
        Refuse(name, "a data set of SAS (.sas7bdat)", "write it by PROC EXPORT of SAS as CSV");
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    std::string_view text = start.substr(0, 1024);
    if (text.starts_with(BYTE_ORDER_MARK))
        text.remove_prefix(BYTE_ORDER_MARK.size());
    text = Trimmed(text);
    for (const FileKind& kind : MARKUPS)
        if (StartsInAnyCase(text, kind.start))
            Refuse(name, kind.name, kind.way);
}

} // namespace host
