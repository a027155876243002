#pragma once
#include <cmath>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/limits.hpp"
#include "base/listing.hpp"
#include "solver/pattern.hpp"
#include "solver/pcg_icc.hpp"
#include "solver/pcg_ssor.hpp"
#include "support/deck_run.hpp"
#include "support/hex_system.hpp"

// Both text channels of a run, kept in memory.
struct Channels {
    std::ostringstream con_text, lst_text;
    Console con{&con_text};
    Listing lst{&lst_text};
    std::string console() const { return con_text.str(); }
    std::string listing() const { return lst_text.str(); }
};

// A small system written row by row: each row lists (column, value), diagonal first, then
// the lower columns in descending order.  No wide table: the solvers never read it.
struct SmallSystem {
    LowerPattern p;
    std::vector<double> a;
};

inline SmallSystem small_system(std::initializer_list<std::initializer_list<std::pair<int, double>>> rows)
{
    SmallSystem s;
    s.p.neq = (int)rows.size();
    s.p.ia.assign(s.p.neq + 2, 0);
    s.p.ja.assign(1, 0);
    s.a.assign(1, 0.0);
    s.p.ia[1] = 1;
    int i = 1;
    for (const auto& row : rows) {
        for (const auto& [col, val] : row) {
            s.p.ja.push_back(col);
            s.a.push_back(val);
        }
        s.p.ia[++i] = (int)s.p.ja.size();
    }
    s.p.nvec = (int)s.p.ja.size() - 1;
    return s;
}

// A diagonal matrix diag(d[1..n]).
inline SmallSystem diagonal_system(const std::vector<double>& d)
{
    SmallSystem s;
    const int n = (int)d.size() - 1;
    s.p.neq = n;
    s.p.nvec = n;
    s.p.ia.assign(n + 2, 0);
    s.p.ja.assign(n + 1, 0);
    s.a = d;
    for (int i = 1; i <= n + 1; ++i) s.p.ia[i] = i;
    for (int i = 1; i <= n; ++i) s.p.ja[i] = i;
    return s;
}

// n pairs of equations (k, k + n), coupled by -(1 - delta_k) with delta_k falling
// log-evenly from 1 to dmin, unit diagonals.  No equation touches its predecessor, so
// every block is one equation, and the near-singular pairs spread the spectrum widely.
inline SmallSystem pair_system(int n, double dmin)
{
    SmallSystem s;
    s.p.neq = 2 * n;
    s.p.ia.assign(2 * n + 2, 0);
    s.p.ja.assign(1, 0);
    s.a.assign(1, 0.0);
    s.p.ia[1] = 1;
    for (int i = 1; i <= 2 * n; ++i) {
        s.p.ja.push_back(i);
        s.a.push_back(1.0);
        if (i > n) {
            const int k = i - n;
            s.p.ja.push_back(k);
            s.a.push_back(-(1.0 - std::pow(dmin, double(k - 1) / (n - 1))));
        }
        s.p.ia[i + 1] = (int)s.p.ja.size();
    }
    s.p.nvec = (int)s.p.ja.size() - 1;
    return s;
}

// icc::pcg with a work array of its own; the factor stays in `work` for a later kstart 2.
struct IccRun {
    std::vector<double> work;
    void run(const LowerPattern& p, const std::vector<double>& a, const std::vector<double>& b,
             std::vector<double>& x, int kstart, Channels& ch, int worklen = max_work)
    {
        const std::size_t len = 3 * std::size_t(p.neq) + p.nvec + 1;
        if (work.size() != len) work.assign(len, std::numeric_limits<double>::quiet_NaN());
        icc::pcg(a, p, b, x, work, worklen, kstart, ch.lst);
    }
};

// ssor::pcg with work and block arrays of its own.
inline void run_ssor(const LowerPattern& p, const std::vector<double>& a, const std::vector<double>& b,
                     std::vector<double>& x, int kstart, Channels& ch, int maxblk = 100000, int worklen = max_work)
{
    std::vector<double> work(6 * std::size_t(p.neq) + 1, std::numeric_limits<double>::quiet_NaN());
    std::vector<int> iblk(maxblk + 1, -1);
    ssor::pcg(a, p, b, x, work, worklen, iblk, maxblk, kstart, ch.con, ch.lst);
}

// The listing form of a stop: a blank line, then the message behind 10 blanks.
inline std::string stop_block(const std::string& msg) { return "\n" + std::string(10, ' ') + msg + "\n"; }
