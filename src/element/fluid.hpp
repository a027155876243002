#pragma once
#include <algorithm>
#include <cmath>

// Water, ice and freezing: the pure functions that turn temperature and concentration
// into density, viscosity, unfrozen moisture, relative permeability and the bulk thermal
// coefficients.  Temperatures in degrees C.  No function checks its parameters: the deck
// reader refuses bad model numbers, and anything else that passes runs unguarded.

// Freezing curve and relative permeability of one material.  The run holds two sets:
// the porous medium and the fractures (pfr, qfr, Tsfr, omegafr, modelwuf, modelkrf).
struct FreezeParams {
    double p = 0.0;      // terminal unfrozen moisture content: liquid fraction left when cold
    double q = 0.0;      // curvature: exponential rate (1/C) for model 1, width (C) for
                         // models 2 and 4, ramp slope (1/C) for model 3
    double Ts = 0.0;     // freezing front temperature (C), model 3 only
    double omega = 0.0;  // relative permeability exponent of kr model 2
    int modelwu = 0;     // unfrozen moisture model, 0..4
    int modelkr = 0;     // relative permeability model, 0..4 (3 and 4 act as 0)
};

// Thermal constants of water and ice, one set per run.
struct ThermalConstants {
    double cf = 0.0;    // fluid specific heat (J/kg/C)
    double pf = 0.0;    // fluid density (kg/m3); only for printed derived values
    double ci = 0.0;    // ice specific heat (J/kg/C)
    double rhoi = 0.0;  // ice density (kg/m3)
    double tclw = 0.0;  // water thermal conductivity (J/m/s/C)
    double tcli = 0.0;  // ice thermal conductivity (J/m/s/C)
    double wlh = 0.0;   // latent heat of water (J/kg)
    double cice = 0.0;  // derived: ci*rhoi, volumetric heat capacity of ice (J/m3/C)
    double cwat = 0.0;  // derived: cf*pf, volumetric heat capacity of water (J/m3/C)
};

// Sets the two derived capacities once the seven constants are read.
inline void derive_thermal_constants(ThermalConstants& tc)
{
    tc.cice = tc.ci * tc.rhoi;
    tc.cwat = tc.cf * tc.pf;
}

// Which couplings are live, fixed by kmass for the whole run, and the density slope
// of concentration.
struct FluidSwitches {
    bool lheat = false;   // heat is transported: density and viscosity follow T (kmass 0, 3)
    bool lmass = false;   // solute is transported: density follows C (kmass 1, 3)
    bool lage = false;    // age is transported (kmass 2): no density coupling at all
    double gammac = 0.0;  // relative density increase per unit concentration
};

// An unknown kmass sets none of the three.
inline FluidSwitches fluid_switches(int kmass, double gammac)
{
    FluidSwitches s;
    s.lheat = (kmass == 0 || kmass == 3);
    s.lmass = (kmass == 1 || kmass == 3);
    s.lage = (kmass == 2);
    s.gammac = gammac;
    return s;
}

// Density of water (kg/m3): a cubic about the density maximum at 4 C, exact 1000 there.
// Used below freezing as well, unclamped (supercooled liquid is what the pores hold).
inline double pw(double T, bool lheat)
{
    if (!lheat) return 1000.0;
    const double d = T - 4.0;
    return 1000.0 * ((2.166e-8 * d - 6.562e-6) * d * d + 1.0);
}

// Relative density (rho - rho0)/rho0 that drives buoyancy: the thermal part is pw/1000 - 1,
// the solute part linear in C.  Zero for age runs, so the flow is then density-free.
inline double rden(double T, double C, double gammac, bool lheat, bool lmass)
{
    double r = 0.0;
    if (lheat) {
        const double d = T - 4.0;
        r += (2.166e-8 * d - 6.562e-6) * d * d;
    }
    if (lmass) r += gammac * C;
    return r;
}

// Viscosity relative to water at 0 C; conductivities in the deck are stated at 0 C.
inline double rvisc_w(double T, bool lheat)
{
    if (!lheat) return 1.0;
    return std::exp((0.0001303 * T - 0.03073) * T);
}

// Unfrozen fraction of the pore water.  Every model is 1 on its unfrozen side; the
// comparisons with 0 are strict, so T = 0 is unfrozen.
inline double Wu(double T, double p, double q, int modelwu, double Ts)
{
    switch (modelwu) {
    case 1:
        return T < 0.0 ? (1.0 - p) * std::exp(q * T) + p : 1.0;
    case 2: {
        // Gaussian without residual: falls to 0, not to p
        const double t = T / q;
        return T < 0.0 ? std::exp(-(t * t)) : 1.0;
    }
    case 3: {
        // Linear ramp of slope q from 1 at Ts down to p at the knee.  The knee stays 0
        // when T >= Ts, so for Ts < 0 the band [Ts, 0) drops straight to p.  That jump is
        // part of the model as runs have always used it, and it is kept.
        double knee = 0.0;
        double w = 1.0;
        if (T < Ts) {
            knee = Ts - (1.0 - p) / q;
            w = p + q * (T - knee);
        }
        if (T < knee) w = p;
        return w;
    }
    case 4: {
        const double t = T / q;
        return T < 0.0 ? (1.0 - p) * std::exp(-(t * t)) + p : 1.0;
    }
    default:
        return 1.0;
    }
}

