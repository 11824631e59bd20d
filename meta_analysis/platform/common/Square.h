#pragma once

constexpr double Square(double x)
{
    return x * x;
}
