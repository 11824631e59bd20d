#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

/// What the statistics classes have in common: they are given pointers to study vectors, whose lengths must
/// agree when they are given and when they are used. `notGiven` is the error of a null vector.
template <class Base, class Vector, class Model>
void ExpectStudyVectorsChecked(std::initializer_list<KXStatus (Base::*)(Vector*)> setters,
                               KXStatus (Model::*compute)(), int notGiven)
{
    const KXStatus refused(MA_NAMESPACE::MAStatusCode::LENGTH_MISMATCH);
    const std::vector<KXStatus (Base::*)(Vector*)> set(setters);
    const auto expectStatus = [&](std::size_t length, auto change, const KXStatus& expected) {
        Model model;
        std::vector<std::vector<double>> vectors(set.size(), std::vector<double>(length, 2.0));
        for (std::size_t i = 0; i < set.size(); ++i)
            EXPECT_TRUE((model.*set[i])(&vectors[i]).IsOK());
        change(model, vectors);
        EXPECT_EQ((model.*compute)(), expected);
        EXPECT_EQ((Model(model).*compute)(), expected) << "of a copy";
    };
    std::vector<double> longer(4, 2.0);
    for (std::size_t odd = 0; odd < set.size(); ++odd) {
        SCOPED_TRACE(testing::Message() << "vector " << odd);
        for (const std::size_t length : {0U, 4U})
            expectStatus(
                3, [&](Model&, auto& vectors) { vectors[odd].resize(length, 2.0); }, refused);
        expectStatus(
            3, [&](Model& model, auto&) { (model.*set[odd])(nullptr); }, KXStatus(notGiven));
        const auto refuse = [&](Model& model, auto& vectors) {
            EXPECT_EQ((model.*set[odd])(&longer), refused);
            for (std::size_t i = 0; i < set.size(); ++i)
                EXPECT_EQ((model.*set[i])(&vectors[i]), refused) << "the error stays";
        };
        expectStatus(3, refuse, refused);
    }
    const auto clear = [](Model&, auto& vectors) {
        for (std::vector<double>& vector : vectors)
            vector.clear();
    };
    expectStatus(3, clear, refused);
    expectStatus(
        0, [](Model&, auto&) {}, KXStatus());

    // An empty first vector does not fix the study count; the computation finds the difference.
    Model model;
    std::vector<double> none;
    for (std::size_t i = 0; i < set.size(); ++i)
        EXPECT_TRUE((model.*set[i])(i == 0 ? &none : &longer).IsOK());
    EXPECT_EQ((model.*compute)(), refused);
}
