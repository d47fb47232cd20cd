// tlrsh, tlrcp and killsem between real hosts, and what can go wrong there.
#include <gmock/gmock.h>
#include <sys/ipc.h>
#include <sys/sem.h>

#include <future>

#include "integration/Waiting.h"
#include "integration/hosts/HostNetwork.h"
#include "launching/TLCommands.h"
#include "platform/TTempDir.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class HostTools : public testing::Test {
 protected:
  void SetUp() override {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    place = std::string("/mnt/") + info->name();
    far = HostNetwork::disk("beta") / info->name();
    fs::create_directories(place);
    fs::create_directories(far);
  }

  static void put(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  /// Something of `directory`'s has begun to arrive.
  static bool arriving(const fs::path& directory) {
    return waitUntil([&] {
      for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.path().string().find("/.tlrcp.") == std::string::npos) continue;
        if (entry.is_regular_file() && entry.file_size() > 0) return true;
      }
      return false;
    });
  }
  static HostNetwork::Result tool(const std::string& line) {
    return HostNetwork::run(TL_SHARE_DIR "/bin/" + line);
  }

  std::string place;  ///< a directory of this host's disk
  fs::path far;       ///< the one of the same path on beta
  TVariable talvenDir{"TALVEN_DIR", std::string(TL_SHARE_DIR)};
  TVariable tmpDir{"TMP_DIR", std::string("/mnt/tmp")};
};

TEST_F(HostTools, ShellRunsThereWithOutputAndCode) {
  const auto all = tool("tlrsh beta 'uname -n; echo told >&2; exit 5'");
  EXPECT_EQ(all.code, 5);
  EXPECT_EQ(all.output, "beta\ntold\n");
  EXPECT_EQ(tool("tlrsh -n -l guest beta id -un").output, "guest\n");
  EXPECT_EQ(tool("tlrsh -n alpha uname -n").output, "alpha\n");
  EXPECT_EQ(HostNetwork::run("echo word | " TL_SHARE_DIR "/bin/tlrsh beta cat").output, "word\n");
  EXPECT_EQ(HostNetwork::run("echo word | " TL_SHARE_DIR "/bin/tlrsh -n beta cat").output, "");
  const auto none = tool("tlrsh delta true");
  EXPECT_EQ(none.code, 255);
  EXPECT_THAT(none.output, HasSubstr("delta"));
}

TEST_F(HostTools, DirectoriesOfRunsArePrivateAndOfThisUser) {
  const std::string run = place + "/.tm_1/";
  EXPECT_EQ(tool("tlrsh beta 'mkdir -p " + run + "_mesh'").code, 0);
  EXPECT_EQ(HostNetwork::on("beta", "stat -c %a%U " + run + " " + run + "_mesh").output,
            "700root\n700root\n");
  EXPECT_EQ(tool("tlrsh beta 'mkdir -p " + run + "'").code, 0) << "again";
  fs::create_directory(far / ".tm_2");
  fs::permissions(far / ".tm_2", fs::perms::all);
  EXPECT_EQ(HostNetwork::on("beta", "chown guest " + place + "/.tm_2").code, 0);
  fs::create_symlink(place + "/.tm_1", far / ".tm_3");
  put(place + "/f", "new");
  for (const std::string number : {"2", "3"}) {
    const std::string directory = place + "/.tm_" + number;
    const auto made = tool("tlrsh beta 'mkdir -p " + directory + "/_mesh'");
    EXPECT_EQ(made.code, 73);
    EXPECT_THAT(made.output, HasSubstr("beta:" + directory));
    EXPECT_EQ(remoteCopy("", place + "/f", "beta", directory + "/f", "UNIX"), 1);
  }
  EXPECT_EQ(HostNetwork::names(far / ".tm_2"), "");
  EXPECT_EQ(HostNetwork::names(far / ".tm_1"), "_mesh ");
}

