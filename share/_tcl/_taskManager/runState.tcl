# What the program keeps on disk about this run: the steps with their states, times and reasons.
# The file is JSON, replaced as a whole whenever something changed.

namespace eval ::runState {
  variable lastSeen {}
  variable notBefore 0

  proc path {} {
    if {![info exists ::env(TL_PVM_USER_DIR)]} { return "" }
    return [file join $::env(TL_PVM_USER_DIR) task-[pid].json]
  }

  # The state as a dictionary, empty when there is none or it is still the one answered last.
  # Reading a long one is not repeated at once, so that it never takes more than a small part of
  # the time.
  proc changed {} {
    variable lastSeen
    variable notBefore
    set started [clock milliseconds]
    if {$started < $notBefore} { return {} }
    if {[catch {file stat [path] info}]} { return {} }
    set seen [list $info(ino) $info(mtime) $info(size)]
    if {$seen eq $lastSeen} { return {} }
    if {[catch {read_ [path]} state]} { return {} }
    set lastSeen $seen
    set now [clock milliseconds]
    set notBefore [expr {$now + 20 * ($now - $started)}]
    return $state
  }

  proc read_ {path} {
    set channel [open $path r]
    fconfigure $channel -encoding utf-8
    set text [read $channel]
    close $channel
    set position 0
    return [value $text position]
  }

  # The JSON value at `position`: an object as a dictionary, an array as a list.
  proc value {text positionName} {
    upvar 1 $positionName position
    regexp -indices -start $position {\S} $text at
    set position [lindex $at 0]
    switch -- [string index $text $position] {
      "\{" { return [object $text position] }
      "\[" { return [array_ $text position] }
      "\"" { return [string_ $text position] }
    }
    if {![regexp -indices -start $position {\A[-+.\w]+} $text at]} { error "no JSON value" }
    lassign $at first last
    set position [expr {$last + 1}]
    return [string range $text $first $last]
  }

  proc object {text positionName} {
    upvar 1 $positionName position
    set result {}
    incr position
    while {[next $text position "\}"]} {
      set key [string_ $text position]
      regexp -indices -start $position {:} $text at
      set position [expr {[lindex $at 0] + 1}]
      dict set result $key [value $text position]
    }
    return $result
  }

  proc array_ {text positionName} {
    upvar 1 $positionName position
    set result {}
    incr position
    while {[next $text position "\]"]} {
      lappend result [value $text position]
    }
    return $result
  }

  # Moves to the next item; false behind the closing sign.
  proc next {text positionName close} {
    upvar 1 $positionName position
    if {![regexp -indices -start $position {[^\s,]} $text at]} { error "JSON ends early" }
    set position [lindex $at 0]
    if {[string index $text $position] ne $close} { return 1 }
    incr position
    return 0
  }

  proc string_ {text positionName} {
    upvar 1 $positionName position
    if {![regexp -indices -start $position {\A"(?:[^"\\]|\\.)*"} $text at]} {
      error "no JSON string"
    }
    lassign $at first last
    set position [expr {$last + 1}]
    set body [string range $text [expr {$first + 1}] [expr {$last - 1}]]
    if {[string first \\ $body] < 0} { return $body }
    return [subst -nocommands -novariables $body]
  }
}
