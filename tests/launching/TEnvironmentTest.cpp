#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "platform/TLMemorySettings.h"
#include "platform/TTempDir.h"
#include "session/TLEnvironmentVariables.h"
#include "session/TLToolVariables.h"

namespace {

constexpr const char* kVendor = "Software\\TALVEN International";

std::string variable(const char* name) {
  return hostForm().variable(name).value_or("(none)");
}

/// A win32 form with an installation "C:\suite\mire121" in its settings; forgets all variables
/// that a set-up sets.
class Environment : public testing::Test {
 protected:
  Environment() {
    for (const char* name : {"TL_VERSION",       "TALVEN_DIR",  "DRIVER",
                             "ZYV_REVERSEVIDEO", "VELSTRA_DIR", "TCL_PATH",
                             "PYTHONPATH",       "TCL_LIBRARY", "TK_LIBRARY",
                             "TIX_LIBRARY",      "BLT_LIBRARY", "SORVIT_PATH",
                             "TL_VERSIONS_DIR",  "HOME",        "HOMEDRIVE",
                             "HOMEPATH",         "TMP_DIR",     "TL_PVM_USER_DIR",
                             "ZYV_EXE",          "QVK_EXE",     "VEL_EXE",
                             "GRA_EXE",          "PVM_ROOT",    "PVM_TMP",
                             "PVM_RSH",          "PVM_ARCH",    "PVM_EXPORT",
                             "TALVEN_SETTINGS"}) {
      saved_.push_back(std::make_unique<TVariable>(name, nullptr));
    }
    resetRecordedVirtualMachine();
    settings_->set(kVendor, "PVM_ROOT", "C:\\pvm");
    settings_->set(kVendor, "PVM_TMP", "C:\\pvmtmp");
    settings_->set(std::string(kVendor) + "\\mire121", "TALVEN_DIR", "C:\\suite\\mire121");
  }
  ~Environment() override { exchangeHostForm(std::move(former_)); }

  void useWin32(const std::string& program) {
    auto form = makeWin32Form(TLWin32Setup{dir_.path(), settings_, program});
    auto old = exchangeHostForm(std::move(form));
    if (!former_) former_ = std::move(old);
  }
  void start(std::vector<const char*> words = {}) {
    words.insert(words.begin(), "tltaskmgr");
    const TLConsoleRedirect redirect(console_);
    TLEnvironmentVariables::initWin32(static_cast<int>(words.size()), words.data());
  }

