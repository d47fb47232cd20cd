# What the program reports, as sentences for people. A report is one of the fixed words or phrases
# below, or a text of one of the patterns; anything else is a text that a tool sent for the user's
# eyes and is shown as it is.
#
# Kinds: good, bad, warn, info, text. They choose sign and colour of a line.

namespace eval ::vocabulary {
  # word or phrase, kind, sentence
  variable words {
    ___________CANNOT_SPAWN                bad  "A step could not be started."
    _________REMOTE_COPY_FAILED            bad  "The files could not be copied to the remote host."
    CANNOT_OPEN_RUN_FILE                   bad  "The run file of a step can't be opened."
    Cleaning_REMOTE_TMP_directory          info "The temporary directory on the remote host is being removed."
    "Connect to the log"                   info "The log of the probes tool is being followed."
    "FLOW SOLVER CRASHED"                  bad  "The flow solver has crashed."
    "FLOW SOLVER FINISHED"                 good "The flow solver has finished."
    "FLOW SOLVER STARTED"                  good "The flow solver is up."
    "FWH CRASHED"                          bad  "The acoustics tool has crashed."
    "SCULPT3D CRASHED"                     bad  "The shape optimisation tool has crashed."
    "ASK FLOW SOLVER STEERING"             info "The flow solver asked for its settings."
    "RESET FLOW SOLVER STEERING"           info "The flow solver begins its histories anew."
    "RECEIVE SOLUTION RETRIEVE"            info "The flow solver asks to have its solution fetched."
    "Transfer completed ! \n"              good "The files are on the remote host."
    "Retrieval completed ! \n"             good "The results are back from the remote host."
    GET_FLOW_SOLVER_STATUS_MESSAGE         info "An interface asked for the end messages."
    VELSTRA_PERF_CURVE                     info "A performance curve was passed on."
    NEW_STEERING_TRANSFERED_TO_FLOW_SOLVER info "New settings went to the flow solver."
    NEW_STEERING_TRANSFERED_TO_TASKMANAGER info "New settings arrived from the interface."
    NOT_RUNNING                            warn "The probes tool is not up yet."
    PROCESS_TERMINATED                     good "A tool has ended."
    RECEIVE_PROCESS_ID                     info "A tool told its process identifier."
    RECONNECTED_TO_CHILDREN                good "A running tool was found again."
    RECONNECTED_TO_OTHER_MIRE_SESSION      good "Another session of the interface has joined."
    RECONNECTED_TO_PARENT                  good "The interface has joined again."
    SUBTASK_IS_BEING_SUSPENDED             warn "A step was asked to save and end."
    SUBTASK_PROMPTS_TO_SAVE_SOLUTION       info "A step was asked to save its solution."
    SUBTASK_RECONNECTED_TO_CHILDREN        good "A step has found its running tool again."
    TASK_IS_BEING_SUSPENDED                warn "All steps were asked to save and end."
    TRYRECONNECTED_TO_CHILDREN             info "A tool looks for its step."
    TRY_RECONNECTION_TO_CHILDREN           info "A tool looks for its task."
    WAITING_FOR_CONFIRMATION_TO_LAUNCH_PARALLEL info "The next step waits until the flow solver says that it is up."
    file_transfered.                       good "A file for a queued job was copied."
    remote_transfered                      good "The files were copied to the remote host."
    start_status_ok                        good "A process was started."
  }
  # regular expression over the whole text, kind, sentence with \1, \2 of the match
  variable patterns {
    {REMOVE_SEMAPHORE_(-?\d+)}          info {Semaphore \1 of the crashed solver is being removed.}
    {SUBTASK_(-?\d+)_MUST_BE_STOPPED}   warn {Step @\1 was stopped on request.}
    {TASK_IS_BEING_SUSPENDED(-?\d+)}    warn {All steps were asked to save and end.}
    {TASK_MUST_BE_STOPPED_(-?\d+)}      warn {The task was stopped on request.}
    {TL_virtual_machine_errcode (.*)}   bad  {Starting a process failed: \1}
    {Try to spawn (.*)}                 info {Starting \1}
    {Arguments?\s*:?\s*(.*)}            info {with arguments \1}
    {Transfering project to(?: host)?:?\s*(.*)} info {Copying the project to \1}
    {Copying Argument File\s*:?\s*(.*)} info {Copying file \1}
    {Tranfering data to remote directory:\s*(.*)} info {Copying the data to remote directory \1}
    {Remote temporary directory:\s*(.*)} info {Remote temporary directory: \1}
    {Retrieving files(?: from directory)?:?\s*(.*)} info {Fetching the results from \1}
    {Removing remote temporary directory:?\s*(.*)}  info {Removing the remote temporary directory \1}
    {(Copy of .* failed: .*)}           bad  {\1}
    {(Retrieval of .* (?:failed: |was not tried: ).*)} bad {\1}
    {(The directory .* belongs to somebody else: .*)}  bad {\1}
    {(The file .*, which goes to host .*)}             bad {\1}
    {(What could not be fetched is kept on host .*)}   warn {\1}
    {(The launch waits for the solver's definitions\. .*)} warn {\1}
    {(The virtual machine of this host is gone: .*)}   bad {\1}
  }
  # What no pattern begins with needs no look at each of them.
  variable beginnings {^(?:REMOVE_S|SUBTASK_|TASK_|TL_v|Try |Argu|Tran|Copy|Remo|Retr|The |What could )}
  variable sentences
  array set sentences {}
  foreach {word kind sentence} $words {
    set sentences([string trim [subst -nocommands -novariables $word]]) [list $kind $sentence]
  }

  # Answers {kind sentence} of a report.
  proc explain {report} {
    variable sentences
    variable patterns
    variable beginnings
    set text [string trim $report]
    if {[info exists sentences($text)]} {
      return $sentences($text)
    }
    if {![regexp $beginnings $text]} { return [list text $report] }
    foreach {pattern kind sentence} $patterns {
      set parts [regexp -inline -- "^(?:$pattern)\$" $text]
      if {[llength $parts] == 0} continue
      lassign $parts all first
      set result [string map [list @\\1 [stepNumber $first] \\1 [string trim $first]] $sentence]
      return [list $kind [string trim $result]]
    }
    return [list text $report]
  }

  # Positions count from 0 in the program, from 1 for people.
  proc stepNumber {position} {
    if {[string is integer -strict $position] && $position >= 0} {
      return [expr {$position + 1}]
    }
    return $position
  }
}
