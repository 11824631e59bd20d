#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

/// The statistics classes are given pointers to study vectors, whose lengths must agree when they are given
/// and when they are used. `notGiven` is the error of a null vector.
template <class Base, class Vector, class Model>
void ExpectStudyVectorsChecked(std::initializer_list<KXStatus (Base::*)(Vector*)> setters,
                               KXStatus (Model::*compute)(), int notGiven)
{
    const KXStatus refused(MA_NAMESPACE::MAStatusCode::LENGTH_MISMATCH);
    std::vector<double> longer(4, 2.0);
    for (const auto odd : setters) {
        const auto statusAfter = [&](auto change) {
            std::vector<double> agreeing(3, 2.0);
            std::vector<double> changed = agreeing;
            Model model;
            for (const auto setter : setters)
                EXPECT_TRUE((model.*setter)(setter == odd ? &changed : &agreeing).IsOK());
            change(model, changed);
            return (model.*compute)();
        };
        EXPECT_EQ(statusAfter([](Model&, auto& changed) { changed.pop_back(); }), refused);
        EXPECT_EQ(statusAfter([](Model&, auto& changed) { changed.push_back(2.0); }), refused);
        EXPECT_EQ(statusAfter([&](Model& model, auto&) { (model.*odd)(nullptr); }), KXStatus(notGiven));
        EXPECT_EQ(statusAfter([&](Model& model, auto& fitting) {
                      EXPECT_EQ((model.*odd)(&longer), refused);
                      EXPECT_EQ((model.*odd)(&fitting), refused) << "the error stays";
                  }),
                  refused);
    }
}
