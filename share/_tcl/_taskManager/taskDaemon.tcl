# The window of the task daemon: what runs, what happened, the log that is followed; and the timer
# that drives all supervision. docs/script-contract.md tells what the program offers and asks for.
#
# This file is evaluated before the task exists: it only makes the window and arms the timer.

foreach part {vocabulary runState logView plot look} {
  source [file join [file dirname [info script]] $part.tcl]
}

namespace eval ::taskWindow {
  variable period 500
  variable started [clock seconds]
  variable updating 0
  variable asking 0
  variable finished 0
  variable lastReport ""
  variable repeats 0
  variable steps {}
  variable words
  array set words {}
  variable otherLog ""
  variable chosen ""
  variable view .body.lower.reports.card.text
  variable list .body.upper.steps.card.list

  if {[info exists ::env(TL_UPDATE_MS)] && [string is integer -strict $::env(TL_UPDATE_MS)]} {
    set period [expr {max(1, $::env(TL_UPDATE_MS))}]
  }

  # One beat: a supervision cycle, then the next beat is armed. So no cycle begins while one is in
  # progress, whatever that one lets happen meanwhile.
  proc beat {} {
    variable period
    variable updating
    set updating 1
    if {[catch {task_update} error]} { report bad "The supervision failed: $error" }
    set updating 0
    catch {showState}
    after $period ::taskWindow::beat
  }

  # What must go on during a long cycle, too.
  proc tick {} {
    variable started
    variable finished
    variable updating
    catch {
      if {!$finished} {
        .header.elapsed configure -text [duration [expr {[clock seconds] - $started}]]
      }
      if {$updating} { showState }
      ::tail::update_
      if {[::plot::update_]} { ::look::showPlot }
      showTimes
    }
    after 500 ::taskWindow::tick
  }

  proc duration {seconds} {
    set seconds [expr {int($seconds)}]
    return [format "%d:%02d:%02d" [expr {$seconds / 3600}] [expr {$seconds / 60 % 60}] \
                [expr {$seconds % 60}]]
  }

  proc clockTime {seconds} {
    if {$seconds <= 0} { return "" }
    return [clock format [expr {int($seconds)}] -format %H:%M:%S]
  }

  # --- what happened ---------------------------------------------------------------------------

  proc report {kind sentence} {
    variable view
    variable lastReport
    variable repeats
    # What is reported at every cycle takes one line.
    if {$kind ne "text" && $sentence eq $lastReport} {
      incr repeats
      .footer.text configure -text "$sentence (\u00d7[expr {$repeats + 1}])"
      return
    }
    set lastReport $sentence
    if {$repeats > 0} { .footer.text configure -text "" }
    set repeats 0
    set tag [expr {$kind eq "text" ? "said" : $kind}]
    set time [clock format [clock seconds] -format %H:%M:%S]
    foreach line [split [string trimright $sentence] "\n"] {
      ::growingText::add $view [list "$time\t" dim "$::look::sign($kind)\t" $kind $line $tag]
      set time ""
    }
  }

  proc alarm {text} {
    .banner.text configure -text $text
    grid .banner
    report bad $text
  }

  # --- the steps -------------------------------------------------------------------------------

  proc showState {} {
    variable steps
    set state [::runState::changed]
    if {[dict size $state] == 0} return
    set steps [dict get $state steps]
    showName $state
    # As long as no log is named, what the steps print is one.
    if {$::tail::path eq "" && [dict exists $state log_file]} {
      set file [dict get $state log_file]
      if {$file ne ""} { ::tail::follow $file "Output of the steps" }
    }
    showSteps
    showProgress $state
  }

  proc showName {state} {
    set name [get_task_name]
    if {$name in {"" unknown}} { set name [file tail [dict get $state task_file]] }
    .header.name configure -text $name
    wm title . "$name \u2013 task"
    wm iconname . $name
  }

  # Only rows that have changed are touched: there may be a thousand, and the user may have scrolled.
  proc showSteps {} {
    variable steps
    variable list
    variable words
    variable shown
    set position 0
    foreach step $steps {
      lassign [dict get $::look::states [dict get $step status]] word kind
      set former [expr {[info exists words($position)] ? $words($position) : ""}]
      set words($position) $word
      set values [list [dict get $step name] "$::look::sign($kind) $word" [dict get $step host] \
                      [clockTime [dict get $step started]] [stepTime $step] [remark $step]]
      if {![$list exists $position]} {
        $list insert {} end -id $position -values $values -tags $kind
      } elseif {$values ne $shown($position)} {
        $list item $position -values $values -tags $kind
      }
      set shown($position) $values
      if {$word ne $former} {
        if {$kind eq "bad"} { reportEnd $position $step $word }
        if {$word eq "running" || $kind eq "bad"} { bringUp $position }
      }
      incr position
    }
    showDetail
  }

