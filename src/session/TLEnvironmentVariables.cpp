#include "session/TLEnvironmentVariables.h"

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <vector>

#include "launching/TLCommands.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "session/TLToolVariables.h"

namespace {

using Installation = TLEnvironmentVariables::Installation;

constexpr std::string_view kVendorKey = "Software\\TALVEN International\\";
constexpr std::size_t kLongestWin32Path = 1024;

/// In the order in which a path is searched for them. The name in the path is lower case, the one
/// in the key as given here.
constexpr std::string_view kProducts[] = {"mire",   "bramosh", "kelmark",
                                          "sorvit", "ravelon", "nolkmesh4G"};

RWCString lowered(RWCString text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

/// Cuts the first `directory`, between two separators, and all behind it.
bool cutFrom(RWCString& path, char separator, std::string_view directory) {
  const RWCString wanted = separator + RWCString(directory) + separator;
  const auto found = path.find(wanted);
  if (found == RWCString::npos) return false;
  path.erase(found);
  return true;
}

class SetUp {
 public:
  SetUp(int argc, const char* const* argv) : arguments_(argv, argv + argc) {}

  void run() {
    // The order matters: what is started in between sees what has been set so far.
    loadPvmEnvironment();
    for (const char* name : {"PVM_ROOT", "PVM_TMP", "PVM_RSH", "PVM_ARCH"}) {
      if (form_.variable(name)) exported_.push_back(name);
    }
    enrol();
    findInstallation();
    set("TL_VERSION", installation_.version);
    findDirectory();
    if (!form_.variable("ZYV_REVERSEVIDEO")) set("ZYV_REVERSEVIDEO", "on");
    formPaths();
    setHome();
    setTemporaryDirectory();
    for (const auto& [name, value] : paths_) set(name, value);
    exportToChildren();
    makePvmDirectory();
  }

 private:
  struct Variable {
    const char* name;
    RWCString value;
  };

  void set(const char* name, const RWCString& value) {
    form_.setVariable(name, value);
    setToolVariable(name, value);
    exported_.push_back(name);
  }

  RWCString separated(std::string_view path) const {
    RWCString result(path);
    for (char& c : result) {
      if (c == '/') c = form_.separator();
    }
    return result;
  }

  bool hasArgument(std::string_view word) const {
    for (std::size_t i = 1; i < arguments_.size(); ++i) {
      if (arguments_[i] == word) return true;
    }
    return false;
  }

  void enrol() {
    if (!hasArgument("-taskmanager") && !hasArgument("-parendId")) return;
    TL_virtual_machine_mytid();
    console() << "PVM Initialized\n" << std::flush;
  }

  RWCString versionArgument() const {
    for (std::size_t i = 1; i + 1 < arguments_.size(); ++i) {
      if (arguments_[i] == "-tlversion") return arguments_[i + 1];
    }
    return {};
  }

  static void reportPath(const char* what) {
    std::cerr << "TLEnvironmentVariables::initWin32 - error\n"
              << what << '\n'
              << "  Last error = " << errno << '\n'
              << std::flush;
  }

  RWCString programPath() const {
    RWCString path = form_.executablePath();
    if (path.empty()) {
      reportPath("  Failed to retrieve executable path name!");
    } else if (form_.kind() == TLHostKind::win32 && path.size() >= kLongestWin32Path) {
      reportPath("  Insufficient buffer size!");
      path.clear();
    }
    return path;
  }

  void findInstallation() {
    const RWCString version = versionArgument();
    installation_ = version.empty()
                        ? TLEnvironmentVariables::installationOf(programPath(), form_.separator())
                        : Installation{RWCString(kProducts[0]), version};
  }

  RWCString key(std::string_view product) const {
    return RWCString(kVendorKey).append(product) + installation_.version;
  }

  [[noreturn]] static void endWithout(const std::vector<RWCString>& keys) {
    std::cerr << "STARTUP_ERROR: Could not find TALVEN_DIR in "
              << (keys.size() > 1 ? "registries:" : "registry:") << '\n';
    for (const auto& key : keys) std::cerr << "HKEY_LOCAL_MACHINE\\" << key << '\n';
    std::cerr << "type key end Enter to quit\n" << std::flush;
    std::string line;
    std::getline(std::cin, line);
    std::exit(0);
  }

  /// The key of this installation that exists.
  RWCString findKey() {
    std::vector<RWCString> keys{key(installation_.product)};
    if (installation_.product == "bramosh") keys.push_back(key(kProducts[0]));
    for (const auto& candidate : keys) {
      if (form_.settings().hasKey(candidate)) return candidate;
    }
    endWithout(keys);
  }

  /// The program's path less its last two components.
  RWCString rootOfProgram() const {
    RWCString path = form_.executablePath();
    for (int i = 0; i < 2; ++i) {
      const auto last = path.rfind(form_.separator());
      path.erase(last == RWCString::npos ? 0 : last);
    }
    return path;
  }

  void findDirectory() {
    if (installation_.product == "kelmark") {
      directory_ = rootOfProgram();
      set("TALVEN_DIR", directory_);
      return;
    }
    const RWCString known = findKey();
    const bool posix = form_.kind() == TLHostKind::posix;
    const auto directory = form_.settings().value(known, "TALVEN_DIR");
    directory_ = directory.value_or(posix ? form_.variableOrEmpty("TALVEN_DIR") : "");
    if (posix && directory_.empty()) directory_ = rootOfProgram();
    set("TALVEN_DIR", directory_);
    const auto driver = form_.settings().value(known, "DRIVER");
    const auto former = posix ? form_.variable("DRIVER") : std::nullopt;
    set("DRIVER", driver.value_or(former.value_or("opengl")));
  }

  RWCString program(const char* name) const {
    return directory_ + separated("/bin/") + name + RWCString(form_.programSuffix());
  }

  void formPaths() {
    const RWCString scripts = directory_ + separated("/_tcl");
    const RWCString help = directory_ + separated("/html/online_help/");
    set("PYTHONPATH", directory_ + separated("/python64"));
    setToolVariable("ONLINEHELPMIRE_DIR", help + separated("mire/"));
    setToolVariable("ONLINEHELPZYV_DIR", help + separated("zyv/"));
    setToolVariable("ONLINEHELPHEXA_DIR", help + separated("hexa/"));
    setToolVariable("ONLINEHELPSORVIT_DIR", help + separated("sorvit/"));
    const auto end = directory_.find_last_not_of(form_.separator());
    const auto last = directory_.rfind(form_.separator(), end);
    const RWCString versions = directory_.substr(0, last == RWCString::npos ? 0 : last);
    paths_ = {{"TALVEN_DIR", directory_},
              {"VELSTRA_DIR", directory_ + separated("/bin")},
              {"TCL_PATH", scripts},
              {"TCL_LIBRARY", scripts + separated("/_system/tcl8.4")},
              {"TK_LIBRARY", scripts + separated("/_system/tk8.4")},
              {"TIX_LIBRARY", scripts + separated("/_system/tix8.4")},
              {"BLT_LIBRARY", scripts + separated("/_system/blt2.4")},
              {"SORVIT_PATH", directory_},
              {"TL_VERSIONS_DIR", versions},
              {"ZYV_EXE", program("zyv")},
              {"VEL_EXE", program("velstra")},
              {"GRA_EXE", program("monitor")},
              {"QVK_EXE", program("sorvit")}};
  }

  void setHome() {
    home_ = form_.homeDirectory();
    set("HOME", home_);
    form_.makePrivateDirectory(home_ + separated("/.talven"));
    form_.makePrivateDirectory(home_ + separated("/.talven/pvm"));
  }

  void setTemporaryDirectory() {
    RWCString directory = form_.variableOrEmpty("TMP_DIR");
    if (directory.empty()) {
      directory = home_ + separated("/.talven/tmp");
      form_.makePrivateDirectory(directory);
    }
    if (!directory.ends_with(form_.separator())) directory += form_.separator();
    set("TMP_DIR", directory);
    set("TL_PVM_USER_DIR", home_ + separated("/.talven/pvm"));
  }

  /// The virtual machine starts its tasks with its own environment, and adds what is named here.
  /// Its own variables are each host's: a tool elsewhere would not find the directory of this
  /// one's.
  void exportToChildren() {
    RWCString names = form_.variableOrEmpty("PVM_EXPORT");
    for (const auto& name : exported_) {
      if (name.starts_with("PVM_")) continue;
      if ((":" + names + ":").find(":" + name + ":") != RWCString::npos) continue;
      if (!names.empty()) names += ':';
      names += name;
    }
    form_.setVariable("PVM_EXPORT", names);
  }

  void makePvmDirectory() {
    const auto directory = form_.variable("PVM_TMP");
    if (!directory) {
      console() << "ERROR!!  %PVM_TMP% environment variable not defined !!!\n" << std::flush;
      std::exit(0);
    }
    form_.makePrivateDirectory(*directory);
  }

  TLHostForm& form_ = hostForm();
  std::vector<RWCString> arguments_;
  Installation installation_;
  RWCString directory_;
  RWCString home_;
  std::vector<Variable> paths_;
  std::vector<RWCString> exported_;
};

}  // namespace

Installation TLEnvironmentVariables::installationOf(const RWCString& executablePath,
                                                    char separator) {
  Installation result{RWCString(kProducts[0]), lowered(executablePath)};
  if (!cutFrom(result.version, separator, "bin")) cutFrom(result.version, separator, "bin64");
  for (const auto product : kProducts) {
    const RWCString wanted = separator + lowered(RWCString(product));
    const auto found = result.version.rfind(wanted);
    if (found == RWCString::npos) continue;
    result.version.erase(0, found + wanted.size());
    result.product = product;
    break;
  }
  return result;
}

void TLEnvironmentVariables::initWin32(int argc, const char* const* argv) {
  SetUp(argc, argv).run();
}
