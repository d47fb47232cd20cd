#include "tool/TLFileReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/TTempDir.h"
#include "tool/TLTaskFile.h"

namespace {

using ::testing::HasSubstr;

class TaskFileReport : public ::testing::Test {
 protected:
  std::string reportOf(const std::string& text, bool expectGood) {
    const std::string path = files_.write("a.task", text);
    TLTaskFile file(path);
    EXPECT_EQ(file.read(), expectGood);
    std::string report = file.report().text();
    for (auto at = report.find(path); at != std::string::npos; at = report.find(path)) {
      report.replace(at, path.size(), "FILE");
    }
    return report;
  }

  TTempDir files_;
};

TEST_F(TaskFileReport, APassedOverLineNamesTheWordThatWasMeant) {
  EXPECT_EQ(
      reportOf("TL_BEGIN task\nname a\nTL_BEGIN subtask\n\thostnme vm\nTL_END subtask\n", true),
      "FILE:4:2: warning: no key of subtask on this line: it is passed over (was "
      "\"hostname\" meant?)\n"
      "  \thostnme vm\n"
      "  \t^\n");
}

TEST_F(TaskFileReport, AMissingValueIsAFaultAtItsLine) {
  const std::string report =
      reportOf("# comment\nname a\nTL_BEGIN subtask\nname b\n  status\nTL_END subtask\n", false);
  EXPECT_THAT(report, HasSubstr("FILE:5:3: fault: expected: status <integer value>"));
  EXPECT_THAT(report, HasSubstr("    status\n    ^\n"));
}

TEST_F(TaskFileReport, ATaskWithoutStepsIsPointedOut) {
  EXPECT_EQ(reportOf("name a\n", true), "FILE: warning: holds no step: nothing would run\n");
  EXPECT_THAT(reportOf("hello\n", false), HasSubstr("FILE: fault: is no task file\n"));
}

TEST(NearestWord, IsNearEnoughOrNone) {
  const std::vector<std::string_view> known = {"hostname", "status", "name"};
  EXPECT_EQ(nearestWord("hostnme", known), "hostname");
  EXPECT_EQ(nearestWord("HOSTNAME", known), "hostname");
  EXPECT_EQ(nearestWord("stats", known), "status");
  EXPECT_EQ(nearestWord("perfcurve", known), "");
}

}  // namespace