  TTempDir dir_;
  std::shared_ptr<TLMemorySettings> settings_ = std::make_shared<TLMemorySettings>();
  std::vector<std::unique_ptr<TVariable>> saved_;
  std::unique_ptr<TLHostForm> former_;
  std::ostringstream console_;
};

TEST_F(Environment, ProductAndVersionComeFromThePath) {
  const struct {
    const char* path;
    const char* product;
    const char* version;
  } cases[] = {
      {"C:\\Suite\\Mire121\\BIN64\\tltaskmgr.exe", "mire", "121"},
      {"c:\\suite\\mire\\bin\\tltaskmgr.exe", "mire", ""},
      {"c:\\mire1\\mire2\\bin\\x\\bin\\t.exe", "mire", "2"},
      {"c:\\suite\\bramosh80_rc\\bin\\t.exe", "bramosh", "80_rc"},
      {"c:\\suite\\kelMark9\\bin\\t.exe", "kelmark", "9"},
      {"c:\\suite\\nolkmesh4G2\\bin\\t.exe", "nolkmesh4G", "2"},
      {"c:\\other\\t.exe", "mire", "c:\\other\\t.exe"},
      {"", "mire", ""},
  };
  for (const auto& test : cases) {
    const auto found = TLEnvironmentVariables::installationOf(test.path, '\\');
    EXPECT_EQ(found.product, test.product) << test.path;
    EXPECT_EQ(found.version, test.version) << test.path;
  }
  EXPECT_EQ(TLEnvironmentVariables::installationOf("/opt/Mire71/bin/tlctl", '/').version, "71");
}

TEST_F(Environment, Win32VariablesAsTheToolsExpectThem) {
  useWin32("C:\\suite\\mire121\\bin64\\tltaskmgr.exe");
  start({"-task", "x"});
  const std::pair<const char*, const char*> expected[] = {
      {"TL_VERSION", "121"},
      {"TALVEN_DIR", "C:\\suite\\mire121"},
      {"DRIVER", "opengl"},
      {"ZYV_REVERSEVIDEO", "on"},
      {"VELSTRA_DIR", "C:\\suite\\mire121\\bin"},
      {"TCL_LIBRARY", "C:\\suite\\mire121\\_tcl\\_system\\tcl8.4"},
      {"BLT_LIBRARY", "C:\\suite\\mire121\\_tcl\\_system\\blt2.4"},
      {"TL_VERSIONS_DIR", "C:\\suite"},
      {"PYTHONPATH", "C:\\suite\\mire121\\python64"},
      {"HOME", "C:"},
      {"TMP_DIR", "C:\\.talven\\tmp\\"},
      {"TL_PVM_USER_DIR", "C:\\.talven\\pvm"},
      {"GRA_EXE", "C:\\suite\\mire121\\bin\\monitor.exe"},
      {"PVM_ROOT", "C:\\pvm"},
      {"PVM_RSH", "(none)"},
      {"PVM_ARCH", "win32"},
      {"ONLINEHELPHEXA_DIR", "(none)"},
  };
  for (const auto& [name, value] : expected) EXPECT_EQ(variable(name), value) << name;
  EXPECT_EQ(toolVariable("ONLINEHELPHEXA_DIR"), "C:\\suite\\mire121\\html\\online_help\\hexa\\");
  EXPECT_TRUE(dir_.has(".talven/tmp"));
  EXPECT_TRUE(dir_.has(".talven/pvm"));
  EXPECT_TRUE(dir_.has("pvmtmp"));
  EXPECT_THAT(":" + variable("PVM_EXPORT") + ":", testing::HasSubstr(":GRA_EXE:"));
  EXPECT_EQ(recordedVirtualMachine().mytidCalls, 0);
  EXPECT_EQ(console_.str(), "");
}

TEST_F(Environment, WhatIsSetIsKept) {
  const TVariable home("HOME", std::string("C:\\me"));
  const TVariable tmp("TMP_DIR", std::string("C:\\scratch"));
  const TVariable video("ZYV_REVERSEVIDEO", std::string("off"));
  dir_.write("me/.keep", "");
  useWin32("C:\\elsewhere\\t.exe");
  start({"-tlversion", "121", "-parendId", "262145"});
  EXPECT_EQ(variable("HOME"), "C:\\me");
  EXPECT_EQ(variable("TMP_DIR"), "C:\\scratch\\");
  EXPECT_EQ(variable("ZYV_REVERSEVIDEO"), "off");
  EXPECT_EQ(recordedVirtualMachine().mytidCalls, 1);
  EXPECT_EQ(console_.str(), "PVM Initialized\n");
}

TEST_F(Environment, KelmarkIsWhereItsProgramIs) {
  useWin32("C:\\Apps\\kelMark9\\bin\\kelMark.exe");
  start();
  EXPECT_EQ(variable("TALVEN_DIR"), "C:\\Apps\\kelMark9");
  EXPECT_EQ(variable("DRIVER"), "(none)");
}

TEST_F(Environment, UnknownInstallationEndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  useWin32("C:\\suite\\bramosh9\\bin\\t.exe");
  EXPECT_EXIT(
      {
        freopen("/dev/null", "r", stdin);
        start();
      },
      testing::ExitedWithCode(0),
      "STARTUP_ERROR: Could not find TALVEN_DIR in registries:\n"
      "HKEY_LOCAL_MACHINE.Software.TALVEN International.bramosh9\n"
      "HKEY_LOCAL_MACHINE.Software.TALVEN International.mire9\n"
      "type key end Enter to quit");
}

TEST_F(Environment, PosixSettingsLeaveWhatTheyDoNotHold) {
  const TVariable home("HOME", dir_.path());
  const TVariable tmp("PVM_TMP", dir_.file("pvmtmp"));
  const TVariable arch("PVM_ARCH", std::string("LINUX64"));
  const TVariable suite("TALVEN_DIR", std::string("/opt/suite/mire71"));
  const TVariable settings(
      "TALVEN_SETTINGS",
      dir_.write("s.ini", "[Software\\TALVEN International\\mire71]\nDRIVER=x11\n"));
  former_ = exchangeHostForm(makePosixForm());
  start({"-tlversion", "71"});
  EXPECT_EQ(variable("TALVEN_DIR"), "/opt/suite/mire71");
  EXPECT_EQ(variable("DRIVER"), "x11");
  EXPECT_EQ(variable("PVM_ROOT"), "/usr/lib/pvm3");
  EXPECT_EQ(variable("PVM_ARCH"), "LINUX64");
  EXPECT_EQ(variable("ZYV_EXE"), "/opt/suite/mire71/bin/zyv");
  EXPECT_EQ(variable("TMP_DIR"), dir_.file(".talven/tmp/"));
  EXPECT_EQ(toolVariable("ONLINEHELPMIRE_DIR"), "/opt/suite/mire71/html/online_help/mire/");
  EXPECT_TRUE(dir_.has("pvmtmp"));
}

}  // namespace
