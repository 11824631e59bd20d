#pragma once

namespace MA_NAMESPACE {

/// The codes by which the regression settings name the between-study variance estimators; each stands at the
/// position that is its number in `MAConst::TAU2ESTIMATOR`.
inline constexpr const char* estimatorCodes[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};
inline constexpr int estimatorCodeCount = sizeof estimatorCodes / sizeof *estimatorCodes;

} // namespace MA_NAMESPACE
