#pragma once

/// Exit codes of tlctl.
namespace TLExitCode {
constexpr int kOk = 0;           ///< done; every step finished ok
constexpr int kStepFailed = 1;   ///< some step did not finish ok, or a file is not as it should be
constexpr int kWrongUse = 2;     ///< the command line is wrong
constexpr int kNobodyThere = 3;  ///< no virtual machine, no daemon, no such task
}  // namespace TLExitCode
