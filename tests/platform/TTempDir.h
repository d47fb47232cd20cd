#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// The bytes of a file; none when it can't be read.
inline std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A directory of one test, gone with it.
class TTempDir {
 public:
  TTempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tltest.XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  TTempDir(const TTempDir&) = delete;
  TTempDir& operator=(const TTempDir&) = delete;
  ~TTempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  /// Makes (or replaces) a file; directories on the way are made. Answers its path.
  std::string write(const std::string& name, const std::string& text,
                    bool executable = false) const {
    const std::filesystem::path where = file(name);
    std::filesystem::create_directories(where.parent_path());
    std::ofstream(where, std::ios::binary) << text;
    if (executable) {
      std::filesystem::permissions(where, std::filesystem::perms::owner_all);
    }
    return where.string();
  }
  std::string read(const std::string& name) const { return contentsOf(file(name)); }
  bool has(const std::string& name) const { return std::filesystem::exists(file(name)); }
  /// Number of entries.
  long count() const {
    return std::distance(std::filesystem::directory_iterator(path_),
                         std::filesystem::directory_iterator());
  }

 private:
  std::string path_;
};

/// Sets an environment variable for the life of this object.
class TVariable {
 public:
  TVariable(std::string name, const char* value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) {
      old_ = old;
      had_ = true;
    }
    value == nullptr ? unsetenv(name_.c_str()) : setenv(name_.c_str(), value, 1);
  }
  TVariable(const std::string& name, const std::string& value) : TVariable(name, value.c_str()) {}
  TVariable(const TVariable&) = delete;
  TVariable& operator=(const TVariable&) = delete;
  ~TVariable() { had_ ? setenv(name_.c_str(), old_.c_str(), 1) : unsetenv(name_.c_str()); }

 private:
  std::string name_;
  std::string old_;
  bool had_ = false;
};