  # Brings a step into sight that began to run or went wrong, unless the user has chosen another. The
  # first that goes wrong stays: mostly the others follow from it.
  proc bringUp {position} {
    variable list
    variable chosen
    if {[$list selection] ne $chosen} return
    if {$chosen ne "" && [$list item $chosen -tags] eq "bad"} return
    $list see $position
    set chosen $position
    $list selection set $position
    $list focus $position
  }

  # What the dictionary holds under `key`, or `other`.
  proc field {step key {other ""}} {
    return [expr {[dict exists $step $key] ? [dict get $step $key] : $other}]
  }

  # In a few words, what the state doesn't tell: why a step ended, how far one has come that runs.
  proc remark {step} {
    set parts {}
    set ended [expr {[dict get $step status] >= 2}]
    set known [list [expr {$ended ? [field $step reason] : [silence $step]}] [transfer $step]]
    foreach text $known {
      # What went wrong with the files may be why it ended.
      if {$text ne "" && [string first $text [lindex $parts 0]] < 0} {
        lappend parts [string map {"\n" " "} $text]
      }
    }
    if {$ended} { return [join $parts "; "] }
    if {[dict get $step status] == 1 && [field $step queue 0] != 0 && [field $step job 0] < 1} {
      lappend parts "the queue lists no job of it: perhaps it was refused; the log tells more"
    } elseif {[field $step queue_state] ne ""} {
      lappend parts "job [field $step job 0]: [field $step queue_state]"
    }
    if {[field $step iteration 0] > 0} {
      set asked [field $step iterations_asked 0]
      lappend parts "iteration [field $step iteration][expr {$asked > 0 ? " of $asked" : ""}]"
    }
    return [join $parts "; "]
  }

  # How far the files of a step have come that are on their way, and what went wrong with them.
  proc transfer {step} {
    set transfer [field $step transfer {}]
    set parts {}
    if {[field $transfer direction] ne ""} {
      set text "files [field $transfer direction] [field $transfer host]:"
      if {[field $transfer count 0] > 0} {
        append text " [field $transfer number 0] of [field $transfer count]"
      }
      append text " [file tail [field $transfer file]]"
      if {[field $transfer total 0] > 0} {
        append text " ([expr {100 * [field $transfer bytes 0] / [field $transfer total]}] %)"
      }
      lappend parts $text
    }
    if {[field $transfer problem] ne ""} { lappend parts [field $transfer problem] }
    if {[field $transfer kept_directory] ne ""} {
      lappend parts "what could not be fetched lies in [field $transfer kept_directory] on\
                     [field $transfer host]"
    }
    return [join $parts "; "]
  }

  # Since when a host gives no answer.
  proc silence {step} {
    set since [field $step silent_since 0]
    if {$since <= 0} { return "" }
    set host [field $step silent_host [dict get $step host]]
    set waits [expr {[dict get $step status] == 0 ? "waits: " : ""}]
    return "${waits}host $host not answering since [clockTime $since]"
  }

  # The details of the chosen step: all of its remark, and what it last said.
  proc showDetail {} {
    variable steps
    variable list
    set position [lindex [$list selection] 0]
    if {$position eq "" || $position >= [llength $steps]} { return [::look::detail text ""] }
    set step [lindex $steps $position]
    lassign [dict get $::look::states [dict get $step status]] word kind
    set text [remark $step]
    set said [string trim [field $step last_text]]
    if {$said ne "" && [dict get $step status] == 1} {
      append text [expr {$text eq "" ? "" : "\n"}] "last said: $said"
    }
    if {$text eq ""} { return [::look::detail text ""] }
    set text "$::look::sign($kind) Step [expr {$position + 1}], [dict get $step name], $word: $text"
    # The list above needs its place, too; all of it stands among what happened.
    if {[string length $text] > 500} { set text "[string range $text 0 499] \u2026" }
    ::look::detail [expr {$kind in {bad warn} ? $kind : "text"}] $text
  }

  # Says in the list of what happened why a step didn't end well.
  proc reportEnd {position step word} {
    set sentence "Step [expr {$position + 1}], [dict get $step name], has $word"
    set reason [string trim [dict get $step reason]]
    report bad [expr {$reason eq "" ? "$sentence." : "$sentence: $reason"}]
  }

  proc stepTime {step} {
    set begin [dict get $step started]
    if {$begin <= 0} { return "" }
    set end [dict get $step ended]
    return [duration [expr {($end > 0 ? $end : [clock seconds]) - $begin}]]
  }

