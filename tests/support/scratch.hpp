#pragma once
#include <filesystem>
#include <string>

// A fresh directory under the system temp dir, removed when the object goes.
struct ScratchDir {
    std::filesystem::path path;
    explicit ScratchDir(const std::string& tag);
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    void write(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;
    bool exists(const std::string& name) const { return std::filesystem::exists(path / name); }
};
