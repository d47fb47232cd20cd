# The window of a start-up name whose own script isn't part of this package: says which file to put
# where. `startName` and `startScript` are set by the script that evaluates this one.

foreach part {logView look} {
  source [file join [file dirname [info script]] $part.tcl]
}
::look::fonts
::look::styles

wm title . $startName
wm minsize . 420 200
set place [file join [file dirname [file normalize [info script]]] $startScript]
ttk::frame .f -padding 28
ttk::label .f.title -style Title.TLabel -text "$startName has no window of its own here"
ttk::label .f.text -justify left -wraplength 560 -text \
    "The program was started under the name \u201c$startName\u201d, which evaluates a script and does\
     nothing else. The script of that name is not part of the task manager. Put it in the place of"
ttk::entry .f.place -font TkFixedFont -width [expr {min(90, [string length $place] + 2)}]
.f.place insert 0 $place
.f.place state readonly
ttk::label .f.more -style Faint.TLabel -justify left -wraplength 560 -text \
    "and start again. The daemon of a task is started under the name tltaskmgr."
ttk::button .f.close -text "Close" -command exit_taskmanagerc
grid .f.title -sticky w
grid .f.text -sticky w -pady {12 8}
grid .f.place -sticky ew
grid .f.more -sticky w -pady {8 20}
grid .f.close -sticky e
grid .f -sticky nsew
grid columnconfigure . 0 -weight 1
grid columnconfigure .f 0 -weight 1
bind . <Escape> exit_taskmanagerc
bind . <Return> exit_taskmanagerc
wm protocol . WM_DELETE_WINDOW exit_taskmanagerc
focus .f.close
