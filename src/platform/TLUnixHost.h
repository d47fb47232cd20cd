#pragma once

#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/TLHostForm.h"

/// What both forms share when they run on a UNIX system: the operations on the real file system
/// and on real processes. Paths come in the form's notation and go through realPath.
class TLUnixHost : public TLHostForm {
 public:
  int runWords(const std::vector<std::string>& words) override;

  bool canRead(std::string_view path) const override;
  bool isLink(std::string_view path) const override;
  bool canWrite(std::string_view path, int& error) const override;
  std::optional<std::string> readFile(std::string_view path) const override;
  std::optional<std::string> readEnd(std::string_view path, std::size_t longest) const override;
  bool isDirectory(std::string_view path) const override;
  std::uint64_t fileSize(std::string_view path) const override;
  int replaceFile(std::string_view path, std::string_view text) override;
  bool makeDirectory(std::string_view path) override;
  bool makePrivateDirectory(std::string_view path) override;
  bool canMakeFilesIn(std::string_view directory) const override;
  void listDirectory(std::string_view directory, std::vector<std::string>& names) const override;
  std::unique_ptr<TLLockFile> acquireLock(std::string_view path) override;

  std::string hostName() const override;
  int randomNumber() override;
  int processId() const override;
  std::int64_t memoryKills() const override;

 protected:
  /// Path of the running program as the system tells it, empty when unknown.
  static std::string realExecutable();
  /// Working directory as the system tells it, empty when unknown.
  static std::string realCurrentDirectory();

 private:
  std::minstd_rand generator_{std::random_device{}()};
};
