# A read-only text that only grows at its end: reports and logs. Lines are collected and go in
# together, a few times a second, so that a flood of them costs little; the oldest go when there
# are too many. The newest line stays in sight as long as the user hasn't scrolled away from it.

namespace eval ::growingText {
  variable interval 200
  variable longestLine 2000
  variable pending
  variable keep
  variable sticks
  array set pending {}
  array set keep {}
  array set sticks {}

  # Makes the widget `path` with a scroll bar. `lines` is how many are kept.
  proc make {path font lines} {
    variable pending
    variable keep
    ttk::frame $path
    text $path.text -font $font -wrap none -state disabled -relief flat -borderwidth 0 \
        -highlightthickness 0 -padx 8 -pady 6 -background $::look::paper -foreground $::look::ink \
        -insertwidth 0 -cursor arrow -takefocus 1 -exportselection 1 -width 20 -height 6 \
        -yscrollcommand [list ::growingText::scrolled $path.y] \
        -xscrollcommand [list ::growingText::scrolled $path.x]
    ttk::scrollbar $path.y -orient vertical -command [list ::growingText::scroll $path]
    ttk::scrollbar $path.x -orient horizontal -command [list $path.text xview]
    grid $path.text -row 0 -column 0 -sticky nsew
    grid $path.y -row 0 -column 1 -sticky ns
    grid $path.x -row 1 -column 0 -sticky ew
    grid rowconfigure $path 0 -weight 1
    grid columnconfigure $path 0 -weight 1
    bind $path.text <Button-1> {focus %W}
    bind $path.text <Configure> [list ::growingText::stick $path]
    foreach moved {<Button-4> <Button-5> <MouseWheel> <Key> <B1-Motion>} {
      bind $path.text $moved [list after idle [list ::growingText::look $path]]
    }
    variable sticks
    set sticks($path) 1
    set pending($path) {}
    set keep($path) $lines
    return $path
  }

  proc scroll {path args} {
    $path.text yview {*}$args
    look $path
  }

  # After a movement of the user's: whether the end is in sight and shall stay so.
  proc look {path} {
    variable sticks
    if {[winfo exists $path]} { set sticks($path) [expr {[lindex [$path.text yview] 1] >= 1.0}] }
  }

  proc stick {path} {
    variable sticks
    if {$sticks($path)} { $path.text yview moveto 1.0 }
  }

  # A scroll bar shows only while there is something to scroll.
  proc scrolled {bar first last} {
    $bar set $first $last
    if {$first <= 0.0 && $last >= 1.0} { grid remove $bar } else { grid $bar }
  }

  # Adds one line made of `parts`, a list of text and tag in turn.
  proc add {path parts} {
    variable pending
    variable interval
    if {[llength $pending($path)] == 0} {
      after $interval [list ::growingText::flush $path]
    }
    lappend pending($path) $parts
  }

  proc clear {path} {
    variable pending
    set pending($path) {}
    $path.text configure -state normal
    $path.text delete 1.0 end
    $path.text configure -state disabled
  }

  proc flush {path} {
    variable pending
    variable keep
    if {![winfo exists $path]} return
    set lines $pending($path)
    set pending($path) {}
    if {[llength $lines] == 0} return
    # What would be removed again at once doesn't go in at all.
    if {[llength $lines] > $keep($path)} { set lines [lrange $lines end-[expr {$keep($path) - 1}] end] }
    set text $path.text
    set insert [list $text insert end]
    set break [expr {[$text compare end-1c > 1.0] ? "\n" : ""}]
    foreach line $lines {
      if {$break ne ""} { lappend insert $break {} }
      foreach {part tag} $line { lappend insert [printable $part] $tag }
      set break "\n"
    }
    $text configure -state normal
    {*}$insert
    set tooMany [expr {int([$text index end-1c]) - $keep($path)}]
    if {$tooMany > 0} { $text delete 1.0 [expr {$tooMany + 1}].0 }
    $text configure -state disabled
    stick $path
  }

  # Control signs and endless lines would make a text unreadable and slow.
  proc printable {text} {
    variable longestLine
    if {[string length $text] > $longestLine} {
      set text "[string range $text 0 [expr {$longestLine - 1}]] \u2026"
    }
    return [regsub -all {[\u0000-\u0008\u000a-\u001f\u007f]} $text " "]
  }
}

# The end of a log file that a tool is still writing.
namespace eval ::tail {
  variable atOnce 262144
  variable path ""
  variable channel ""
  variable inode 0
  variable rest ""
  variable view ""
  variable title ""

  proc follow {file name} {
    variable path
    variable rest
    variable view
    variable title
    stop
    set path $file
    set title $name
    set rest ""
    ::growingText::clear $view
    ::look::logTitle $title
  }

  proc stop {} {
    variable channel
    if {$channel ne ""} { catch {close $channel} }
    set channel ""
  }

  # Takes over what the file has gained. A file that isn't there yet, was cut or replaced is looked
  # for again, from its beginning.
  proc update_ {} {
    variable path
    variable channel
    variable inode
    variable atOnce
    if {$path eq ""} return
    if {[catch {file stat $path info}]} { stop; return }
    if {$channel ne "" && ($info(ino) != $inode || $info(size) < [tell $channel])} { stop }
    if {$channel eq ""} {
      if {$info(type) ne "file" || [catch {open $path r} opened]} return
      set channel $opened
      set inode $info(ino)
      fconfigure $channel -translation lf -encoding utf-8
    }
    if {$info(size) - [tell $channel] > 4 * $atOnce} { skip [expr {$info(size) - $atOnce}] }
    seek $channel 0 current
    take [read $channel $atOnce]
  }

  proc skip {position} {
    variable channel
    variable rest
    variable view
    seek $channel $position
    set rest ""
    ::growingText::add $view [list "\u2026 (part of the log is not shown)" dim]
  }

  proc take {text} {
    variable rest
    variable view
    if {$text eq ""} return
    set lines [split [string map {"\r\n" "\n" "\r" "\n"} $rest$text] "\n"]
    set rest [lindex $lines end]
    foreach line [lrange $lines 0 end-1] { ::growingText::add $view [list $line {}] }
    # A line that never ends is shown in pieces.
    if {[string length $rest] > $::growingText::longestLine} {
      ::growingText::add $view [list $rest {}]
      set rest ""
    }
  }
}
