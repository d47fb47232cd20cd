// Settings go down, values come up: the real daemon, a scripted solver, this process and further
// processes as interfaces.
#include <fmt/format.h>

#include <optional>

#include "integration/EngineDaemon.h"

namespace {

// One parameter of a poll: what the asker says that it holds.
struct Known {
  std::string name;
  std::int32_t last = 0;
};

class Steering : public EngineDaemon {
 protected:
  static constexpr const char* kHead =
      "          VERSION                     1.0\n          updateInBatch       0\n";

  static std::string parameter(const std::string& name, const std::string& type, int count = 0,
                               const std::string& entries = {}) {
    return "          TL_BEGIN TL_steering_parameter\n              VERSION 2.0\n"
           "              NAME " +
           name +
           "\n              TYPE_NAME watched\n"
           "              STEERING_TYPE " +
           type + "\n              NUMBER_OF_VALUES " + std::to_string(count) + "\n" + entries +
           "          TL_END   TL_steering_parameter\n";
  }
  static std::string bigEndian(const std::vector<float>& values) {
    TLWireBuffer buffer;
    for (const float value : values) buffer.real32(value);
    return {buffer.bytes().begin(), buffer.bytes().end()};
  }

  std::string steeringFile() const { return file("a.steering"); }

  // Two points of the residual stand in the file from an earlier run.
  void putSteering() const {
    put("a.steering", kHead +
                          parameter("rms", "residual", 2,
                                    "\t\t\t\tREAL_ENTRY\t\tcourant number\t\t1.5\n"
                                    "\t\t\t\tINTEGER_ENTRY\t\toutput interval\t\t10\n") +
                          parameter("profile", "curve") + parameter("field", "surface"));
    put("a.steering.binary", bigEndian({1, 2, 0.5F, 0.25F}));
  }

  // A task of one solver that has the steering file and does `commands` after it got its settings.
  std::string solverTask(const Lines& commands) const {
    Lines script = {"started", "ask", "keep 12 " + file("asked")};
    script.insert(script.end(), commands.begin(), commands.end());
    script.insert(script.end(), {"text over", "wait 60"});
    return TestDaemon::task(
        scripted("a", "SOLVE", "velstraTurbo", script,
                 argumentText("none", file("a.run")) + argumentText("-steering", steeringFile())));
  }

  // A parameter of a message with settings.
  static void add(TLWireBuffer& set, const char* name, const char* userName, const char* typeName,
                  int type, std::optional<float> real = {},
                  std::optional<std::int32_t> integer = {}) {
    set.counted(name).counted(userName).counted(typeName).integer(1).integer(1).integer(type);
    set.integer(0).integer(real ? 1 : 0);
    if (real) set.real32(*real);
    set.integer(integer ? 1 : 0);
    if (integer) set.integer(*integer);
    set.integer(0).integer(0);
  }

  static bool waitReports(const TestDaemon& daemon, int count) {
    return waitUntil([&] { return daemon.upcallCount("task_manager_update_ratio") >= count; });
  }

