# Fonts, colours and the window itself. States differ by sign as well as by colour.

namespace eval ::look {
  variable paper  #ffffff
  variable ink    #1f2933
  variable ground #f3f5f7
  variable edge   #cfd6dd
  variable faint  #66727f
  variable accent #1b5e9b
  variable colour
  variable sign
  array set colour {good #1a7f37 bad #c4231c warn #a15c00 info #1b5e9b text #1f2933 idle #66727f}
  array set sign {good \u2714 bad \u2716 warn \u25b2 info \u25cf text \u203a idle \u25cb}

  # status of a step: word, kind
  variable states {
    0 {waiting idle}
    1 {running info}
    2 {finished good}
    3 {failed bad}
    4 {crashed bad}
    5 {stopped warn}
  }

  proc fonts {} {
    foreach {name family size weight} {
      TkDefaultFont sans 10 normal TkTextFont sans 10 normal TkHeadingFont sans 9 bold
      TkMenuFont sans 10 normal TkFixedFont mono 10 normal
    } {
      font configure $name -family [family $family] -size $size -weight $weight
    }
    font create TitleFont -family [family sans] -size 16 -weight bold
    font create StrongFont -family [family sans] -size 10 -weight bold
  }

  proc family {kind} {
    set wishes [dict get {
      sans {"DejaVu Sans" "Liberation Sans" "Noto Sans" Helvetica}
      mono {"DejaVu Sans Mono" "Liberation Mono" "Noto Sans Mono" Courier}
    } $kind]
    set present [font families]
    foreach wish $wishes { if {$wish in $present} { return $wish } }
    return [lindex $wishes end]
  }

  proc styles {} {
    variable paper; variable ink; variable ground; variable edge; variable faint; variable accent
    variable colour
    ttk::style theme use clam
    . configure -background $ground
    ttk::style configure . -background $ground -foreground $ink -font TkDefaultFont \
        -bordercolor $edge -lightcolor $ground -darkcolor $ground -troughcolor $ground \
        -focuscolor $accent
    ttk::style configure TFrame -background $ground
    ttk::style configure Card.TFrame -background $paper -bordercolor $edge -borderwidth 1 -relief solid
    ttk::style configure Title.TLabel -font TitleFont
    ttk::style configure Faint.TLabel -foreground $faint
    ttk::style configure Detail.TLabel -background #eef2f6 -padding {8 6}
    ttk::style configure Section.TLabel -font StrongFont
    ttk::style configure Banner.TFrame -background #fdecea
    ttk::style configure Banner.TLabel -background #fdecea -foreground #8c1d18
    ttk::style configure TButton -padding {14 6} -background $paper
    ttk::style map TButton -background [list disabled $ground active #e6edf4]
    ttk::style configure Danger.TButton -foreground #c4231c
    ttk::style map Danger.TButton -foreground [list disabled #b3bac1]
    ttk::style configure TScrollbar -background #dde3e9 -arrowcolor $faint -gripcount 0
    ttk::style configure Treeview -background $paper -fieldbackground $paper -foreground $ink \
        -rowheight [expr {[font metrics TkDefaultFont -linespace] + 8}] -borderwidth 0
    ttk::style configure Treeview.Heading -background $ground -foreground $faint -relief flat \
        -padding {2 4}
    ttk::style map Treeview -background [list selected #dbe8f4] -foreground {}
    foreach {name tint} [list "" $accent Good. $colour(good) Bad. $colour(bad) Warn. $colour(warn)] {
      ttk::style configure ${name}Horizontal.TProgressbar -background $tint \
          -troughcolor #e1e7ed -bordercolor #e1e7ed -lightcolor $tint -darkcolor $tint -thickness 6
    }
    ttk::style configure Sash -sashthickness 8 -gripcount 0
    option add *Dialog.background $ground
  }

  proc window {} {
    fonts
    styles
    wm title . "Task"
    wm geometry . [expr {min(1180, [winfo screenwidth .] - 40)}]x[expr \
        {min(760, [winfo screenheight .] - 40)}]
    wm minsize . [expr {min(860, [winfo screenwidth .])}] [expr {min(600, [winfo screenheight .])}]
    header .header
    banner .banner
    ttk::panedwindow .body -orient vertical
    ttk::panedwindow .body.upper -orient horizontal
    steps .body.upper.steps
    residuals .body.upper.residuals
    ttk::panedwindow .body.lower -orient horizontal
    reports .body.lower.reports
    log .body.lower.log
    .body add .body.upper -weight 1
    .body.upper add .body.upper.steps -weight 1
    .body add .body.lower -weight 2
    .body.lower add .body.lower.reports -weight 3
    .body.lower add .body.lower.log -weight 2
    footer .footer
    grid .header -row 0 -column 0 -sticky ew -padx 16 -pady {14 6}
    grid .body   -row 2 -column 0 -sticky nsew -padx 16 -pady 4
    grid .footer -row 3 -column 0 -sticky ew -padx 16 -pady {6 12}
    grid rowconfigure . 2 -weight 1
    grid columnconfigure . 0 -weight 1
    wm protocol . WM_DELETE_WINDOW ::taskWindow::close
    foreach {words text sequences command} [keys] {
      foreach sequence $sequences { bind . $sequence $command }
    }
  }

  # Every key: its words, what it does, the events, the command. F1 shows them.
  proc keys {} {
    return {
      F1 "shows the keys" {<F1>} ::look::showKeys
      Alt-1 "goes to the steps; Up and Down choose one, its details stand below the list" {<Alt-Key-1>}
      {::look::goTo .body.upper.steps.card.list}
      Alt-2 "goes to what happened" {<Alt-Key-2>} {::look::goTo .body.lower.reports.card.text.text}
      Alt-3 "goes to the log" {<Alt-Key-3>} {::look::goTo .body.lower.log.card.text.text}
      "Home, End" "in a text: its beginning, its end; at the end it goes on growing in sight" {} {}
      Ctrl-C "copies what is selected in a text" {} {}
      Ctrl-L "shows the other log: the tool's own, or the output of all steps"
      {<Control-l>} ::taskWindow::changeLog
      "Ctrl-plus, Ctrl-minus" "letters larger, smaller"
      {<Control-plus> <Control-KP_Add> <Control-equal>} {::look::resizeLetters 1}
      "" "" {<Control-minus> <Control-KP_Subtract>} {::look::resizeLetters -1}
      Alt-S "stops the task, after a question" {<Alt-s>} {.footer.stop invoke}
      "Alt-C, Ctrl-W, Ctrl-Q" "closes the window or puts it away; a running task goes on"
      {<Alt-c> <Control-w> <Control-q>} ::taskWindow::close
    }
  }

  proc showKeys {} {
    set lines {}
    foreach {words text sequences command} [keys] {
      if {$words ne ""} { lappend lines $words $text }
    }
    tell "Keys" $lines
  }

  proc goTo {path} {
    focus $path
    if {[winfo class $path] ne "Treeview"} return
    if {[$path focus] eq "" && [$path exists 0]} { $path focus 0 }
    if {[$path selection] eq "" && [$path focus] ne ""} { $path selection set [$path focus] }
  }

  # All letters of the window, between small ones and those for a big room.
  proc resizeLetters {by} {
    if {$by + [font configure TkDefaultFont -size] ni {8 9 10 11 12 13 14 15 16}} return
    foreach name {TkDefaultFont TkTextFont TkHeadingFont TkFixedFont TitleFont StrongFont} {
      font configure $name -size [expr {[font configure $name -size] + $by}]
    }
    styles
    reportColumns
    stepColumns
  }

  proc header {path} {
    ttk::frame $path
    ttk::label $path.name -style Title.TLabel -text "Task" -anchor w
    ttk::label $path.elapsed -style Title.TLabel -text "0:00:00" -anchor e
    ttk::label $path.what -style Faint.TLabel -text "starting \u2026" -anchor w
    ttk::label $path.values -style Faint.TLabel -anchor e
    ttk::progressbar $path.done -orient horizontal -maximum 1
    grid $path.name $path.elapsed -sticky ew
    grid $path.what $path.values -sticky ew -pady {2 8}
    grid $path.done -columnspan 2 -sticky ew
    grid columnconfigure $path 0 -weight 1
  }

  # A line for failures that need attention; shows itself when there is one.
  proc banner {path} {
    ttk::frame $path -style Banner.TFrame -padding {10 6}
    ttk::label $path.text -style Banner.TLabel -wraplength 800 -justify left
    ttk::button $path.close -text "Dismiss" -command [list grid remove $path]
    grid $path.text $path.close -sticky ew
    grid columnconfigure $path 0 -weight 1
    grid $path -row 1 -column 0 -sticky ew -padx 16 -pady 4
    grid remove $path
    bind $path <Configure> [list ::look::wrapBanner $path %w]
  }

  proc wrapBanner {path width} {
    $path.text configure -wraplength [expr {max(200, $width - 140)}]
  }

  proc section {path title} {
    ttk::frame $path
    ttk::label $path.title -style Section.TLabel -text $title -anchor w
    ttk::frame $path.card -style Card.TFrame -padding 1
    grid $path.title -row 0 -column 0 -sticky ew -pady {4 4}
    grid $path.card -row 1 -column 0 -sticky nsew
    grid rowconfigure $path 1 -weight 1
    grid columnconfigure $path 0 -weight 1
    grid rowconfigure $path.card 0 -weight 1
    grid columnconfigure $path.card 0 -weight 1
    return $path.card
  }

  proc steps {path} {
    variable colour
    set card [section $path "Steps"]
    ttk::treeview $card.list -columns {name state host started time remark} -show headings \
        -selectmode browse -height 4 -yscrollcommand [list ::growingText::scrolled $card.y]
    ttk::scrollbar $card.y -orient vertical -command [list $card.list yview]
    stepColumns
    ttk::label $card.detail -style Detail.TLabel -justify left -anchor nw
    grid $card.detail -row 1 -column 0 -columnspan 2 -sticky ew
    grid remove $card.detail
    bind $card.detail <Configure> {%W configure -wraplength [expr {%w - 20}]}
    bind $card.list <<TreeviewSelect>> ::taskWindow::showDetail
    bind $card.list <Configure> {if {[%W selection] ne ""} { %W see [lindex [%W selection] 0] }}
    foreach kind [array names colour] { $card.list tag configure $kind -foreground $colour($kind) }
    $card.list tag configure text -font TkDefaultFont
    grid $card.list -row 0 -column 0 -sticky nsew
    grid $card.y -row 0 -column 1 -sticky ns
  }

  # Widths by the letters in use; the last column takes what is left.
  proc stepColumns {} {
    set list .body.upper.steps.card.list
    foreach {column title sample stretch} {
      name Step MMMMMMMMMM 0 state State "MM finished" 0 host Host MMMMMMMM 0
      started Started "00:00:00 " 0 time Time "000:00:00 " 0 remark Remark MMMMMMMM 1
    } {
      set width [expr {[font measure TkDefaultFont $sample] + 12}]
      $list heading $column -text $title -anchor w
      $list column $column -width $width -minwidth $width -stretch $stretch -anchor w
    }
  }

  # Shows `text` below the list of the steps; nothing takes the place away.
  proc detail {kind text} {
    variable colour
    set label .body.upper.steps.card.detail
    if {$text eq ""} {
      grid remove $label
      return
    }
    $label configure -text $text -foreground $colour($kind)
    grid $label
  }

  proc reports {path} {
    variable colour
    set card [section $path "What happened"]
    ::growingText::make $card.text TkDefaultFont 5000
    grid $card.text -sticky nsew
    foreach kind [array names colour] { $card.text.text tag configure $kind -foreground $colour($kind) }
    $card.text.text tag configure dim -foreground $::look::faint
    reportColumns
  }

  proc reportColumns {} {
    variable colour
    set text .body.lower.reports.card.text.text
    # time, sign, sentence stand in columns; a wrapped sentence goes on under its beginning.
    set sentence [expr {8 + [font measure TkDefaultFont "00:00:00"] + 36}]
    $text configure -wrap word -spacing1 2 -spacing3 1 -tabs \
        [list [expr {$sentence - 24}] $sentence]
    foreach tag [concat [array names colour] dim said] {
      $text tag configure $tag -lmargin2 $sentence
    }
  }

  proc log {path} {
    set card [section $path "Log"]
    ::growingText::make $card.text TkFixedFont 5000
    grid $card.text -row 0 -column 0 -sticky nsew
    $card.text.text tag configure dim -foreground $::look::faint
    set ::tail::view $card.text
    ::growingText::add $card.text [list "No log is followed yet." dim]
  }

  proc logTitle {text} { .body.lower.log.title configure -text $text }

  proc residuals {path} {
    set card [section $path "Residuals"]
    if {[::plot::make $card.plot]} { grid $card.plot -sticky nsew -padx 4 -pady 4 }
  }

  # Gives the plot its place beside the steps, at the first values.
  proc showPlot {} {
    if {".body.upper.residuals" in [.body.upper panes]} return
    .body.upper add .body.upper.residuals -weight 1
    update idletasks
    .body.upper sashpos 0 [expr {[winfo width .body.upper] * 3 / 5}]
  }

  proc footer {path} {
    ttk::frame $path
    ttk::label $path.text -style Faint.TLabel -anchor w
    ttk::button $path.keys -text "Keys (F1)" -command ::look::showKeys
    ttk::button $path.stop -text "Stop the task \u2026" -style Danger.TButton -underline 0 \
        -command ::taskWindow::stop
    ttk::button $path.close -text "Close" -underline 0 -command ::taskWindow::close
    grid $path.text $path.keys $path.stop $path.close -sticky ew
    grid configure $path.stop -padx 8
    grid columnconfigure $path 0 -weight 1
  }

  # An empty dialog before the window: its contents go into $path.f, below the title.
  proc dialog {path title} {
    toplevel $path -class Dialog -background $::look::ground -highlightthickness 1 \
        -highlightbackground $::look::edge -highlightcolor $::look::edge
    wm title $path $title
    wm transient $path .
    wm resizable $path 0 0
    ttk::frame $path.f -padding 20
    ttk::label $path.f.title -style Section.TLabel -text $title
  }

  # Shows pairs of a name and its meaning; stays beside the window until it is closed.
  proc tell {title pairs} {
    set path .tell
    destroy $path
    dialog $path $title
    grid $path.f.title -sticky w -pady {0 8}
    set row 0
    foreach {name text} $pairs {
      ttk::label $path.f.n$row -style Section.TLabel -text $name
      ttk::label $path.f.t$row -text $text -wraplength 460 -justify left
      grid $path.f.n$row $path.f.t$row -sticky nw -pady 3 -padx {0 24}
      incr row
    }
    ttk::button $path.f.close -text "Close" -command [list destroy $path]
    grid $path.f.close -columnspan 2 -sticky e -pady {12 0}
    grid $path.f
    foreach key {<Escape> <Return> <F1>} { bind $path $key [list destroy $path] }
    ::tk::PlaceWindow $path widget .
    focus $path.f.close
  }

  # Asks and answers the value of the button chosen. `choices` is a list of text and value; the
  # last one is also what Escape and closing the dialog mean.
  proc ask {title text choices} {
    set path .ask
    if {[winfo exists $path]} { return [lindex $choices end] }
    variable answer
    dialog $path $title
    ttk::label $path.f.text -text $text -wraplength 420 -justify left
    ttk::frame $path.f.buttons
    grid $path.f.title -sticky w
    grid $path.f.text -sticky w -pady {8 16}
    grid $path.f.buttons -sticky e
    grid $path.f
    set other [lindex $choices end]
    set column 0
    foreach {label value} $choices {
      set button $path.f.buttons.b$column
      ttk::button $button -text $label -command [list set ::look::answer $value]
      grid $button -row 0 -column $column -padx {8 0}
      incr column
    }
    wm protocol $path WM_DELETE_WINDOW [list set ::look::answer $other]
    bind $path <Escape> [list set ::look::answer $other]
    bind $path <Return> {if {[winfo class [focus]] eq "TButton"} {[focus] invoke}}
    ::tk::PlaceWindow $path widget .
    focus $button
    set answer ""
    vwait ::look::answer
    set chosen $answer
    destroy $path
    return $chosen
  }
}
