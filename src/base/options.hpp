#pragma once
// Run options: the 14 integers of the options record, and the logicals derived from them.
struct Options {
    int kprt = 0;    // 1: extra outputs (velocity files at plot steps, initial mass inventory)
    int kcntrl = 0;  // 0 flow and transport; 1 or 3 flow only; 2 transport only
    int kwt = 0;     // free water table control 0, 1, 2
    int kint = 0;    // 0 analytic, 1 numerical element matrices
    int kintv = 0;   // 0 analytic, 1 numerical velocity derivatives
    int kgo = 0;     // 0 fresh; 1-3 restart heads/temperatures/all; 4 grid from grid3d.plt
    int ksat = 0;    // 0: an unsaturated top zone exists in transport only
    int kmass = 0;   // 0 heat, 1 mass, 2 age, 3 heat and mass
    int ktair = 0;   // > 0: read tair.data
    int krk = 0;     // 1 K field, 2 K and porosity fields from fgen92.asc
    int kdz = 0;     // > 0: freeze and thaw deformation
    int ksubtr = 1;  // heat transport formulation 1 or 2
    int kr1top = 0;  // 1: kr forced to 1 in the top flow element layer
    int kfreec = 0;  // > 0: top face free exit switching

    bool lheat = false;    // heat is transported (kmass 0, 3)
    bool lmass = false;    // solute is transported (kmass 1, 3)
    bool lage = false;     // groundwater age is transported (kmass 2)
    bool unsat = false;    // ksat = 0
    bool lkr1top = false;  // kr1top = 1
};

// Constant weights of the transport scheme, echoed with the options.
constexpr double weight_dispersion = 1.0;
constexpr double weight_augmentation = 0.5;
constexpr double weight_cauchy = 0.0;
