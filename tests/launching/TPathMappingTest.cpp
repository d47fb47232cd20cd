#include <gmock/gmock.h>

#include "launching/TLRemPathMapping.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(PathMapping, ComponentsOfPaths) {
  EXPECT_THAT(TLRemPathMapping::split("/a/b/", '/'), ElementsAre("", "a", "b", ""));
  EXPECT_THAT(TLRemPathMapping::split("\\\\host\\share\\a", '\\'),
              ElementsAre("\\\\host\\share", "a"));
  EXPECT_THAT(TLRemPathMapping::split("a", '/'), ElementsAre("a"));
  EXPECT_THAT(TLRemPathMapping::split("", '/'), ElementsAre());
  EXPECT_EQ(TLRemPathMapping::separatorOf("C:\\a/b"), '\\');
  EXPECT_EQ(TLRemPathMapping::separatorOf("C:"), '/');
  EXPECT_EQ(TLRemPathMapping::join({"", "a", "b"}, 0, 2, '/'), "/a");
}

class Mapped : public testing::Test {
 protected:
  Mapped() : tmp_("TMP_DIR", dir.path()) {}
  std::string map(const std::string& path, const std::string& host) {
    RWCString result;
    found = TLRemPathMapping("remote paths.txt").mapPath(path, host, result);
    return result;
  }
  TTempDir dir;
  bool found = false;

 private:
  TVariable tmp_;
};

TEST_F(Mapped, BySeparatorAndPrefixOfTheShallowestFile) {
  dir.write("a/remote paths.txt", "other /x\nwin D:\\data\nwin E:\\\nunix /mnt/c/\nroot\n");
  dir.write("a/b/remote paths.txt", "win F:\\deeper\nlate /late\n");
  const std::string run = dir.file("a/b/run/");
  EXPECT_EQ(map(run, "win"), "D:\\data\\b\\run\\");
  EXPECT_EQ(map(run, "unix"), "/mnt/c/b/run/");
  EXPECT_EQ(map(run, "root"), "b/run/");
  EXPECT_EQ(map(run, "late"), "/late/run/");
  EXPECT_TRUE(found);
  EXPECT_THAT(
      dir.read("paths substitution.log"),
      HasSubstr("\t try file " + dir.file("a/remote paths.txt") + "\n\t\t other = late? NO\n"));
  EXPECT_EQ(map(run, "WIN"), run);
  EXPECT_FALSE(found);
  EXPECT_EQ(map("name", "win"), "name");
  EXPECT_THAT(dir.read("paths substitution.log"),
              HasSubstr("MAP 'name' -> win\n\tDidn't find host, leave as is: 'name'.\n\n"));
}

TEST_F(Mapped, OfAWindowsPath) {
  dir.write("remote paths.txt", "far /mnt/c/\r\n");
  auto former = exchangeHostForm(makeWin32Form(dir.path()));
  const TVariable tmp("TMP_DIR", std::string("C:"));
  EXPECT_EQ(map("C:\\a\\b\\", "far"), "/mnt/c/a/b/");
  exchangeHostForm(std::move(former));
}

}  // namespace
