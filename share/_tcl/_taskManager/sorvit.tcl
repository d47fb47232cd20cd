# Start-up script of the name "sorvit": stands in for the script of that program.
set startName sorvit
set startScript sorvit.tcl
source [file join [file dirname [info script]] placeholder.tcl]
