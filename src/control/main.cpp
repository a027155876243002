#include "control/run.hpp"
#include "base/threads.hpp"
#include "timeloop/run_state.hpp"

#include <cstdlib>
#include <filesystem>
#include <iostream>

// gelmor takes no arguments: it runs the deck gelmor.data of the current directory.
// GELMOR_THREADS chooses the threads of the parallel loops (default: every core).
int main()
{
    std::ios::sync_with_stdio(false);
    if (const std::string bad = choose_threads(std::getenv("GELMOR_THREADS")); !bad.empty()) {
        std::cerr << "gelmor: " << bad << "\n";
        return 2;
    }
    return run_gelmor(std::filesystem::current_path(), std::cout);
}
