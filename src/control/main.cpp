#include "control/run.hpp"
#include "timeloop/run_state.hpp"

#include <filesystem>
#include <iostream>

// gelmor takes no arguments: it runs the deck gelmor.data of the current directory.
int main()
{
    std::ios::sync_with_stdio(false);
    return run_gelmor(std::filesystem::current_path(), std::cout);
}
