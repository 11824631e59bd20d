#pragma once

namespace distribution {

class StudentT
{
public:
    explicit StudentT(double df) noexcept;
    double Upper(double t) const noexcept;
    double UpperQuantile(double q, double eps, double accuracy) const noexcept;

private:
    struct Evaluation
    {
        double scaledDensity; 
        double central;       
        double upper;         
    };
    Evaluation Evaluate(double t) const noexcept;

    double df_;
    double logConstant_;
};

} // namespace distribution
