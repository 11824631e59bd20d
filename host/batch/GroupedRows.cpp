#include "host/batch/Grouping.h"
#include "host/batch/RowUse.h"

#include <string>

namespace host {

void PoolGroupedRows(RowStream& file, SetSink& sets, Rejects& rejects)
{
    std::string key;
    FirstAlleles first;
    const auto match = [&](const Alleles& alleles) { return first.Match(alleles); };
    const auto add = [&](double effectSize, double variance) { sets.Add(effectSize, variance); };
    while (const ParsedRows* const block = file.Next())
        for (std::size_t i = 0; i < block->rows.size(); ++i) {
            const RowAt row = {file, *block, i};
            if (!row.Values().HasKey()) {
                Reject(row, row.Values().problem, rejects);
                continue;
            }
            if (row.Values().Key() != key) {
                key = row.Values().Key();
                first.Clear();
                sets.Begin(key);
            }
            UseRow(row, rejects, match, add);
        }
}

} // namespace host
