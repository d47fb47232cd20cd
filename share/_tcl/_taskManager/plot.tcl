# The residuals of the running solver, drawn as they come. The program puts their points into the
# array ::tl_series because ::tl_series_wanted is set: per residual the position of the first point,
# then x and y in turn. They are taken out of it here.

namespace eval ::plot {
  variable graph ""
  variable number
  variable smallest Inf
  variable largest -Inf
  variable mostPoints 20000
  variable colours {#1b5e9b #c4231c #1a7f37 #a15c00 #7b3fa0 #00788a #9c2c6b #5a5f66}
  array set number {}

  # Makes the graph `path`; 0 without the extension that draws.
  proc make {path} {
    variable graph
    if {[info commands ::blt::graph] eq ""} { return 0 }
    set graph $path
    blt::graph $path -plotbackground $::look::paper -background $::look::paper -borderwidth 0 \
        -plotborderwidth 0 -plotrelief flat -font TkDefaultFont -width 300 -height 160 \
        -highlightthickness 0
    foreach axis {x y} {
      $path axis configure $axis -tickfont TkDefaultFont -titlefont TkDefaultFont \
          -color $::look::faint -titlecolor $::look::faint -background $::look::paper -linewidth 1
    }
    $path axis configure x -title iteration -subdivisions 2
    $path axis configure y -title {} -logscale yes
    $path legend configure -position right -anchor n -font TkDefaultFont -borderwidth 0 \
        -background $::look::paper -foreground $::look::ink -padx 4 -relief flat
    $path grid configure -hide no -color $::look::edge -dashes {} -minor no
    set ::tl_series_wanted 1
    return 1
  }

  # Draws what has arrived. True when something has.
  proc update_ {} {
    variable graph
    if {$graph eq "" || ![array exists ::tl_series]} { return 0 }
    set arrived [array get ::tl_series]
    unset ::tl_series
    foreach {name points} $arrived { take $name $points }
    return [expr {[llength $arrived] > 0}]
  }

  proc take {name points} {
    variable graph
    variable smallest
    variable largest
    set n [line $name]
    set first [lindex $points 0]
    if {$first == 0} {
      x$n set {}
      y$n set {}
    }
    set xs {}
    set ys {}
    foreach {x y} [lrange $points 1 end] {
      lappend xs $x
      lappend ys $y
      if {$y < $smallest} { set smallest $y }
      if {$y > $largest} { set largest $y }
    }
    x$n append $xs
    y$n append $ys
    thin $n
    # What isn't above zero has no place on a logarithmic axis, and a narrow range no numbers on it.
    $graph axis configure y -logscale [expr {$smallest > 0 && $largest > 20 * $smallest}]
  }

  proc line {name} {
    variable graph
    variable number
    variable colours
    if {[info exists number($name)]} { return $number($name) }
    set n [array size number]
    set number($name) $n
    blt::vector create ::plot::x$n
    blt::vector create ::plot::y$n
    $graph element create line$n -label $name -xdata ::plot::x$n -ydata ::plot::y$n -symbol none \
        -linewidth 2 -color [lindex $colours [expr {$n % [llength $colours]}]]
    return $n
  }

  # A long history keeps every second point.
  proc thin {n} {
    variable mostPoints
    if {[x$n length] <= $mostPoints} return
    foreach vector [list x$n y$n] {
      set kept {}
      foreach {value skipped} [$vector range 0 end] { lappend kept $value }
      $vector set $kept
    }
  }
}
