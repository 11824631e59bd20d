#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

/// What the statistics classes have in common: they are given pointers to study vectors, whose lengths must
/// agree. `Setter` is a pointer to a member function; `notGiven` the error of a null vector.
template <class Model, class Setter>
class StudyVectors
{
public:
    StudyVectors(std::vector<Setter> setters, KXStatus (Model::*compute)(), int notGiven)
        : setters_(std::move(setters)), compute_(compute), notGiven_(notGiven)
    {}

    void ExpectChecked() const
    {
        const KXStatus refused(MA_NAMESPACE::MAStatusCode::LENGTH_MISMATCH);
        for (std::size_t odd = 0; odd < setters_.size(); ++odd) {
            SCOPED_TRACE(testing::Message() << "vector " << odd);
            ExpectSticky(odd, refused);

            Given null(*this);
            (null.model.*setters_[odd])(nullptr);
            EXPECT_EQ((null.model.*compute_)(), KXStatus(notGiven_));

            Given changed(*this);
            changed.vectors[odd].push_back(1.0);
            EXPECT_EQ((changed.model.*compute_)(), refused);
            EXPECT_EQ((changed.model.*compute_)(), refused);

            Given emptied(*this);
            emptied.vectors[odd].clear();
            EXPECT_EQ((emptied.model.*compute_)(), refused);
        }
        ExpectEmptyFirst(refused);

        Given allChanged(*this);
        for (std::vector<double>& vector : allChanged.vectors)
            vector.clear();
        EXPECT_EQ((allChanged.model.*compute_)(), refused);

        Given empty(*this, 0);
        EXPECT_TRUE((empty.model.*compute_)().IsOK());
    }

private:
    struct Given
    {
        explicit Given(const StudyVectors& inputs, std::size_t length = 3)
            : vectors(inputs.setters_.size(), std::vector<double>(length, 2.0))
        {
            for (std::size_t i = 0; i < vectors.size(); ++i)
                EXPECT_TRUE((model.*inputs.setters_[i])(&vectors[i]).IsOK());
        }

        Model model;
        std::vector<std::vector<double>> vectors;
    };

    /// A refused vector leaves an error that every other setter and the computation return.
    void ExpectSticky(std::size_t odd, const KXStatus& refused) const
    {
        Given given(*this);
        std::vector<double> longer(4, 2.0);
        EXPECT_EQ((given.model.*setters_[odd])(&longer), refused);
        for (std::size_t i = 0; i < setters_.size(); ++i)
            EXPECT_EQ((given.model.*setters_[i])(&given.vectors[i]), refused);
        EXPECT_EQ((given.model.*compute_)(), refused);
        Model copy(given.model);
        EXPECT_EQ((copy.*compute_)(), refused);
    }

    /// An empty first vector does not fix the study count; the computation finds the difference.
    void ExpectEmptyFirst(const KXStatus& refused) const
    {
        std::vector<double> none;
        std::vector<double> three(3, 2.0);
        Model model;
        EXPECT_TRUE((model.*setters_[0])(&none).IsOK());
        for (std::size_t i = 1; i < setters_.size(); ++i)
            EXPECT_TRUE((model.*setters_[i])(&three).IsOK());
        EXPECT_EQ((model.*compute_)(), refused);
    }

    std::vector<Setter> setters_;
    KXStatus (Model::*compute_)();
    int notGiven_;
};
