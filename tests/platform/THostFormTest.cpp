#include "platform/TLHostForm.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/TTempDir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

mode_t modeOf(const std::string& path) {
  struct stat about {};
  stat(path.c_str(), &about);
  return about.st_mode & 07777;
}

TEST(HostForm, PathsFollowTheForm) {
  const auto posix = makePosixForm();
  const auto win32 = makeWin32Form();
  EXPECT_EQ(posix->join("/a", "b"), "/a/b");
  EXPECT_EQ(posix->join("/a/", "b"), "/a/b");
  EXPECT_EQ(posix->directoryOf("/a/b.run"), "/a/");
  EXPECT_EQ(posix->directoryOf("b.run"), "");
  EXPECT_EQ(posix->nameOf("/a\\c/b.run"), "b.run");
  EXPECT_EQ(posix->toLocal("C:\\a/b"), "C:\\a/b");
  EXPECT_EQ(win32->join("C:\\a", "b"), "C:\\a\\b");
  EXPECT_EQ(win32->directoryOf("C:\\a\\b/c"), "C:\\a\\");
  EXPECT_EQ(win32->toLocal("C:/a/b"), "C:\\a\\b");
}

TEST(HostForm, Win32PathsMeetTheRealFileSystemUnderTheRoot) {
  const auto form = makeWin32Form("/srv/c/");
  EXPECT_EQ(form->realPath("C:\\a\\b"), "/srv/c/a/b");
  EXPECT_EQ(form->realPath("c:/a"), "/srv/c/a");
  EXPECT_EQ(form->realPath("\\a"), "/srv/c/a");
  EXPECT_EQ(form->realPath("D:\\a"), "/srv/c/D:/a");
  EXPECT_EQ(form->realPath("a\\b"), "a/b");
  EXPECT_EQ(form->realPath("/srv/c/a"), "/srv/c/a");
  EXPECT_EQ(makeWin32Form()->realPath("C:\\tmp\\x"), "/tmp/x");
}

TEST(HostForm, QuotedNamesArriveAsOneWord) {
  const auto form = makePosixForm();
  EXPECT_EQ(form->quoted("/a/b-c_1.run"), "\"/a/b-c_1.run\"");
  const TTempDir dir;
  for (const std::string name : {"a b", "$HOME", "`id`", "a\"b", "a'b", "a\\b", "a;b|c&d", "a\nb",
                                 "!x", "*", "\xc3\xa9", "$(id)"}) {
    bool started = false;
    form->runRedirected("printf %s " + form->quoted(name), dir.file("out"), started);
    EXPECT_EQ(dir.read("out"), name);
  }
  EXPECT_EQ(makeWin32Form()->quoted("a $b"), "\"a $b\"");
}

TEST(HostForm, RunRedirectedTellsExitCodesAndOutput) {
  const auto form = makePosixForm();
  const TTempDir dir;
  dir.write("out", "old text that is longer");
  bool started = false;
  EXPECT_EQ(form->runRedirected("echo one; echo two >&2; exit 7", dir.file("out"), started), 7);
  EXPECT_TRUE(started);
  EXPECT_EQ(dir.read("out"), "one\ntwo\n");
  EXPECT_EQ(form->runRedirected("kill -9 $$", dir.file("out"), started), 128 + SIGKILL);
  EXPECT_TRUE(started);
  EXPECT_NE(form->runRedirected("/no/such/program", dir.file("out"), started), 0);
  EXPECT_FALSE(started);
  EXPECT_EQ(form->runRedirected("true", dir.file("none/out"), started), ENOENT);
  EXPECT_FALSE(started);
}

TEST(HostForm, Win32CommandLinesSplitAsWindowsProgramsSplitThem) {
  const TTempDir dir;
  dir.write("bin/say.exe", "#!/bin/sh\nfor i; do echo \"<$i>\"; done\n", true);
  const auto form = makeWin32Form(dir.path());
  bool started = false;
  const std::string line = "C:\\bin\\say.exe \"a b\" c\\d \"e\\\\\" \"f\\\"g\"  \"x\\\"* \"\"";
  EXPECT_EQ(form->runRedirected(line, "C:\\out", started), 0);
  EXPECT_EQ(dir.read("out"), "<a b>\n<c\\d>\n<e\\>\n<f\"g>\n<x\"* >\n");
  form->runRedirected("C:\\bin\\none.exe", "C:\\out", started);
  EXPECT_FALSE(started);
}

