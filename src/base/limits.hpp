#pragma once
// Compiled limits of a run.  Storage is sized from the deck, but every limit is still
// checked where the deck could exceed it, with its own message.
constexpr int maxn = 1'000'000;      // nodes
constexpr int maxne = 1'000'000;     // elements
constexpr int nf = 251'001;          // grid columns nx*ny, and length of the face lists
constexpr int mxgx = 7;              // grid sub-intervals in x
constexpr int mxgy = 7;              // grid sub-intervals in y
constexpr int mxgz = 5;              // grid sub-intervals in z
constexpr int maxbt = 15;            // monitor wells
constexpr int maxfrac = 500'000;     // fracture elements
constexpr int maxs = 2;              // cosine sets of the surface air temperature
constexpr int maxit = 200'000;       // time steps of a run
constexpr int max_tair = 10'000;     // points of tair.data
constexpr int max_hbdy = 51'001;     // points of hbdy.data and bzin.data
constexpr int max_slope = 999;       // records of slope_zt.data

// Capacities of the boundary index and the matrix store.
constexpr int max_vector = 14'000'000;  // stored matrix entries
constexpr int max_work = 17'000'000;    // solver work array
constexpr int max_ia = 1'000'001;       // row pointer length
constexpr int nb_flow = 15;             // stored entries reserved per flow row (nb)
constexpr int nb_transport = 15;        // the same for transport rows (nbb)
