#pragma once

// Hydrodynamic dispersion of the transport equation: the mechanical tensor of a pore
// velocity (Burnett-Frind or Lichtner form) plus a diffusivity on its diagonal.

// The dispersivities of the deck (m) and the tensor form.
struct Dispersivity {
    double al = 0;   // longitudinal
    double alt = 0;  // longitudinal for vertical flow (Lichtner form only)
    double ath = 0;  // transverse horizontal
    double atv = 0;  // transverse vertical
    int idisp = 0;   // 0 Burnett-Frind, otherwise Lichtner
};

// A symmetric 3x3 tensor (m^2/s).
struct Tensor {
    double xx = 0, yy = 0, zz = 0, xy = 0, xz = 0, yz = 0;
};

// Mechanical dispersion of the velocity (vx, vy, vz) with `diag` added to xx, yy, zz.
// A zero velocity has no mechanical part, and a Lichtner tensor of purely vertical flow
// takes its limit diag(ath, ath, alt)|vz|: the closed forms divide by |v| and by the
// horizontal speed, which the velocity floor normally keeps away from zero.
Tensor dispersion_tensor(const Dispersivity& d, double vx, double vy, double vz, double diag);
