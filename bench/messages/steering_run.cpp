// What a long run with five residuals costs while an interface polls: the bytes that go to the
// interface per iteration and the daemon's memory, at the end of a short and of a long run.
#include <fmt/format.h>
#include <pvm3.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "integration/PvmPeer.h"
#include "integration/TestDaemon.h"
#include "integration/VirtualMachine.h"

namespace {

constexpr int kShortRun = 10'000;
constexpr int kLongRun = 1'000'000;
constexpr int kSeries = 5;
constexpr int kPerMessage = 100;  // iterations that the solver reports at once
constexpr int kPerTurn = 1000;    // iterations between two turns of the interface
constexpr double kMostRatio = 1.1;
constexpr double kPatience = 60.0;

std::string seriesName(int number) {
  return "residual " + std::to_string(number);
}

// The solver: asks for its settings, then reports `kPerTurn` iterations for each order to save.
int solve(std::int32_t daemon) {
  PvmPeer::tid();
  PvmPeer::send(daemon, 4);
  PvmPeer::send(daemon, 14);
  if (!PvmPeer::receive(daemon, 12, kPatience)) return 1;
  for (int iteration = 0; PvmPeer::receive(daemon, 21, kPatience);) {
    for (int part = 0; part < kPerTurn / kPerMessage; ++part, iteration += kPerMessage) {
      PvmBody body;
      TLWireBuffer& values = body.sub(8).integer(kSeries);
      for (int series = 0; series < kSeries; ++series) {
        values.counted(seriesName(series));
        for (const int head : {0, 0, 0, 0, kPerMessage}) values.integer(head);
        for (int i = 1; i <= kPerMessage; ++i) values.real32(static_cast<float>(iteration + i));
        for (int i = 1; i <= kPerMessage; ++i) values.real32(1.0F / static_cast<float>(i + series));
      }
      PvmPeer::send(daemon, 13, body);
    }
  }
  return 0;
}

std::string steeringText() {
  std::string text = " VERSION 1.0\n";
  for (int series = 0; series < kSeries; ++series) {
    text += " TL_BEGIN TL_steering_parameter\n VERSION 2.0\n NAME " + seriesName(series) +
            "\n STEERING_TYPE residual\n TL_END TL_steering_parameter\n";
  }
  return text;
}

// Resident memory of a process in kB, at most so far ("VmHWM").
double mostMemory(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::atof(line.c_str() + 6);
  }
  return 0;
}

// The points of the first series in a message with values; -1 for another message.
int pointsIn(const PvmMessage& message) {
  TLWireBuffer body = message.body;
  std::int32_t number = 0;
  std::string text;
  for (int skipped = 0; skipped < 3; ++skipped) body.takeInteger(number);
  body.takeString(text);
  if (!body.takeInteger(number) || number != 8) return -1;
  body.takeInteger(number);
  body.takeInteger(number);
  body.takeString(text);
  for (int head = 0; head < 5; ++head) body.takeInteger(number);
  return number;
}

struct Cost {
  double bytesPerIteration = 0;
  double memory = 0;
};

class Interface {
 public:
  explicit Interface(const TestDaemon& daemon) : daemon_(daemon) {}

  // Lets the solver go on and polls until everything that it reported is here.
  void turn() {
    PvmPeer::send(daemon_.tid(), 21, PvmBody().integer(0));
    for (const int end = iteration_ + kPerTurn; iteration_ < end;) poll();
  }
  void runTo(int iteration) {
    while (iteration_ < iteration) turn();
  }
  Cost cost() const {
    return {static_cast<double>(bytes_) / iteration_,
            mostMemory(PvmPeer::processOf(daemon_.tid()))};
  }

 private:
  void poll() {
    PvmBody body;
    TLWireBuffer& known = body.sub(10).integer(kSeries);
    for (int series = 0; series < kSeries; ++series) {
      known.counted(seriesName(series)).integer(iteration_);
    }
    PvmPeer::send(daemon_.tid(), 1, body);
    if (!PvmPeer::receive(daemon_.tid(), 1, kPatience)) std::exit(2);
    // None before the solver has asked for its settings.
    const auto values = PvmPeer::receive(daemon_.tid(), 13, iteration_ == 0 ? 0.05 : kPatience);
    if (!values) return;
    bytes_ += values->body.bytes().size();
    iteration_ += std::max(pointsIn(*values), 0);
  }

  const TestDaemon& daemon_;
  int iteration_ = 0;
  std::size_t bytes_ = 0;
};

bool report(const char* what, double shortRun, double longRun, const char* unit) {
  const double ratio = longRun / shortRun;
  const bool good = ratio <= kMostRatio;
  fmt::print("  {:<40} {:10.2f} {:10.2f} {:<6} ratio {:.3f} (at most {}) {}\n", what, shortRun,
             longRun, unit, ratio, kMostRatio, good ? "holds" : "MISSED");
  return good;
}

int measure() {
  VirtualMachine::shared().addProgram("velstraTurbo",
                                      std::filesystem::read_symlink("/proc/self/exe"));
  const auto file = VirtualMachine::shared().directory() / "run.steering";
  std::ofstream(file) << steeringText();
  const std::ofstream values(file.string() + ".binary");  // empty
  const auto argument = [](const std::string& type, const std::string& value) {
    return "    TL_BEGIN process_argument\n      TYPE " + type + "\n      VALUE " + value +
           "\n    TL_END process_argument\n";
  };
  TestDaemonOptions options;
  options.script =
      "set period 1\nproc task_manager_update_ratio {args} {}\n"
      "proc task_manager_receive_message {args} {}\n";
  const TestDaemon daemon(
      TestDaemon::task(TestDaemon::step(
          "SOLVE", "velstraTurbo",
          "  TL_BEGIN process_arguments\n" +
              argument("none", (VirtualMachine::shared().directory() / "a.run").string()) +
              argument("-steering", file.string()) + "  TL_END process_arguments\n")),
      options);
  if (!daemon.waitStatuses({1})) return 2;
  Interface interface(daemon);
  interface.runTo(kShortRun);
  const Cost atShort = interface.cost();
  interface.runTo(kLongRun);
  const Cost atLong = interface.cost();
  fmt::print("steering of {} and of {} iterations, {} residuals:\n", kShortRun, kLongRun, kSeries);
  const bool traffic = report("bytes to the interface per iteration", atShort.bytesPerIteration,
                              atLong.bytesPerIteration, "bytes");
  const bool memory = report("most memory of the daemon", atShort.memory, atLong.memory, "kB");
  return traffic && memory ? 0 : 1;
}

}  // namespace

// Without words the measurement, with "-parendId" its solver.
int main(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "-parendId") == 0) return solve(std::atoi(argv[i + 1]));
  }
  if (argc > 1) return solve(pvm_parent());
  return measure();
}