  # The times of the steps that run go on between two changes of the state.
  proc showTimes {} {
    variable steps
    variable list
    set position 0
    foreach step $steps {
      if {[dict get $step status] == 1 && [$list exists $position]} {
        $list set $position time [stepTime $step]
      }
      incr position
    }
  }

  proc showProgress {state} {
    variable steps
    variable finished
    variable started
    set total [llength $steps]
    array set count {waiting 0 running 0 finished 0 failed 0 crashed 0 stopped 0}
    foreach step $steps {
      incr count([lindex [dict get $::look::states [dict get $step status]] 0])
    }
    set ended [expr {$total - $count(waiting) - $count(running)}]
    .header.done configure -maximum [expr {max(1, $total)}] -value $ended
    set parts {}
    foreach word {running waiting finished failed crashed stopped} {
      if {$count($word) > 0} { lappend parts "$count($word) $word" }
    }
    set steps_ [expr {$total == 1 ? "1 step" : "$total steps"}]
    .header.what configure -text \
        "[dict get $state host]   \u00b7   $steps_: [join $parts {, }]"
    set started [expr {int([dict get $state started])}]
    set finished [expr {$total > 0 && $ended == $total}]
    set bad [expr {$count(failed) + $count(crashed)}]
    set style [expr {$bad > 0 ? "Bad." : $count(stopped) > 0 ? "Warn." : $finished ? "Good." : ""}]
    .header.done configure -style ${style}Horizontal.TProgressbar
    if {$finished} {
      set last $started
      foreach step $steps { set last [expr {max($last, [dict get $step ended])}] }
      .header.elapsed configure -text [duration [expr {$last - $started}]]
      .footer.stop state disabled
      .footer.text configure -text [expr {$bad > 0 ? \
          "All steps have ended, $bad of them not well: choose one in the list to read why." : \
          "All steps have ended."}]
    }
  }

  # --- the log ----------------------------------------------------------------------------------

  proc followLog {file} {
    variable otherLog
    if {$::tail::path ni [list "" $file]} { set otherLog [list $::tail::path $::tail::title] }
    ::tail::follow $file "Log of [file tail $file]"
  }

  # From the tool's log to the output of the steps, and back.
  proc changeLog {} {
    variable otherLog
    if {$otherLog eq ""} return
    lassign $otherLog file title
    set otherLog [list $::tail::path $::tail::title]
    ::tail::follow $file $title
  }

  # --- what the user may do --------------------------------------------------------------------

  # A stop in the middle of a launch waits until that is through.
  proc stop {} {
    variable updating
    variable asking
    if {$updating} {
      after 100 ::taskWindow::stop
      return
    }
    if {$asking} return
    set asking 1
    catch {stop_task} answer
    set asking 0
    if {$answer eq "yes"} { report warn "The task was stopped from this window." }
    catch {showState}
  }

  # Closing the window never ends a running task by the way.
  proc close {} {
    variable finished
    variable asking
    if {$asking} return
    set asking 1
    if {$finished} {
      set choice [::look::ask "Close the task?" \
          "All steps have ended. Closing ends the task daemon; an interface can't ask it for\
           anything after that." {"Close" exit "Keep open" no}]
    } else {
      set choice [::look::ask "The task is still running" \
          "The window can be put away; the task goes on and an interface can join it at any time.\
           Ending the daemon leaves the running tools to themselves, and nothing that waits\
           will be started." {"End the daemon" exit "Put away" away "Cancel" no}]
    }
    set asking 0
    switch $choice {
      exit { exit_taskmanagerc }
      away { wm iconify . }
    }
  }
}

# --- what the program calls ---------------------------------------------------------------------

proc task_manager_receive_message {args} {
  lassign [::vocabulary::explain [join $args " "]] kind sentence
  ::taskWindow::report $kind $sentence
}

proc task_manager_update_ratio {args} {
  .header.values configure -text \
      "last values of the solver: [clock format [clock seconds] -format %H:%M:%S]"
}

proc task_manager_init_tail {file} { ::taskWindow::followLog $file }

proc task_manager_update_tail {args} { ::tail::update_ }

# 1 when the user agrees. The task is supervised on while the question stands.
proc confirm {text args} {
  return [::look::ask "Stop the task?" \
      "[string totitle [string trim $text] 0 0]: every running step is ended at once, and no other\
       is started." {"Stop the task" 1 "Keep running" 0}]
}

# Tells a failure without holding anything up.
proc okMessage {text args} { ::taskWindow::alarm [string trim $text] }

# Errors of timers and bindings go to the list of what happened, not into a dialog.
proc bgerror {text} { catch {::taskWindow::report bad "Internal error of the window: $text"} }

::look::window
after 1 ::taskWindow::beat
after 1 ::taskWindow::tick