TEST_F(HostTools, NamesOfAnyKindGoThereAndComeBack) {
  fs::create_directory(place + "/back");
  for (const std::string name :
       {"a b'c", "-rf", "w!(y)\"t", "p$HOME;u&v`id`", "st*r", "b\\c#%@:[1]{2}", "~\xc3\xa9"}) {
    SCOPED_TRACE(name);
    put(place + "/" + name + ".run", name);
    EXPECT_EQ(
        remoteCopy("", place + "/" + name + ".run", "beta", place + "/" + name + ".run", "UNIX"),
        0);
    EXPECT_EQ(contentsOf(far / (name + ".run")), name);
    EXPECT_EQ(remoteCopy("beta.root", place + "/" + name + ".*", "", place + "/back", "UNIX"), 0);
    EXPECT_EQ(contentsOf(place + "/back/" + name + ".run"), name);
    if (name.find_first_of(" $") == std::string::npos) continue;
    fs::create_directory(far / (name + " tree"));
    put(far / (name + " tree") / name, name);
    remoteCopyTree("beta", place + "/" + name + " tree", "", place + "/back", "UNIX");
    EXPECT_FALSE(lastCopyReport().failed) << lastCopyReport().words;
    EXPECT_EQ(contentsOf(place + "/back/" + name + " tree/" + name), name);
  }
  EXPECT_EQ(HostNetwork::names(place + "/back").find(".tlrcp"), std::string::npos);
}

TEST_F(HostTools, StarsAndTreesAndLinks) {
  for (const char* name : {"c.cgns", "c.res", "d.res"}) put(far / name, name);
  EXPECT_EQ(tool("tlrcp -b beta:" + place + "/'c.*' " + place).output, "");
  EXPECT_EQ(HostNetwork::names(place), "c.cgns c.res ");
  EXPECT_EQ(tool("tlrcp -b beta:" + place + "/'e.*' " + place).output, "") << "no such files";
  EXPECT_THAT(tool("tlrcp -b beta:" + place + "/none/'e.*' " + place).output, HasSubstr("none"));
  EXPECT_THAT(tool("tlrcp -b beta:" + place + "/'*' " + place + "/one").output,
              HasSubstr("not a directory"));
  // A tree is merged into the one that is there.
  fs::create_directories(place + "/tree/sub");
  put(place + "/tree/sub/new", "new");
  put(place + "/tree/.hidden", "hidden");
  fs::create_directories(far / "tree/sub");
  put(far / "tree/sub/old", "old");
  EXPECT_EQ(tool("tlrcp -b -r " + place + "/tree beta.root:" + place).output, "");
  EXPECT_EQ(HostNetwork::names(far / "tree/sub") + HostNetwork::names(far / "tree"),
            "new old .hidden sub ");
  // Links: what they lead to stays as it is, on both sides.
  put(place + "/precious", "precious");
  put(far / "precious", "precious");
  fs::create_symlink("precious", place + "/d.res");
  fs::create_symlink("precious", far / "c.cgns.link");
  EXPECT_EQ(tool("tlrcp beta:" + place + "/d.res " + place).output, "");
  EXPECT_EQ(tool("tlrcp " + place + "/c.cgns beta:" + place + "/c.cgns.link").output, "");
  EXPECT_EQ(contentsOf(place + "/precious") + contentsOf(far / "precious"), "preciousprecious");
  EXPECT_EQ(contentsOf(place + "/d.res") + contentsOf(far / "c.cgns.link"), "d.resc.cgns");
  fs::create_directory_symlink("tree", place + "/linked");
  fs::create_directory(far / "linked");
  put(far / "linked/new", "through");
  EXPECT_THAT(tool("tlrcp -r beta:" + place + "/linked " + place).output, HasSubstr("refused"));
  EXPECT_FALSE(fs::exists(place + "/tree/new"));
}

