# Start-up script of the name "kelMark": stands in for the script of that program.
set startName kelMark
set startScript kelmark.tcl
source [file join [file dirname [info script]] placeholder.tcl]
