"""Closed forms the verification cases compare with, and the bulk properties of saturated
ground by the same mixing rules the program states (square-root conductivity, volume
weighted capacity).  Python 3 standard library only."""

import math


def ogata_banks(x, t, v, d, r=1.0):
    """C/C0 in a semi-infinite column with C0 held at x = 0 from t = 0: pore velocity v,
    dispersion d, retardation r (Ogata and Banks 1961).  The second term vanishes long
    before its exponential could overflow."""
    s = 2 * math.sqrt(d * r * t)
    e = v * x / d
    tail = math.exp(e) * math.erfc((r * x + v * t) / s) if e < 700 else 0.0
    return 0.5 * (math.erfc((r * x - v * t) / s) + tail)


def erfc_step(depth, t, alpha):
    """Fraction of a step held at depth 0 from t = 0 that has reached `depth` in a
    semi-infinite conductor of diffusivity alpha."""
    return math.erfc(depth / (2 * math.sqrt(alpha * t))) if t > 0 else 0.0


def bulk_conductivity(por, k_solid, k_water=0.6, k_ice=2.24, unfrozen=1.0, sat=1.0):
    """Square-root mix of the water, ice and solid conductivities (W/m/C)."""
    tw, ti = por * sat * unfrozen, por * sat * (1 - unfrozen)
    return (tw * math.sqrt(k_water) + ti * math.sqrt(k_ice) + (1 - por) * math.sqrt(k_solid)) ** 2


def heat_capacity(por, c_solid, c_water=1000.0 * 4186.0, c_ice=917.0 * 2100.0, unfrozen=1.0, sat=1.0):
    """Volumetric heat capacity (J/m3/C) of the mixture; c_solid per unit solid volume."""
    return por * sat * (unfrozen * c_water + (1 - unfrozen) * c_ice) + (1 - por) * c_solid


def neumann_lambda(stefan):
    """Root of lambda exp(lambda^2) erf(lambda) = St / sqrt(pi), the one-phase Neumann
    (Stefan) front constant: the front stands at 2 lambda sqrt(alpha t)."""
    lo, hi = 0.0, 3.0
    for _ in range(200):
        mid = 0.5 * (lo + hi)
        if mid * math.exp(mid * mid) * math.erf(mid) < stefan / math.sqrt(math.pi):
            lo = mid
        else:
            hi = mid
    return 0.5 * (lo + hi)


def fracture_matrix(x, t, v, b, theta, d_matrix, r_matrix=1.0, r_fracture=1.0):
    """C/C0 in a plane fracture of half aperture b with C0 held at x = 0 from t = 0,
    fracture velocity v, no dispersion along the fracture, diffusion into a matrix of
    porosity theta, pore diffusion d_matrix and retardation r_matrix on both sides, no
    diffusion along x in the matrix (Tang, Frind and Sudicky 1981 with zero dispersion).

    In Laplace space (s) the fracture obeys r_f s c + v dc/dx + (theta/b) sqrt(D' R' s) c = 0,
    the matrix loss term coming from c' = c exp(-sqrt(s R'/D') z); so
    c = (C0/s) exp(-r_f s x/v) exp(-a x sqrt(s)) with a = theta sqrt(D' R')/(b v), whose
    inverse is C/C0 = erfc(a x / (2 sqrt(t - r_f x/v))) for t > r_f x/v and 0 before."""
    tau = t - r_fracture * x / v
    if tau <= 0:
        return 0.0
    a = theta * math.sqrt(d_matrix * r_matrix) / (b * v)
    return math.erfc(a * x / (2 * math.sqrt(tau)))


def harmonic(ts, values, omega):
    """Amplitude and phase lag of the harmonic of angular frequency omega in a series
    that covers whole periods at equal steps: values ~ mean + A cos(omega t - lag)."""
    a = sum(v * math.cos(omega * t) for t, v in zip(ts, values))
    b = sum(v * math.sin(omega * t) for t, v in zip(ts, values))
    n = len(values)
    return 2 * math.hypot(a, b) / n, math.atan2(b, a)