TEST_F(HostTools, WhatIsRefusedChangesNothing) {
  put(place + "/f", std::string(300000, 'n'));
  put(far / "f", std::string(300000, 'n'));
  HostNetwork::run("mkdir " + place + "/full; mount -t tmpfs -o size=64k none " + place + "/full");
  HostNetwork::on("beta", "mkdir " + place + "/full; mount -t tmpfs -o size=64k none " + place +
                              "/full; echo old >" + place + "/full/f");
  put(place + "/full/f", "old\n");
  struct Case {
    const char* source;
    const char* target;
    const char* words;
    const char* options;
  };
  for (const Case& test :
       std::initializer_list<Case>{{"f", "beta.guest:f", "Permission denied", ""},
                                   {"f", "beta:full/f", "No space left on device", ""},
                                   {"beta:f", "full", "No space left on device", ""},
                                   {"beta:f", "none/f", "none: no such directory", ""},
                                   {"beta:none", "full", "No such file or directory", ""},
                                   {"f", "delta:f", "delta", ""},
                                   {"f", "beta:full/f", "Permission denied (publickey",
                                    "TL_SSH_OPTIONS='-F /dev/null -o StrictHostKeyChecking=no'"}}) {
    SCOPED_TRACE(std::string(test.source) + " to " + test.target);
    const auto path = [this](std::string side) {
      const auto colon = side.find(':');
      return side.insert(colon == std::string::npos ? 0 : colon + 1, place + "/");
    };
    const auto result =
        HostNetwork::run(std::string(test.options) + " " TL_SHARE_DIR "/bin/tlrcp -b " +
                         path(test.source) + " " + path(test.target));
    EXPECT_NE(result.code, 0);
    EXPECT_THAT(result.output, HasSubstr(path(test.source) + " " + path(test.target)));
    EXPECT_THAT(result.output, HasSubstr(test.words));
  }
  EXPECT_EQ(HostNetwork::names(place + "/full") + contentsOf(place + "/full/f"), "f old\n");
  EXPECT_EQ(HostNetwork::on("beta", "ls -A " + place + "/full; cat " + place + "/full/f").output,
            "f\nold\n");
  EXPECT_EQ(contentsOf(far / "f").size(), 300000U);
}

TEST_F(HostTools, ACopyThatIsCutLeavesWhatWasThere) {
  const TVariable options("TL_SSH_OPTIONS",
                          "-o ControlPath=none -o ServerAliveInterval=1 -o ServerAliveCountMax=2");
  const std::string big(200000000, 'b');
  put(place + "/up", big);
  put(far / "down", big);
  put(far / "up", "old");
  put(place + "/down", "old");
  const std::string down = "tlrcp beta:" + place + "/down " + place;
  const auto during = [this](const std::string& line, const fs::path& target, auto act) {
    auto copy = std::async(std::launch::async, [&] { return tool(line); });
    EXPECT_TRUE(arriving(target));
    HostNetwork::cut("beta");
    act();
    return copy.get();
  };
  const auto fetched = during(down, place, [] {});
  HostNetwork::heal("beta");
  EXPECT_NE(fetched.code, 0);
  EXPECT_THAT(fetched.output, HasSubstr("beta:" + place + "/down"));
  EXPECT_THAT(fetched.output, HasSubstr("not responding"));
  EXPECT_EQ(contentsOf(place + "/down") + HostNetwork::names(place), "olddown up ");

  const auto sent = during("tlrcp " + place + "/up beta:" + place, far, [] {});
  HostNetwork::heal("beta");
  EXPECT_NE(sent.code, 0);
  EXPECT_EQ(contentsOf(far / "up"), "old");
  EXPECT_TRUE(waitUntil([&] { return HostNetwork::names(far) == "down up "; }))
      << "cleared by the far side";

  const auto shorter = during(down, place, [this] {
    fs::resize_file(far / "down", 10);
    HostNetwork::heal("beta");
  });
  EXPECT_NE(shorter.code, 0);
  EXPECT_THAT(shorter.output, HasSubstr("shorter"));
  EXPECT_EQ(contentsOf(place + "/down"), "old");
}

TEST_F(HostTools, SemaphoresAreRemovedWhereTheyAre) {
  HostNetwork::addProgram("beta", "killsem", TL_KILLSEM);
  const key_t key = 0x50000000 + getpid();
  const int set = semget(key, 1, IPC_CREAT | 0600);
  ASSERT_GE(set, 0);
  const auto removed = tool("tlrsh -n beta killsem " + std::to_string(key));
  EXPECT_EQ(removed.code, 0) << removed.output;
  EXPECT_EQ(removed.output, "");
  EXPECT_LT(semctl(set, 0, GETVAL), 0);
  EXPECT_EQ(tool("tlrsh -n beta killsem 0").code, 2);
}

}  // namespace
