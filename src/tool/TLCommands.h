#pragma once

#include <optional>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLCommand.h"
#include "tool/TLToolEnvironment.h"
#include "tool/TLVirtualMachineStarter.h"

/// @name The commands, one function a file.
/// @{
std::vector<TLCommand> runCommands();      ///< run, start, attach, watch
std::vector<TLCommand> controlCommands();  ///< status, stop, suspend, save, replay, exit, list
std::vector<TLCommand> fileCommands();     ///< check, show, rewrite
std::vector<TLCommand> planCommands();     ///< plan
std::vector<TLCommand> unitsCommands();    ///< units
std::vector<TLCommand> steerCommands();    ///< steer, plot
std::vector<TLCommand> reportCommands();   ///< report
/// @}

/// The live daemon that `who` means, with this process enrolled in the virtual machine. None, with
/// the reason said on standard error, when there is no machine or no such daemon.
std::optional<TLRunState> findDaemon(const TLToolEnvironment& environment,
                                     TLVirtualMachineStarter& machine, const std::string& who);
