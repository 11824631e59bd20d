#pragma once

#include "host/draw/PictureFormat.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/settings/MAConst.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

/// The name of an enumeration's value on the command line.
template <class Value>
struct Choice
{
    std::string_view name;
    Value value;
};

template <class Value>
Choice(const char*, Value) -> Choice<Value>;

inline constexpr std::array OUTCOME_CHOICES{
    Choice{"continuous", MAConst::OUTCOME_CONTINUOUS},
    Choice{"binary", MAConst::OUTCOME_BINARY},
};

inline constexpr std::array BINARY_EFFECT_CHOICES{
    Choice{"odds-ratio", MAConst::BIN_ODDS_RATIO},
    Choice{"peto", MAConst::BIN_PETO_ODDS_RATIO},
    Choice{"risk-ratio", MAConst::BIN_RISK_RATIO},
    Choice{"risk-difference", MAConst::BIN_RISK_DIFFERENCE},
};

inline constexpr std::array CONTINUOUS_EFFECT_CHOICES{
    Choice{"cohens-d", MAConst::CONT_COHENS_D},
    Choice{"mean-difference", MAConst::CONT_MEAN_DIFFERENCE},
    Choice{"hedges-g", MAConst::CONT_HEDGES_G},
    Choice{"glass-delta", MAConst::CONT_GLASS_DELTA},
};

inline constexpr std::array MODEL_CHOICES{
    Choice{"random", MAConst::MODEL_RANDOM},
    Choice{"fixed", MAConst::MODEL_FIXED},
};

inline constexpr std::array WEIGHT_CHOICES{
    Choice{"inverse-variance", MAConst::WEIGHT_INVERSE_VARIANCE},
    Choice{"mantel-haenszel", MAConst::WEIGHT_BINARY_FIXED},
};

inline constexpr std::array TAU2_CHOICES{
    Choice{"reml", MAConst::TAU2_REML}, Choice{"he", MAConst::TAU2_HE}, Choice{"hs", MAConst::TAU2_HS},
    Choice{"dl", MAConst::TAU2_DL},     Choice{"sj", MAConst::TAU2_SJ}, Choice{"ml", MAConst::TAU2_ML},
    Choice{"eb", MAConst::TAU2_EB},
};

inline constexpr std::array TAU2_SEARCH_CHOICES{
    Choice{"global", MAConst::TAU2_SEARCH_GLOBAL},
    Choice{"scoring", MAConst::TAU2_SEARCH_SCORING},
};

inline constexpr std::array TAU2_INTERVAL_CHOICES{
    Choice{"q-profile", MAConst::TAU2_INTERVAL_Q_PROFILE},
    Choice{"profile-likelihood", MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD},
    Choice{"none", MAConst::TAU2_INTERVAL_NONE},
};

inline constexpr std::array PREDICTION_CHOICES{
    Choice{"t-k-2", MAConst::PREDICTION_T_K_MINUS_2},
    Choice{"t-k-1", MAConst::PREDICTION_T_K_MINUS_1},
    Choice{"normal", MAConst::PREDICTION_NORMAL},
};

inline constexpr std::array KNAPP_HARTUNG_CHOICES{
    Choice{"none", MAConst::KNAPP_HARTUNG_NONE},
    Choice{"adjusted", MAConst::KNAPP_HARTUNG_ADJUSTED},
    Choice{"truncated", MAConst::KNAPP_HARTUNG_TRUNCATED},
};

inline constexpr std::array ZERO_CELL_CHOICES{
    Choice{"each", MAConst::ZERO_ADJUST_EACH},
    Choice{"all-if-any", MAConst::ZERO_ADJUST_ALL_IF_ANY},
    Choice{"all", MAConst::ZERO_ADJUST_ALL},
    Choice{"none", MAConst::ZERO_ADJUST_NONE},
};

inline constexpr std::array POOLED_ZERO_CELL_CHOICES{
    Choice{"if-needed", MAConst::POOLED_ZERO_CELLS_IF_NEEDED},
    Choice{"as-studies", MAConst::POOLED_ZERO_CELLS_AS_STUDIES},
    Choice{"none", MAConst::POOLED_ZERO_CELLS_NONE},
};

inline constexpr std::array GLASS_GROUP_CHOICES{
    Choice{"control", MAConst::GROUP_CONTROL},
    Choice{"treatment", MAConst::GROUP_TREATMENT},
};

inline constexpr std::array TRIM_FILL_CHOICES{
    Choice{"linear", MAConst::TRIM_LINEAR},
    Choice{"run", MAConst::TRIM_RUN},
    Choice{"quadratic", MAConst::TRIM_QUADRATIC},
};

inline constexpr std::array TRIM_SIDE_CHOICES{
    Choice{"auto", MAConst::TRIM_SIDE_AUTO},
    Choice{"1", MAConst::TRIM_SIDE_LARGEST},
    Choice{"2", MAConst::TRIM_SIDE_SMALLEST},
};

inline constexpr std::array SMALL_STUDY_TEST_CHOICES{
    Choice{"0", MAConst::REG_TEST_EFFECT_ON_STD_ERROR},
    Choice{"1", MAConst::REG_TEST_SCORE_VARIANCE},
    Choice{"2", MAConst::REG_TEST_SCORE_CONTROL},
    Choice{"3", MAConst::REG_TEST_EFFECT_ON_SIZE},
};

inline constexpr std::array SWITCH_CHOICES{
    Choice{"on", true},
    Choice{"off", false},
};

inline constexpr std::array FUNNEL_Y_CHOICES{
    Choice{"std-error", MAConst::FUNNEL_STD_ERROR},
    Choice{"precision", MAConst::FUNNEL_PRECISION},
    Choice{"variance", MAConst::FUNNEL_VARIANCE},
    Choice{"inverse-variance", MAConst::FUNNEL_INVERSE_VARIANCE},
};

inline constexpr std::array CONTOUR_CHOICES{
    Choice{"none", MAConst::CONTOUR_NONE},
    Choice{"two-sided", MAConst::CONTOUR_TWO_SIDED},
    Choice{"upper", MAConst::CONTOUR_UPPER},
    Choice{"lower", MAConst::CONTOUR_LOWER},
};

inline constexpr std::array PICTURE_FORMAT_CHOICES{
    Choice{"svg", PictureFormat::SVG},
    Choice{"png", PictureFormat::PNG},
    Choice{"pdf", PictureFormat::PDF},
};

/// The names, in the order of the list.
template <class Value, std::size_t N>
std::string NamesOf(const std::array<Choice<Value>, N>& choices)
{
    std::string names;
    for (const Choice<Value>& choice : choices)
        names += fmt::format("{}{}", names.empty() ? "" : ", ", choice.name);
    return names;
}

/// The value of a name; throws UnusableInput with a sentence that lists the names.
template <class Value, std::size_t N>
Value ValueOf(const std::array<Choice<Value>, N>& choices, std::string_view name)
{
    const auto* const found = std::find_if(choices.begin(), choices.end(),
                                           [&](const Choice<Value>& choice) { return choice.name == name; });
    if (found == choices.end())
        throw UnusableInput(fmt::format("'{}' is none of {}.", name, NamesOf(choices)));
    return found->value;
}

/// The name of a value of the list.
template <class Value, std::size_t N>
std::string NameOf(const std::array<Choice<Value>, N>& choices, Value value)
{
    const auto* const found = std::find_if(
        choices.begin(), choices.end(), [&](const Choice<Value>& choice) { return choice.value == value; });
    return std::string(found->name);
}

} // namespace host
