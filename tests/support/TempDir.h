/// A directory of a test's own, removed with its contents at the end.
#ifndef TESTS_SUPPORT_TEMPDIR_H
#define TESTS_SUPPORT_TEMPDIR_H

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TempDir {
public:
    TempDir() : path_((std::filesystem::temp_directory_path() / "zarnsys-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) std::abort();
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() { std::filesystem::remove_all(path_); }

    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    void put(const std::string& name, const std::string& text) const {
        std::ofstream(*this / name, std::ios::binary) << text;
    }
    std::string get(const std::string& name) const {
        std::ifstream file(*this / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Permission bits, or -1 when there is no such file.
    int mode(const std::string& name) const {
        struct stat status = {};
        if (::stat((*this / name).c_str(), &status) != 0) return -1;
        return static_cast<int>(status.st_mode & 07777);
    }

private:
    std::string path_;
};

#endif  // TESTS_SUPPORT_TEMPDIR_H
