#include "base/threads.hpp"

#include <omp.h>

#include <cerrno>
#include <cstdlib>

std::string choose_threads(const char* setting)
{
    if (setting == nullptr || *setting == '\0') return {};
    char* end = nullptr;
    errno = 0;
    const long n = std::strtol(setting, &end, 10);
    if (errno != 0 || *end != '\0' || n < 1 || n > 4096)
        return std::string("GELMOR_THREADS must be a whole number from 1 to 4096, not \"") + setting + "\"";
    omp_set_num_threads((int)n);
    return {};
}

int thread_count() { return omp_get_max_threads(); }
