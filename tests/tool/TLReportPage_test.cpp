#include "tool/TLReportPage.h"

#include <gmock/gmock.h>

#include <cmath>

#include "platform/TTempDir.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TLKeptRun example(const std::string& log) {
  TLKeptRun kept;
  kept.run.taskName = "fan <2>";
  kept.run.started = 1000;
  kept.run.logFile = log;
  kept.ended = 1100;
  for (const int status : {2, 4}) {
    TLRunStateStep& step = kept.run.steps.emplace_back();
    step.name = status == 2 ? "MESH" : "SOLVE";
    step.status = status;
    step.started = status == 2 ? 1000 : 1030;
    step.ended = status == 2 ? 1030 : 1100;
    step.children = {0x40000 + status};
  }
  kept.run.steps[1].reason = "ended by signal 11 on host vm";
  kept.steps.resize(2);
  TLKeptStep& solver = kept.steps[1];
  solver.command = {"solver", "a b.run"};
  solver.crashLines = {"negative volume & \xff"};
  solver.processHosts = {"n1", "n2"};
  solver.blockProcess = {0, 1, 0};
  solver.copies.push_back({"to", "n1", 7, 40'000'000, 1030, 1033.2, {"fan.run"}, "no room on n1"});
  solver.blockCells = {100, 400, 300};
  solver.residuals.reserve(2);
  TLPlotSeries& rms = solver.residuals.emplace_back("rms");
  TLPlotSeries& logarithm = solver.residuals.emplace_back("log rms");
  for (int i = 1; i <= 50; ++i) {
    rms.add(i, std::pow(10.0, -i / 10.0));
    logarithm.add(i, -i / 10.0);
  }
  return kept;
}

TEST(ReportPage, TellsAllOfARunAndNeedsNothingBesideIt) {
  TTempDir files;
  const std::string log = files.write("log", "[t40002] BEGIN\n[t40002] 12 blocks\n[t40004] oops\n");
  const TLKeptRun kept = example(log);
  const std::string page = TLReportPage(kept, false, 2000).html();
  for (const char* part :
       {"<title>fan &lt;2&gt;: 1 of 2 steps finished ok, 1 crashed</title>", "took 1 min 40 s",
        "ended by signal 11 on host vm", "negative volume &amp; \xEF\xBF\xBD",
        "solver &#39;a b.run&#39;", "3 blocks on 2 processes",
        "Copied to n1: 7 files, 40.0 MB in 3.2 s", "no room on n1",
        "<td>0</td><td>n1</td><td class=\"number\">2</td><td class=\"number\">400</td>",
        "1e-02</text>", "rms <b>1.000e-05</b>", "log rms <b>-5.000e+00</b>",
        "MESH   12 blocks\nSOLVE  oops\n</pre>"}) {
    EXPECT_THAT(page, HasSubstr(part));
  }
  for (const char* part : {"http:", "https:", "<script", "src=", "url(", "BEGIN"}) {
    EXPECT_THAT(page, Not(HasSubstr(part)));
  }
  EXPECT_THAT(TLReportPage(kept, true, 2000).html(), HasSubstr("It still runs"));
}

}  // namespace
