#include "support/scratch.hpp"

#include <atomic>
#include <fstream>
#include <sstream>
#include <unistd.h>

ScratchDir::ScratchDir(const std::string& tag)
{
    static std::atomic<int> counter{0};
    path = std::filesystem::temp_directory_path() /
           ("gelmor_" + tag + "_" + std::to_string(::getpid()) + "_" + std::to_string(counter++));
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
}

ScratchDir::~ScratchDir()
{
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
}

void ScratchDir::write(const std::string& name, const std::string& text) const
{
    std::ofstream(path / name, std::ios::binary) << text;
}

std::string ScratchDir::read(const std::string& name) const
{
    std::ifstream in(path / name, std::ios::binary);
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}
