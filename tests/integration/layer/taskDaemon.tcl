# The script layer of the daemon in tests: notes every call of the program in the file "upcalls",
# one line each, and evaluates what a test puts into the file "question", answering in "answer".

proc note {text} {
  set channel [open $::env(TL_TEST_DIR)/upcalls a]
  fconfigure $channel -encoding binary
  puts $channel [string map [list "\n" "\\n"] $text]
  close $channel
}

foreach upcall {
  task_manager_receive_message task_manager_update_ratio task_manager_init_tail
  task_manager_update_tail okMessage
} {
  proc $upcall {args} "note \[list $upcall {*}\$args\]"
}

set confirmed 1
proc confirm {text} {
  note [list confirm $text]
  return $::confirmed
}

proc answer {} {
  set question $::env(TL_TEST_DIR)/question
  if {![file exists $question]} return
  set channel [open $question]
  set script [read $channel]
  close $channel
  file delete $question
  set code [catch {uplevel #0 $script} result]
  set channel [open $::env(TL_TEST_DIR)/answer.new w]
  puts -nonewline $channel "$code $result"
  close $channel
  file rename -force $::env(TL_TEST_DIR)/answer.new $::env(TL_TEST_DIR)/answer
}

set period 5
set cycles 0
proc beat {} {
  if {$::period > 0} {
    task_update
    incr ::cycles
  }
  answer
  after [expr {max(1, $::period)}] beat
}
after 1 beat
note ready
