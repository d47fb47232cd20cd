# Plays the program to the shipped script layer, for pictures of its window:
#   wish window-scenes.tcl taskDaemon.tcl SCENE picture.png
catch {package require BLT}
lassign $argv layer scene picture

proc task_update {} {}
proc get_task_name {} { return "wing at 12 degrees" }
proc exit_taskmanagerc {} { exit }

# `more` are further lines of the step's JSON.
proc step {name status host began took {reason ""} {more ""}} {
  set now [clock seconds]
  set started [expr {$began < 0 ? 0 : $now - $began}]
  if {![info exists ::first]} { set ::first [expr {$started - 1}] }
  set ended [expr {$took < 0 ? 0 : $started + $took}]
  return [format {{"name":"%s","executable":"","host":"%s","status":%d,"started":%d,"ended":%d,
    "reason":"%s"%s}} \
              $name $host $status $started $ended $reason $more]
}

proc record {args} {
  set channel [open [file join $::env(TL_PVM_USER_DIR) task-[pid].json] w]
  puts $channel [format {{"version":1,"host":"node17","task_file":"wing.task",
    "started":%d,"steps":[%s]}} $::first [join $args ,]]
  close $channel
}

proc say {args} { foreach word $args { task_manager_receive_message $word } }

proc log {count} {
  set file [file join $::env(TL_PVM_USER_DIR) wing.std]
  set channel [open $file w]
  for {set i 1} {$i <= $count} {incr i} {
    puts $channel [format "%6d   residual %.4e   lift %.5f" $i [expr {exp(-0.012 * $i)}] \
                       [expr {0.42 * (1 - exp(-0.02 * $i))}]]
  }
  close $channel
  task_manager_init_tail $file
  task_manager_update_tail
}

proc residuals {count} {
  foreach {name from slope wave} {density 0.9 0.012 9 "x momentum" 0.5 0.0105 13 energy 0.2 0.009 21} {
    set points 0
    for {set i 1} {$i <= $count} {incr i} {
      set y [expr {$from * exp(-$slope * $i) * (1 + 0.25 * sin($i / double($wave)))}]
      lappend points $i $y
    }
    set ::tl_series($name) $points
  }
}

# The window of a start-up name whose script is to be put in place: its layer is that stand-in.
proc placeholder {} {}
# The window with its keys.
proc keys {} {
  running
  after 500 ::look::showKeys
}
proc waiting {} {
  record [step MESH 1 node17 64 -1 "" {,"job":4711,"queue_state":"qw"}] \
      [step VELSTRA 0 node18 -1 -1] [step PICTURES 0 node17 -1 -1]
  say "Try to spawn igg on node17, OS UNIX"
}
proc running {} {
  record [step MESH 2 node17 184 62] \
      [step VELSTRA 1 node18 121 -1 "" {,"iteration":412,"iterations_asked":1200,
        "last_text":"full multigrid: level 2 of 3"}] [step PICTURES 0 node17 -1 -1]
  say "Try to spawn igg on node17, OS UNIX" start_status_ok "mesh: 1 204 224 cells in 48 blocks" \
      "Transfering project to host: node18, OS: UNIX" "Transfer completed ! \n" \
      "Try to spawn velstra on node18, OS UNIX" start_status_ok "FLOW SOLVER STARTED" \
      "ASK FLOW SOLVER STEERING" "full multigrid: level 2 of 3" RECONNECTED_TO_PARENT
  task_manager_update_ratio
  log 412
  residuals 412
}
proc crashed {} {
  record [step MESH 2 node17 184 62] \
      [step VELSTRA 4 node18 121 88 "ended by signal 11 (SIGSEGV, bad memory access) on host node18\
        and never said that it was done; it had reported: negative temperature in block 17 at\
        iteration 263; log: /data/wing/wing.std"] \
      [step PICTURES 3 node17 33 0 "never started on host node17: cfview cannot be found in its\
        directories for programs"]
  say start_status_ok "FLOW SOLVER STARTED" "full multigrid: level 2 of 3" "FLOW SOLVER CRASHED" \
      ___________CANNOT_SPAWN
  log 263
  residuals 263
  okMessage { Warning: the execution of the command:tlrcp -b node18:/tmp/wing.cgns wing.cgns failed } \
      { error }
}
proc finished {} {
  record [step MESH 2 node17 1204 62] [step VELSTRA 2 node18 1141 1066] [step PICTURES 2 node17 75 9]
  say start_status_ok "FLOW SOLVER STARTED" "full multigrid: level 3 of 3" \
      "converged after 1200 iterations" "FLOW SOLVER FINISHED" "Retrieval completed ! \n" \
      start_status_ok "picture: pressure.png"
  log 1200
  residuals 1200
}

source $layer
after 200 $scene
after 2500 {
  exec import -window root -crop [winfo width .]x[winfo height .]+0+0 -strip +dither -colors 255 png8:$picture
  exit
}
