#include "taskengine/TLStepEnd.h"

#include "../platform/TTempDir.h"
#include "TEngineTest.h"

namespace {

using Kind = TLStepEnd::Kind;

TEST(StepEnd, EveryEndHasItsSentence) {
  struct Case {
    Kind kind;
    const char* detail;
    int waitStatus;  // -1 unknown
    bool announced, crashed, memoryWasShort;
    const char* sentence;
  };
  const Case cases[] = {
      {Kind::process, "", 0, false, false, false, ""},
      {Kind::process, "", 0, true, false, false, ""},
      {Kind::process, "", -1, true, false, false, ""},
      {Kind::process, "", -1, false, true, false, "ended without a word on host h; E; L; log: /l"},
      {Kind::process, "", 0, false, true, false,
       "exited with status 0 on host h and never said that it was done; E; L; log: /l"},
      {Kind::process, "", 127 << 8, false, false, false,
       "exited with status 127 (a program that it calls was not found) on host h; E; L; log: /l"},
      {Kind::process, "", 139 << 8, false, false, false,
       "exited with status 139 (a program that it calls was ended by signal 11 (SIGSEGV, bad "
       "memory access)) on host h; E; L; log: /l"},
      {Kind::process, "", 9, false, true, true,
       "ended by the kernel for want of memory (signal 9, SIGKILL) on host h and never said that "
       "it was done; E; L; log: /l"},
      {Kind::process, "", 9, false, false, false,
       "killed from outside by signal 9 (SIGKILL) on host h; E; L; log: /l"},
      {Kind::process, "", 0x80 | 6, true, false, true,
       "ended by signal 6 (SIGABRT, it gave up by itself) on host h, after it had said that it was "
       "done; E; L; log: /l"},
      {Kind::process, "", 64, false, false, false, "ended by signal 64 on host h; E; L; log: /l"},
      {Kind::allWell, "", 1 << 8, false, false, false, ""},
      {Kind::lostSight, "code -2", -1, false, false, false,
       "lost from sight on host h: the virtual machine answers code -2; E; L; log: /l"},
      {Kind::hostLost, "", -1, false, true, false,
       "lost with its host: h has left the virtual machine; E; L; log: /l"},
      {Kind::machineLost, "", -1, false, true, false,
       "lost from sight on host h: the virtual machine is gone; E; L; log: /l"},
      {Kind::jobFailed, "17 EXIT", -1, false, false, false,
       "its job failed or was removed on host h: the queue says: 17 EXIT; E; L; log: /l"},
      {Kind::jobDeleted, "17", -1, false, false, false,
       "its job 17 was deleted from the queue on request on host h"},
      {Kind::copyFailed, "/t%h is full", -1, false, false, false,
       "never started: its files could not be copied to host h: /t%h is full"},
  };
  for (const Case& test : cases) {
    TLStepEnd end;
    end.kind = test.kind;
    end.detail = test.detail;
    if (test.waitStatus >= 0) end.take(test.waitStatus);
    end.announced = test.announced;
    end.crashed = test.crashed;
    end.memoryWasShort = test.memoryWasShort;
    end.host = "h";
    end.errors = "e";
    end.lastLine = "l";
    end.log = "/l";
    std::string expected = test.sentence;
    if (const auto at = expected.find("; E; L"); at != std::string::npos) {
      expected.replace(at, 6, "; it had reported: e; its last line: \"l\"");
    }
    EXPECT_EQ(end.sentence(), expected);
  }
}

TEST(StepEnd, TheWorstOfSeveralProcessesAndTheLastOfTheirLinesCount) {
  TLStepEnd end;
  for (const int status : {0, 11, 3 << 8, 0}) end.take(status);
  EXPECT_EQ(end.waitStatus, 11);
  TTempDir directory;
  directory.write("out",
                  "[t40003] BEGIN\n[t40003] one\n[t40004] other\n[t40003] two\n"
                  "[t400031] none\n[t40003]  \n[t40003] EOF\n");
  EXPECT_EQ(lastOutputLine(directory.file("out"), {0x40003, 7}), "two");
  EXPECT_EQ(lastOutputLine(directory.file("out"), {7}), "");
  EXPECT_EQ(lastOutputLine(directory.file("absent"), {0x40003}), "");
}

class StepEndTest : public TEngineTest {};

TEST_F(StepEndTest, WhatTheEngineSeesIsTold) {
  TTempDir directory;
  task->localComputationPath = directory.path();
  directory.write("status.dat", "TL_BEGIN status\nTL_BEGIN premetis\nSTATUS = failed\n");
  vm.hosts = {{1, "near", "LINUX64", 1, 1}, {2, "far", "LINUX64", 1, 1}};
  launcher.results["COPIED"] = TLSubTask::kCopyFailed;
  for (const char* name : {"GONE", "COPIED", "LOST", "PREMETIS", "POSTMETIS"}) {
    add(name).hostName = "far";
  }
  add("NEVER", "tool", 2);  // keeps the task from its end
  const auto cycle = [&](int times) {
    for (int i = 0; i < times; ++i) task->superviseOnce();
  };
  cycle(1);
  vm.ends = {{1001, 2 << 8}, {99, 11}};
  isGone(1001);
  cycle(1);
  isGone(1002);
  vm.hosts.pop_back();
  cycle(1);
  isGone(1003);
  cycle(3);
  Lines reasons;
  for (const auto& step : task->subTasks) reasons.push_back(step->endReason);
  EXPECT_EQ(reasons,
            (Lines{"exited with status 2 on host far",
                   "never started: its files could not be copied to host far: is its directory "
                   "C:\\tmp accessible and not full?",
                   "lost with its host: far has left the virtual machine",
                   "ended without a word on host far",
                   "skipped: disabled because step 4, PREMETIS, failed before it", ""}));
}

}  // namespace
