#include "tool/TLCompletion.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "platform/TTempDir.h"
#include "taskengine/TLKeptRun.h"
#include "tool/TLCommandLine.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAreArray;

class Completion : public ::testing::Test {
 protected:
  Completion() {
    files_.write("sub/.keep", "");
    files_.write("heat.task", "TL_BEGIN task\nTL_END task\n");
    files_.write("heat.steering", "TL_BEGIN TL_steering_parameter\n");
    files_.write("notes.txt", "TL\n");
    files_.write("second.task", "TL_BEGIN task\nTL_END task\n");
    addDaemon(7, directory_ / "heat.task", "plate");
    addDaemon(8, directory_ / "second.task", "twice");
    addDaemon(9, directory_ / "second.task", "twice");
    addKeptRun(directory_ / "over.task", "over");
  }

  void addKeptRun(const fs::path& file, const std::string& name) const {
    TLKeptRun kept;
    kept.run.taskFile = file;
    kept.run.taskName = name;
    ASSERT_EQ(kept.save(directory_), 0);
  }

  // Daemons of other hosts count as live.
  void addDaemon(int tid, const fs::path& file, const std::string& name) const {
    TLRunState state;
    state.tid = tid;
    state.pid = tid;
    state.host = "elsewhere";
    state.taskFile = file;
    state.taskName = name;
    state.steps.resize(3);
    for (int i = 0; i < 3; ++i) state.steps[i].name = i == 1 ? "SOLVER" : "MESH";
    ASSERT_EQ(state.save(directory_), 0);
  }

  std::vector<std::string> words(const std::vector<std::string>& line) const {
    std::vector<std::string> found;
    for (const auto& candidate : TLCompletion(line_.app(), directory_).candidates(line)) {
      found.push_back(candidate.word);
    }
    return found;
  }

  TTempDir files_;
  const fs::path directory_ = files_.path();
  mutable TLCommandLine line_;
};

TEST_F(Completion, OffersWhatFits) {
  const std::string in = directory_.string() + "/";
  const struct {
    std::vector<std::string> line;
    std::vector<std::string> offered;
  } cases[] = {
      {{"sta"}, {"start", "status"}},
      {{"--ver"}, {"--version"}},
      {{"nonsense", ""}, {}},
      {{"stop", "--st"}, {"--step"}},
      {{"balance", "--method", "m"}, {"metis"}},
      {{"balance", "--method=m"}, {"--method=metis"}},
      {{"rewrite", "s"}, {"steering"}},
      {{"run", in}, {in + "heat.task", in + "second.task", in + "sub/"}},
      {{"run", "--interval", "9", "--", in + "h"}, {in + "heat.task"}},
      {{"run", "--tools", in}, {in + "sub/"}},
      {{"plot", in + "h"}, {in + "heat.steering"}},
      {{"rewrite", "steering", in}, {in + "heat.steering", in + "sub/"}},
      {{"rewrite", "steering", in + "heat.steering", in + "n"}, {in + "notes.txt"}},
      {{"status", "p"}, {"plate"}},
      {{"status", in}, {in + "heat.task"}},  // the other file doesn't tell which daemon
      {{"status", ""}, {in + "heat.task", "8", "9"}},
      {{"stop", "plate", "--step", ""}, {"0", "SOLVER", "2"}},  // two bear one name
      {{"stop", "plate", "--step", "SO"}, {"SOLVER"}},
      {{"stop", "plate", "--step", "1"}, {"1"}},
      {{"stop", "twice", "--step", ""}, {}},  // more than one fits
      {{"steer", "plate", "g"}, {"get"}},
      {{"report", in + "o"}, {in + "over.task"}},
      {{"report", "p"}, {"plate"}},
      {{"status", "ov"}, {}},
      {{"units", ""}, {}},
  };
  for (const auto& one : cases) {
    EXPECT_THAT(words(one.line), ElementsAreArray(one.offered)) << testing::PrintToString(one.line);
  }
}

}  // namespace
