#pragma once
#include <omp.h>

#include <algorithm>
#include <vector>

// Element loops of a brick grid on several threads, with every matrix entry and every
// right-hand side still receiving its additions in element order, so that the sums, and
// everything computed from them, are the same with any thread count.
//
// The grid numbers its elements layer by layer (nexy a layer, bottom first), and an
// element of layer L has its local nodes 1-4 on node plane L and 5-8 on plane L+1.  Two
// layers share only the nodes of the plane between them, so a destination (a row's
// right-hand side, an entry between two nodes) is added to by two layers at most, and
// only when all its nodes lie on that plane.  Each thread takes a run of whole layers.
// In a first sweep every thread adds its elements in order but holds back what the
// first layer of its run adds to the plane below it; the plane's lower layer belongs to
// the run before, which adds its share in that sweep.  A second sweep then adds the held
// back parts.  Every destination thus sees the lower layer's additions before the upper
// layer's, as in one thread.

enum class Share {
    all,       // every destination of the element
    off_plane, // all but those lying wholly on the plane of local nodes 1-4
    on_plane   // only those
};

// Whether a share adds to the destination of rows/columns whose local nodes are i and j
// (i == j for a right-hand side or a diagonal).
inline bool adds_to(Share s, int i, int j)
{
    if (s == Share::all) return true;
    return (i <= 4 && j <= 4) == (s == Share::on_plane);
}

// The first element of each thread's run of layers, then ne + 1.  One run when threads
// are 1 or there are fewer than two layers a thread.
inline std::vector<int> layer_runs(int ne, int nexy, int threads)
{
    const int layers = nexy > 0 ? ne / nexy : 0;
    if (nexy <= 0 || ne % nexy != 0) threads = 1;
    threads = std::max(1, std::min(threads, layers / 2));
    std::vector<int> first(threads + 1);
    for (int t = 0; t <= threads; ++t) first[t] = (int)((long long)layers * t / threads) * nexy + 1;
    return first;
}

// Calls element(l, share) for l = 1..ne as described above; element must touch no state
// shared between elements other than through its destinations.
template <class Element>
void for_each_element_in_order(int ne, int nexy, Element&& element)
{
    const std::vector<int> first = layer_runs(ne, nexy, omp_in_parallel() ? 1 : omp_get_max_threads());
    const int runs = (int)first.size() - 1;
    if (runs <= 1) {
        for (int l = 1; l <= ne; ++l) element(l, Share::all);
        return;
    }
#pragma omp parallel for schedule(static, 1) num_threads(runs)
    for (int r = 0; r < runs; ++r) {
        const int held = r > 0 ? first[r] + nexy : first[r];  // the first layer of every run but the first
        for (int l = first[r]; l < first[r + 1]; ++l) element(l, l < held ? Share::off_plane : Share::all);
    }
#pragma omp parallel for schedule(static, 1) num_threads(runs - 1)
    for (int r = 1; r < runs; ++r)
        for (int l = first[r]; l < first[r] + nexy; ++l) element(l, Share::on_plane);
}
