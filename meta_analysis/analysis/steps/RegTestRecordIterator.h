#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

struct MATable;

/// The records of a regression-based small-study test: the host's records, each followed by the columns that
/// the test computes from it. With a treatment events, b non-events, c, d those of the control group, and
/// nt = a + b, nc = c + d, me = a + c, mn = b + d, N their total:
///
/// | test | column k                    | column k + 1 | column k + 2 |
/// | ---- | --------------------------- | ------------ | ------------ |
/// | 0    | the study's standard error  |              |              |
/// | 1    | (N a - me nt) / N / V1      | 1 / sqrt(V1) | V1 = nc nt me mn / (N² (N - 1)) |
/// | 2    | (N a - me nt) / mn / V2     | 1 / sqrt(V2) | V2 = nc nt me / (mn N) |
/// | 3    | 1 / N                       | mn me / N    |              |
///
/// 1: Harbord, Egger and Sterne (2006), Statistics in Medicine 25, 3443-3457. 3: Peters et al. (2006),
/// Journal of the American Medical Association 295, 676-680. Tests 1 to 3 pass over records whose table is
/// missing, negative, all zero, or excluded by the settings below; others yield no record at all.
class META_ANALYSIS_EXPORT RegTestRecordIterator : public MultiPassRecordIter
{
public:
    /// `columnCount`: k, the number of columns taken over from the source, which must outlive this object.
    RegTestRecordIterator(MultiPassRecordIter& source, int columnCount, MAConst::RegBaseTestType test);
    ~RegTestRecordIterator() override;

    /// Variable indices of the four counts, for tests 1 to 3.
    void SetCountIndices(int treatmentEvents, int treatmentNonEvents, int controlEvents,
                         int controlNonEvents);
    /// Variable indices of the group sizes, which serve a group whose non-events have index -1.
    void SetSizeIndices(int treatment, int control);
    /// The variable that gives the standard error of test 0, and what it holds.
    void SetOmegaWeight(int index, MAConst::OMGWeightType type);
    /// Passes over tables without events or without non-events.
    void SetDropBinZero(bool drop) { dropBinZero_ = drop; }
    /// Which tables receive 0.5 in all cells: those with a zero cell (0), all (2), none (other types). With
    /// type 3, tables with a zero cell in both arms are passed over.
    void SetAdjustType(MAConst::ZEROADJTYPE type) { zeroAdjustment_ = type; }

    /// Makes room for the computed columns; false when memory runs out.
    bool ResizeRecord();

    bool Start() override;
    bool Reset() override;
    const Record* Next() override;
    int GetError() const override;

private:
    bool AppendColumns(const Record& source);
    void AppendStdError(const Record& source);
    bool ReadTable(const Record& source, MATable& table) const;
    void AppendTableColumns(const MATable& table);

    MultiPassRecordIter* source_;
    int columnCount_;
    MAConst::RegBaseTestType test_;
    int treatmentEvents_ = -1;
    int treatmentNonEvents_ = -1;
    int controlEvents_ = -1;
    int controlNonEvents_ = -1;
    int treatmentSize_ = -1;
    int controlSize_ = -1;
    int omegaIndex_ = -1;
    MAConst::OMGWeightType omegaType_ = MAConst::OMEGA_VARIANCE;
    bool dropBinZero_ = false;
    MAConst::ZEROADJTYPE zeroAdjustment_ = MAConst::ZERO_ADJUST_EACH;
    Record record_;
};

} // namespace MA_NAMESPACE