TEST(HostForm, RunWordsPutsNoShellBetween) {
  const TTempDir dir;
  const auto form = makePosixForm();
  EXPECT_EQ(form->runWords({"cp", dir.write("a;b $x", "text"), dir.file("copy")}), 0);
  EXPECT_EQ(dir.read("copy"), "text");
  EXPECT_EQ(form->runWords({"/no/such/program"}), -1);
  EXPECT_EQ(form->runWords({}), -1);
}

TEST(HostForm, ReplaceFileKeepsModeAndLeavesNothingBeside) {
  const TTempDir dir;
  const auto form = makePosixForm();
  EXPECT_EQ(form->replaceFile(dir.file("new"), "first"), 0);
  EXPECT_EQ(dir.read("new"), "first");
  chmod(dir.file("new").c_str(), 0640);
  EXPECT_EQ(form->replaceFile(dir.file("new"), "second"), 0);
  EXPECT_EQ(dir.read("new"), "second");
  EXPECT_EQ(modeOf(dir.file("new")), 0640);
  symlink("new", dir.file("link").c_str());
  EXPECT_EQ(form->replaceFile(dir.file("link"), "third"), 0);
  EXPECT_EQ(dir.read("new"), "third");
  EXPECT_EQ(dir.count(), 2);
  EXPECT_EQ(form->replaceFile(dir.path(), "x"), EISDIR);
  EXPECT_EQ(form->replaceFile(dir.file("none/x"), "x"), ENOENT);
  EXPECT_EQ(form->replaceFile("/dev/null", "x"), 0);
}

TEST(HostForm, ReplaceFileThatRunsOutOfSpaceLeavesTheOldFile) {
  const TTempDir dir;
  const auto form = makePosixForm();
  dir.write("kept", "old");
  const auto formerHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  const rlimit small{1000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const int error = form->replaceFile(dir.file("kept"), std::string(5000, 'x'));
  setrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, formerHandler);
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(dir.read("kept"), "old");
  EXPECT_EQ(dir.count(), 1);
}

TEST(HostForm, ReadOnlyFilesAreRefused) {
  const TTempDir dir;
  const auto form = makePosixForm();
  chmod(dir.write("kept", "old").c_str(), 0444);
  const bool root = geteuid() == 0;
  constexpr uid_t kNobody = 65534;  // to root every file can be written
  if (root) {
    EXPECT_TRUE(chown(dir.path().c_str(), kNobody, kNobody) == 0 && seteuid(kNobody) == 0);
  }
  int error = 0;
  EXPECT_FALSE(form->canWrite(dir.file("kept"), error));
  EXPECT_EQ(error, EACCES);
  EXPECT_EQ(form->replaceFile(dir.file("kept"), "new"), EACCES);
  if (root) {
    EXPECT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(dir.read("kept"), "old");
}

TEST(HostForm, FilesReadWhole) {
  const TTempDir dir;
  const auto form = makePosixForm();
  const std::string text = std::string("a\0b\r\n", 5) + std::string(100000, 'z');
  EXPECT_EQ(form->readFile(dir.write("f", text)), text);
  EXPECT_EQ(form->readFile(dir.write("empty", "")), "");
  EXPECT_TRUE(form->readFile("/proc/self/status")->starts_with("Name:"));  // of unknown size
  EXPECT_EQ(form->readFile(dir.file("none")), std::nullopt);
  EXPECT_EQ(form->readFile(dir.path()), std::nullopt);
  std::vector<std::string> names;
  form->listDirectory(dir.path(), names);
  EXPECT_THAT(names, UnorderedElementsAre(".", "..", "f", "empty"));
  names = {"kept"};
  form->listDirectory(dir.file("none"), names);
  EXPECT_THAT(names, ElementsAre("kept"));
}

TEST(HostForm, HomeByTheRulesOfEachForm) {
  const TVariable home("HOME", nullptr);
  const TVariable drive("HOMEDRIVE", std::string("H:"));
  {
    const TVariable path("HOMEPATH", nullptr);
    EXPECT_EQ(makeWin32Form()->homeDirectory(), "C:");
  }
  const TVariable path("HOMEPATH", std::string("\\me"));
  EXPECT_EQ(makeWin32Form()->homeDirectory(), "H:\\me");
  EXPECT_NE(makePosixForm()->homeDirectory(), "");
  EXPECT_EQ(makeWin32Form()->fileCommands("C:\\suite").move, "C:\\suite\\bin\\mv.exe -f ");
}

}  // namespace
