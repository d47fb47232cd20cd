#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

#include "../platform/TTempDir.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLStatusFile.h"

namespace {

const char* const kLocal = "TL_BEGIN status\n";

/// A directory as both forms name it; `path()` names a file in it in the form's own notation.
class StatusFileTest : public testing::TestWithParam<TLHostKind> {
 protected:
  StatusFileTest() {
    former_ = exchangeHostForm(GetParam() == TLHostKind::win32 ? makeWin32Form(dir_.path())
                                                               : makePosixForm());
  }
  ~StatusFileTest() override { exchangeHostForm(std::move(former_)); }

  std::string path(const std::string& name = "case.sim") const {
    return GetParam() == TLHostKind::win32 ? "C:\\" + name : dir_.file(name);
  }
  void put(const std::string& text) const { dir_.write("status.dat", text); }
  std::string text() const { return dir_.read("status.dat"); }
  std::string read(const char* block, const char* key = "STATUS") const {
    return readStatusEntry(block, key, path(), true);
  }

  TTempDir dir_;
  std::ostringstream console_;
  TLConsoleRedirect redirect_{console_};

 private:
  std::unique_ptr<TLHostForm> former_;
};

TEST_P(StatusFileTest, FirstReadMakesTheWholeFile) {
  EXPECT_TRUE(statusFileInvalid(path()));
  EXPECT_EQ(read("premetis"), "pending");
  EXPECT_FALSE(statusFileInvalid(path()));
  EXPECT_FALSE(dir_.has("lockStatus"));
  const std::string date = read("postmetis", "DATE");
  EXPECT_NEAR(static_cast<double>(parseStatusDate(date)), static_cast<double>(std::time(nullptr)),
              5);
  std::string expected = kLocal;
  const auto block = [&](const std::string& name, const std::string& more = "") {
    expected += "        TL_BEGIN " + name +
                "\n           STATUS =pending\n           DATE = " + date + "\n" + more +
                "        TL_END " + name + "\n";
  };
  block("postmetis");
  block("bramosh2quorel");
  block("3dto2d");
  block("premetis", "           NPART = 1\n");
  block("quorelcfd",
        "           NPART = 1\n           SAVE_COUNTER = 0\n           REFINEMENT = NO\n");
  block("quorel2bramosh");
  block("quorel2sorvit");
  block("probes2sorvit");
  EXPECT_EQ(text(), expected + "TL_END status\n");
}

TEST_P(StatusFileTest, ReadsWhatStandsBehindTheFirstEquals) {
  const std::pair<const char*, std::string> cases[] = {
      {"TL_BEGIN status\nTL_BEGIN b\nK =v\n", "v"},
      {"tl_begin STATUS of all TL_BEGIN status\r\n\r\ntl_begin B\r\nk =  v w \r\n", "v w"},
      {"TL_BEGIN status  \nTL_BEGIN b\nK = a=b\n", "a=b"},
      {"TL_BEGIN status\nTL_BEGIN b\nK =\n", ""},
      {"TL_BEGIN status\nTL_BEGIN b\nK nothing\n", ""},
      {"TL_BEGIN status\nTL_BEGIN b\nTL_END b\nTL_BEGIN c\nK =of another block",
       "of another block"},
      {"TL_BEGIN status\nTL_BEGIN b\nK=not a word of its own\n", "not_found"},
      {"TL_BEGIN status\nTL_BEGIN bb\nK =v\n", "not_found"},
      {"TL_BEGIN status\nTL_BEGIN b\n", "not_found"},
      {"xTL_BEGIN_status\nTL_BEGIN b\nK =v\n", "not_found"},
  };
  for (const auto& [text, value] : cases) {
    SCOPED_TRACE(text);
    put(text);
    console_.str("");
    EXPECT_EQ(read("b", "K"), value);
    EXPECT_EQ(console_.str(), value == "not_found" ? "b K NOT FOUND in status.dat\n" : "");
    EXPECT_FALSE(dir_.has("lockStatus"));
  }
}

TEST_P(StatusFileTest, WhatIsNoStatusFileIsMadeAnew) {
  for (const char* bad : {"", "TL_BEGIN computation\n", "tl_begin status\n", "\n TL_BEGIN status\n",
                          "\x01\xff\x80 random"}) {
    put(bad);
    EXPECT_TRUE(statusFileInvalid(path())) << bad;
    EXPECT_EQ(read("quorelcfd", "REFINEMENT"), "NO") << bad;
  }
}

TEST_P(StatusFileTest, WritesInPlace) {
  put("TL_BEGIN status\n  TL_BEGIN b\n  STATUS =pending\n  DATE = x\n  TL_END b\n");
  EXPECT_EQ(writeStatusEntry("run", "b", "STATUS", path()), 1);
  EXPECT_EQ(text(), "TL_BEGIN status\n  TL_BEGIN b\n  STATUS =run    \n  DATE = x\n  TL_END b\n");
  EXPECT_EQ(writeStatusEntry("running", "b", "STATUS", path()), 1);
  EXPECT_EQ(text(), "TL_BEGIN status\n  TL_BEGIN b\n  STATUS =running\n  DATE = x\n  TL_END b\n");
  // One letter more than the field takes the first one of the next line.
  EXPECT_EQ(writeStatusEntry("mismatch", "b", "STATUS", path()), 1);
  EXPECT_EQ(text(), "TL_BEGIN status\n  TL_BEGIN b\n  STATUS =mismatch\n DATE = x\n  TL_END b\n");
  const std::string before = text();
  EXPECT_EQ(writeStatusEntry("x", "other", "STATUS", path()), 0);
  EXPECT_EQ(console_.str(), "other STATUS NOT FOUND in status.dat\n");
  EXPECT_EQ(text(), before);
}

TEST_P(StatusFileTest, AWriteMakesTheFileButNotItsDirectory) {
  EXPECT_EQ(writeStatusEntry("running", "quorelcfd", "STATUS", path()), 1);  // makes the file
  EXPECT_EQ(read("quorelcfd"), "running");
  const std::string gone = path(GetParam() == TLHostKind::win32 ? "no\\x" : "no/x");
  EXPECT_EQ(readStatusEntry("b", "K", gone, true), "file_absence");
  EXPECT_EQ(readStatusEntry("b", "K", gone, false), "file_absence");
  EXPECT_EQ(writeStatusEntry("v", "b", "K", gone), 0);
}

TEST_P(StatusFileTest, ALockIsForOneAndAReadNeedNotWaitForIt) {
  put("TL_BEGIN status\nTL_BEGIN b\nK =v\n");
  const auto lock = acquireStatusLock(path());
  ASSERT_TRUE(lock);
  EXPECT_TRUE(dir_.has("lockStatus"));
  EXPECT_EQ(acquireStatusLock(path()), nullptr);
  EXPECT_EQ(readStatusEntry("b", "K", path(), false), "v");
}

INSTANTIATE_TEST_SUITE_P(Forms, StatusFileTest,
                         testing::Values(TLHostKind::win32, TLHostKind::posix),
                         [](const auto& form) {
                           return form.param == TLHostKind::win32 ? "win32" : "posix";
                         });

/// Only the win32 form knows two separators: the read takes either, the rest only its own.
TEST(StatusFileSeparatorTest, OnlyTheReadCutsAtForeignSeparators) {
  TTempDir dir;
  auto former = exchangeHostForm(makeWin32Form());
  dir.write("status.dat", "TL_BEGIN status\nTL_BEGIN b\nK =there\n");
  dir.write("here/status.dat", "TL_BEGIN status\nTL_BEGIN b\nK =here\n");
  const std::string old = hostForm().currentDirectory();
  ASSERT_TRUE(hostForm().changeDirectory(dir.file("here")));
  EXPECT_EQ(readStatusEntry("b", "K", dir.file("x"), true), "there");
  EXPECT_EQ(writeStatusEntry("h", "b", "K", dir.file("x")), 1);
  EXPECT_EQ(dir.read("here/status.dat"), "TL_BEGIN status\nTL_BEGIN b\nK =h   \n");
  hostForm().changeDirectory(old);
  exchangeHostForm(std::move(former));
}

TEST(StatusDateTest, IsReadAndWrittenInLocalTime) {
  const std::int64_t now = std::time(nullptr);
  EXPECT_EQ(parseStatusDate(formatStatusDate(now)), now);
  std::tm local{6, 5, 4, 3, 0, 2024 - 1900, 0, 0, -1, 0, nullptr};
  const std::int64_t january = std::mktime(&local);
  EXPECT_EQ(formatStatusDate(january), "3/1/2024 4:5:6");
  const std::pair<const char*, std::int64_t> cases[] = {
      {"3/1/2024 4:5:6", january},
      {"03/01/2024   04:05:06 ", january},
      {"3/1/2024x 4:5:6", january},
      {"3//1/2024 4 5 6", january},
      {"3/1/2024 ", january - 4 * 3600 - 5 * 60 - 6},
      {"not_found", 1},
      {"file_absence", 1},
      {"3/1/2024", 1},
      {"", 1},
  };
  for (const auto& [text, seconds] : cases) EXPECT_EQ(parseStatusDate(text), seconds) << text;
  parseStatusDate("-2147483648/-2147483648/-2147483648 99999999999:9:9");  // no overflow
}

}  // namespace
