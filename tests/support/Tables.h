#pragma once

#include "support/Data.h"

/// Count vectors of 2x2 tables; a row is treatment events and non-events, control events and non-events.
struct Tables
{
    explicit Tables(const Rows& rows)
    {
        for (const Row& row : rows) {
            a.push_back(row[0]);
            b.push_back(row[1]);
            c.push_back(row[2]);
            d.push_back(row[3]);
        }
    }

    /// Gives the counts to an effect-size or pooling object.
    template <class Model>
    void GiveTo(Model& model)
    {
        model.SetTreatmentGSuccessCounts(&a);
        model.SetTreatmentGFailureCounts(&b);
        model.SetControlGSuccessCounts(&c);
        model.SetControlGFailureCounts(&d);
    }

    Rows ToRows() const
    {
        Rows rows;
        for (std::size_t i = 0; i < a.size(); ++i)
            rows.push_back({a[i], b[i], c[i], d[i]});
        return rows;
    }

    std::vector<double> a;
    std::vector<double> b;
    std::vector<double> c;
    std::vector<double> d;
};