  TLWireBuffer kept(const std::string& name) const {
    const std::string bytes = contentsOf(directory / name);
    return TLWireBuffer(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
  }

  // All items of `expected`, and nothing else. (What fills a string up to four bytes is PVM's.)
  static bool holds(TLWireBuffer body, const TLWireBuffer& expected) {
    for (const auto& item : expected.items()) {
      TLWireItem found;
      if (std::holds_alternative<std::string>(item)) {
        if (!body.takeString(found.emplace<std::string>())) return false;
      } else if (std::holds_alternative<float>(item)) {
        if (!body.takeReal32(found.emplace<float>())) return false;
      } else if (!body.takeInteger(found.emplace<std::int32_t>())) {
        return false;
      }
      if (found != item) return false;
    }
    return body.left() == 0;
  }

  // A message with values as text: "rms 0: 1=0.5 2=0.25 | profile 1: | flag 0".
  std::string valuesIn(TLWireBuffer body) const {
    std::int32_t number = 0;
    std::string text;
    const auto take = [&](std::int32_t expected) {
      return body.takeInteger(number) && number == expected;
    };
    if (!take(3) || !take(7) || !body.takeInteger(number) || !body.takeString(text)) return "no";
    if (text != steeringFile() || !take(8)) return "of another set";
    std::int32_t count = 0;
    body.takeInteger(count);
    std::string shown;
    for (std::int32_t i = 0; i < count; ++i) shown += series(body) + " | ";
    if (!take(1) || !body.takeInteger(number)) return "no flag behind " + shown;
    return fmt::format("{}flag {}", shown, number) + (body.left() == 0 ? "" : " and more");
  }

  // The daemon's answer to a poll of this process, without the statuses.
  std::string polled(const TestDaemon& daemon, const std::vector<Known>& known) const {
    PvmBody body;
    TLWireBuffer& status = body.sub(10).integer(static_cast<std::int32_t>(known.size()));
    for (const auto& one : known) status.counted(one.name).integer(one.last);
    PvmPeer::send(daemon.tid(), 1, body);
    if (!PvmPeer::receive(daemon.tid(), 1)) return "no statuses";
    const auto values = PvmPeer::receive(daemon.tid(), 13);
    return values ? valuesIn(values->body) : "nothing";
  }

  // Another interface, a process of its own: joins, polls, and keeps the answer in `name`.
  std::string polledByOther(const TestDaemon& daemon, const std::string& name) const {
    PvmPeer::spawn(TL_FAKETOOL, {"-parendId", std::to_string(daemon.tid()), "-do", "send 10", "-do",
                                 "raw 1 i:1 i:10 i:0", "-do", "keep 13 " + file(name)});
    return waitFile(name) ? valuesIn(kept(name)) : "nothing";
  }

 private:
  static std::string series(TLWireBuffer& body) {
    std::int32_t head[6] = {};
    std::string name;
    body.takeInteger(head[0]);
    body.takeString(name);
    for (int i = 1; i < 6; ++i) body.takeInteger(head[i]);
    std::string text = fmt::format("{} {}:", name, head[1]);
    std::vector<float> points(static_cast<std::size_t>(std::clamp(head[5], 0, 1000)) * 2);
    for (float& value : points) body.takeReal32(value);
    for (std::size_t i = 0; i < points.size() / 2; ++i) {
      text += fmt::format(" {}={}", points[i], points[points.size() / 2 + i]);
    }
    return text;
  }
};

TEST_F(Steering, OneChangeWalksAllTheWay) {
  putSteering();
  TestDaemon daemon(solverTask({
      "values rms 3 0.125 4 0.0625",
      "raw 13 i:1 i:8 i:1 i:7 S:profile i:1 i:0 i:0 i:0 i:2 f:0 f:1 f:5 f:6",
      "await 21",
      "values rms 5 0.5",            //
      "keep 12 " + file("changed"),  //
      "values rms 6 0.25",           //
      "await 21",
      "reset",
      "await 24",
      "text reset done",
  }));
  ASSERT_TRUE(waitFile("asked"));
  EXPECT_EQ(daemon.upcallCount(phrase("ASK FLOW SOLVER STEERING")), 1);
  {
    PvmBody body;
    body.text(steeringFile());
    TLWireBuffer& set = body.sub(9).counted(steeringFile()).integer(3);
    add(set, "rms", "UNDEFINED", "watched", 0, 1.5F, 10);
    add(set, "profile", "UNDEFINED", "watched", 1);
    add(set, "field", "UNDEFINED", "watched", 2);
    set.integer(-1).integer(-1);
    EXPECT_TRUE(holds(kept("asked"), body.wire()));
  }

  // What was in the file and what came since goes up, as far as it is lacking, once.
  ASSERT_TRUE(waitReports(daemon, 2));
  EXPECT_EQ(polled(daemon, {{"rms", 1}, {"profile", 0}, {"field", 0}}),
            "rms 0: 2=0.25 3=0.125 4=0.0625 | profile 1: 0=5 1=6 | field 2: | flag 0");
  EXPECT_EQ(polled(daemon, {{"rms", 4}}), "rms 0: | profile 1: | field 2: | flag 0");

  // A change, under which one parameter gets a new name: what hasn't gone up yet isn't lost.
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
  ASSERT_TRUE(waitReports(daemon, 3));
  PvmBody change;
  change.text(steeringFile());
  TLWireBuffer& set = change.sub(9).counted(steeringFile()).integer(2);
  add(set, "rms", "residual of all", "watched", 0, 0.75F);
  add(set, "mass", "profile", "watched", 1);
  set.integer(-1).integer(-1);
  PvmPeer::send(daemon.tid(), 12, change);
  ASSERT_TRUE(waitFile("changed"));
  EXPECT_TRUE(holds(kept("changed"), change.wire())) << "passed on as it came";
  EXPECT_EQ(order(daemon, {received("NEW_STEERING_TRANSFERED_TO_TASKMANAGER"),
                           received("NEW_STEERING_TRANSFERED_TO_FLOW_SOLVER")})
                .size(),
            2U);
  ASSERT_TRUE(waitReports(daemon, 4));
  EXPECT_EQ(polledByOther(daemon, "late"), "rms 0: 5=0.5 6=0.25 | mass 1: | flag 0");
  EXPECT_EQ(polled(daemon, {{"rms", 4}}), "rms 0: | mass 1: | flag 0") << "gone up once";

  // The solver starts its steering anew: each parent is told once.
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
  ASSERT_TRUE(daemon.waitUpcall(phrase("reset done"))) << "the answer came";
  EXPECT_EQ(daemon.upcallCount(phrase("RESET FLOW SOLVER STEERING")), 1);
  EXPECT_EQ(polledByOther(daemon, "other"), "rms 0: | mass 1: | flag 1");
  EXPECT_EQ(polled(daemon, {}), "rms 0: | mass 1: | flag 1");
  EXPECT_EQ(polled(daemon, {}), "rms 0: | mass 1: | flag 0");
}

TEST_F(Steering, NobodyIsToldBeforeTheSolverAsked) {
  putSteering();
  const std::string task = solverTask({});
  put("a.fake", "started\nvalues rms 3 0.125\nwait 60\n");
  TestDaemon daemon(task);
  ASSERT_TRUE(waitReports(daemon, 1));
  PvmBody body;
  body.sub(10).integer(0);
  PvmPeer::send(daemon.tid(), 1, body);
  EXPECT_TRUE(PvmPeer::receive(daemon.tid(), 1));
  EXPECT_EQ(daemon.poll(), Statuses{1});
  EXPECT_FALSE(PvmPeer::receive(daemon.tid(), 13, 0));
}

TEST_F(Steering, WhatMakesNoSenseIsDropped) {
  putSteering();
  const std::string head = "raw 13 i:1 i:8 ";
  const std::string rms = "i:3 S:rms i:0 i:0 i:0 i:0 ";
  TestDaemon daemon(solverTask({
      head + "i:1000000000",                         // parameters that aren't there
      head + "i:1 " + rms + "i:1000000000 f:7 f:7",  // points that aren't there
      head + "i:1 " + rms + "i:-3 f:7 f:7",          //
      head + "i:1 " + rms + "i:2 f:7",               //
      head + "i:1 i:2000000000 S:rms i:0 i:0 i:0 i:0 i:0",
      "values nobody 7 7",                                   // a name that the set doesn't have
      "values rms 2 7 1 7 0 7",                              // iterations that went already
      "values rms 3 nan 4 inf 5 -inf 6 0.5 6 7 5 7 7 1",     // numbers that are none, back again
      head + "i:1 i:5 S:field i:9 i:0 i:0 i:0 i:1 f:1 f:1",  // a type that isn't there
      head + "i:1 i:5 S:field i:2 i:0 i:0 i:0 i:1 f:1 f:2",
      head + "i:1 i:7 S:profile i:0 i:0 i:0 i:0 i:1 f:1 f:1",  // a type that changes, and back
      head + "i:1 i:7 S:profile i:1 i:0 i:0 i:0 i:1 f:8 f:9",
  }));
  ASSERT_TRUE(daemon.waitUpcall(received("over")));
  EXPECT_EQ(polled(daemon, {{"someone else", 5}}),
            "rms 0: 1=0.5 2=0.25 6=0.5 7=1 | profile 1: 8=9 | field 2: 1=2 | flag 0");
  for (const std::int32_t count : {-1, 1, 1000000000}) {
    PvmBody body;
    body.sub(10).integer(count);
    PvmPeer::send(daemon.tid(), 1, body);
    PvmBody settings;
    settings.text(steeringFile()).sub(9).counted(steeringFile()).integer(count);
    PvmPeer::send(daemon.tid(), 12, settings);
  }
  PvmBody stranger;
  stranger.text("/no/such.steering");
  stranger.sub(9).counted("/no/such.steering").integer(0).integer(-1).integer(-1);
  PvmPeer::send(daemon.tid(), 12, stranger);
  EXPECT_TRUE(daemon.waitStatuses({1}));
  EXPECT_EQ(daemon.upcallCount(received("NEW_STEERING_TRANSFERED_TO_TASKMANAGER")), 0);
}

TEST_F(Steering, AMissingFileGivesASetOfItsNameWithoutParameters) {
  TestDaemon daemon(solverTask({"values rms 1 1"}));
  ASSERT_TRUE(waitReports(daemon, 1));
  EXPECT_EQ(polled(daemon, {}), "flag 0");
}

TEST_F(Steering, TheExampleSolverTakesAChangeAndReports) {
  const auto mesh = PvmPeer::spawn(TL_HEATMESH, {file("a.run"), "-cells", "40"});
  ASSERT_GT(mesh, 0);
  ASSERT_TRUE(waitFile("a.mesh"));
  ASSERT_TRUE(PvmPeer::waitGone(mesh));
  VirtualMachine::shared().addProgram("velstraTurbo", TL_VELSTRATURBO);
  // Without a limit: a quick machine would be at it before the change comes.
  std::string settings = contentsOf(TL_HEAT_STEERING);
  const std::string limit = "2e-05";
  ASSERT_NE(settings.find(limit), std::string::npos);
  put("a.steering", settings.replace(settings.find(limit), limit.size(), "0"));
  put("a.steering.binary", "");
  TestDaemon daemon(
      TestDaemon::task(TestDaemon::step("SOLVE", "velstraTurbo",
                                        argumentsText(argumentText("none", file("a.run")) +
                                                      argumentText("-iterations", "1000000000") +
                                                      argumentText("-steering", steeringFile())))));
  ASSERT_TRUE(daemon.waitUpcall(phrase("settings: relaxation 1.95, stop at 0, output every 100")));
  PvmBody change;
  change.text(steeringFile());
  TLWireBuffer& set = change.sub(9).counted(steeringFile()).integer(7);
  const std::pair<const char*, int> shown[] = {
      {"residual", 0}, {"heat flow", 0}, {"profile", 1}, {"temperature", 2}};
  for (const auto& [name, type] : shown) add(set, name, "", "heat", type);
  add(set, "output interval", "", "heat", 0, {}, 50);
  add(set, "relaxation", "", "heat", 0, 1.25F);
  add(set, "stop at residual", "", "heat", 0, 0.0F);
  set.integer(-1).integer(-1);
  PvmPeer::send(daemon.tid(), 12, change);
  ASSERT_TRUE(daemon.waitUpcall(phrase("settings: relaxation 1.25, stop at 0, output every 50")));
  const auto holdsPoints = [&] {
    const std::string values = polled(daemon, {});
    return values.find("residual 0: ") == 0 && values.find("| heat flow 0: ") != values.npos &&
           values.find("| profile 1: 0=") != values.npos &&
           values.find("| temperature 2: ") != values.npos;
  };
  EXPECT_TRUE(waitUntil(holdsPoints));
  EXPECT_TRUE(daemon.waitStatuses({1}));
  PvmPeer::send(daemon.tid(), 11, PvmBody().integer(0));
  EXPECT_TRUE(daemon.waitStatuses({2}));
}

}  // namespace
