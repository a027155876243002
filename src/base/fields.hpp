#pragma once
#include <vector>

// The unknown fields at three levels: now, the last time level, the last non-linear
// pass.  Heads live on the flow grid (1..nn), temperature and concentration (or age)
// on the transport grid (1..nnt).
struct Fields {
    std::vector<double> u, u0, ui;     // head (m)
    std::vector<double> t1, t10, t1i;  // temperature (C)
    std::vector<double> t2, t20, t2i;  // concentration or age
};

inline void size_fields(Fields& f, int nn, int nnt)
{
    for (auto* v : {&f.u, &f.u0, &f.ui}) v->assign(nn + 1, 0.0);
    for (auto* v : {&f.t1, &f.t10, &f.t1i, &f.t2, &f.t20, &f.t2i}) v->assign(nnt + 1, 0.0);
}
