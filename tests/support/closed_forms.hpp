#pragma once
#include <cmath>

// Closed-form solutions the numerical results are checked against.

// Concentration in a semi-infinite column with C0 = 1 held at x = 0 from t = 0, pore
// velocity v, dispersion D, retardation R (Ogata and Banks 1961).  The second term
// vanishes long before its exponential could overflow.
inline double ogata_banks(double x, double t, double v, double D, double R = 1.0)
{
    const double s = 2 * std::sqrt(D * R * t);
    const double e = v * x / D;
    const double tail = e < 700 ? std::exp(e) * std::erfc((R * x + v * t) / s) : 0.0;
    return 0.5 * (std::erfc((R * x - v * t) / s) + tail);
}
