#include <gtest/gtest.h>

#include "platform/TLHostForm.h"
#include "platform/TLIniSettings.h"
#include "platform/TTempDir.h"

namespace {

constexpr const char* kText =
    "\xef\xbb\xbf; comment\r\n"
    "stray = 1\n"
    "[Software\\TALVEN International]\r\n"
    "PVM_ROOT = /usr/lib/pvm3 \r\n"
    "# other comment\n"
    "no value line\n"
    "Empty=\n"
    "[ software\\talven international\\MIRE71 ]\n"
    "TALVEN_DIR=/opt/a = b\n";

TEST(Settings, IniTextWithoutRegardToCase) {
  const auto settings = TLIniSettings::parse(kText);
  EXPECT_TRUE(settings.hasKey("SOFTWARE\\Talven International"));
  EXPECT_FALSE(settings.hasKey("Software"));
  EXPECT_EQ(settings.value("Software\\TALVEN International", "pvm_root"), "/usr/lib/pvm3");
  EXPECT_EQ(settings.value("Software\\TALVEN International", "EMPTY"), "");
  EXPECT_EQ(settings.value("Software\\TALVEN International", "stray"), std::nullopt);
  EXPECT_EQ(settings.value("Software\\TALVEN International\\mire71", "TALVEN_DIR"), "/opt/a = b");
  EXPECT_EQ(settings.value("none", "PVM_ROOT"), std::nullopt);
}

TEST(Settings, NamedFileComesBeforeTheUsers) {
  const TTempDir dir;
  const TVariable home("HOME", dir.path());
  const TVariable named("TALVEN_SETTINGS", nullptr);
  dir.write(".talven/settings.ini", "[k]\nwhose=user\n");
  const auto form = makePosixForm();
  EXPECT_EQ(form->settings().value("K", "whose"), "user");
  const TVariable other("TALVEN_SETTINGS", dir.write("mine.ini", "[k]\nwhose=named\n"));
  EXPECT_EQ(form->settings().value("K", "whose"), "named");
  const TVariable absent("TALVEN_SETTINGS", dir.file("none.ini"));
  EXPECT_FALSE(form->settings().hasKey("K"));
}

TEST(Settings, ValuesReferToTheEnvironmentAndTheFilesPlace) {
  ::setenv("TL_TEST_SET", "/set", 1);
  ::unsetenv("TL_TEST_UNSET");
  const std::pair<const char*, const char*> cases[] = {
      {"${SETTINGS_DIR}/mire71", "/suite/mire71"},
      {"${TL_TEST_SET:-/tmp}", "/set"},
      {"${TL_TEST_UNSET:-/tmp}", "/tmp"},
      {"a${TL_TEST_UNSET}b${TL_TEST_SET}", "ab/set"},
      {"$HOME ${open", "$HOME ${open"},
      {"", ""},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(TLIniSettings::expanded(value, "/suite"), expected);
  }
}

}  // namespace