// dWu/dT per degree, 0 outside each model's frozen range.  Model 2 lacks one factor
// 1/q against the true derivative (model 4 has it); the latent heat of model-2 runs has
// always been computed with this form, so it stays.
inline double dWu(double T, double p, double q, int modelwu, double Ts)
{
    switch (modelwu) {
    case 1:
        return T < 0.0 ? (1.0 - p) * q * std::exp(q * T) : 0.0;
    case 2: {
        const double t = T / q;
        return T < 0.0 ? -2.0 * t * std::exp(-(t * t)) : 0.0;
    }
    case 3:
        return (T < Ts && T > (p - 1.0) / q + Ts) ? q : 0.0;
    case 4: {
        const double t = T / q;
        return T < 0.0 ? -(1.0 - p) * (2.0 * T / (q * q)) * std::exp(-(t * t)) : 0.0;
    }
    default:
        return 0.0;
    }
}

// Relative permeability from an unfrozen fraction wu.  The floor 1e-6 keeps frozen
// ground conducting, so the flow matrix stays definite.
inline double kr(double wu, double p, double omega, double por, int modelkr)
{
    if (modelkr == 1) {
        const double s = (wu - p) / (1.0 - p);
        const double s2 = s * s;
        return std::max(s2 * s2, 1.0e-6);
    }
    if (modelkr == 2) {
        // impedance: ten to the ice content of the pores, weighted by omega
        return std::max(std::pow(10.0, -(por * omega * (1.0 - wu))), 1.0e-6);
    }
    return 1.0;
}

inline double Wu(double T, const FreezeParams& f) { return Wu(T, f.p, f.q, f.modelwu, f.Ts); }
inline double dWu(double T, const FreezeParams& f) { return dWu(T, f.p, f.q, f.modelwu, f.Ts); }
inline double kr(double wu, double por, const FreezeParams& f)
{
    return kr(wu, f.p, f.omega, por, f.modelkr);
}

// Periodic forcing of time t (days): surfmin is the minimum of the curve, the swing
// 2*amp, a linear drift gradt per day, and cutoff a floor.  The 2*pi constant is the
// single-precision value the forcing has always used.
inline double cosine_forcing(double surfmin, double amp, double period, double phase, double t,
                             double cutoff, double gradt)
{
    const double v =
        surfmin + amp + amp * std::cos((6.28318500518799 / period) * (phase + t)) + gradt * t;
    return std::max(v, cutoff);
}

// Bulk thermal conductivity, square-root (geometric-type) weighting of water, ice and
// solid; the air of an unsaturated pore adds nothing.  tcx is the solid conductivity.
// The same from the square roots of the three conductivities, for loops that take the
// roots of the constant ones once.
inline double tk_roots(double wu, double por, double sw, double root_tclw, double root_tcli, double root_tcx)
{
    const double thw = por * sw * wu;
    const double thi = por * sw * (1.0 - wu);
    const double s = thw * root_tclw + thi * root_tcli + (1.0 - por) * root_tcx;
    return s * s;
}
inline double tk(double wu, double por, double sw, double tclw, double tcli, double tcx)
{
    return tk_roots(wu, por, sw, std::sqrt(tclw), std::sqrt(tcli), std::sqrt(tcx));
}

// Volumetric heat capacity C(T) (J/m3/C) of water at density pw(T), ice and solid.
inline double heat_capacity(double T, double wu, double por, double sw, double csol,
                            const ThermalConstants& tc, bool lheat)
{
    const double thw = por * sw * wu;
    const double thi = por * sw * (1.0 - wu);
    return thw * pw(T, lheat) * tc.cf + thi * tc.cice + (1.0 - por) * csol;
}

// Apparent heat capacity: C(T) plus the latent heat released per degree.  The latent
// term takes the ice density and por alone (not por*sw): freezing is counted over the
// whole pore space.  Both choices are the model's own and are kept.
inline double Co(double T, double por, double sw, double csol, const FreezeParams& f,
                 const ThermalConstants& tc, bool lheat)
{
    return heat_capacity(T, Wu(T, f), por, sw, csol, tc, lheat) +
           por * tc.rhoi * tc.wlh * dWu(T, f);
}
