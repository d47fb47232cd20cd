# Start-up script of the name "velstraTurbo": stands in for the script of that program.
set startName velstraTurbo
set startScript velstraturbo.tcl
source [file join [file dirname [info script]] placeholder.tcl]
