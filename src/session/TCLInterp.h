#pragma once

struct Tcl_Interp;

/// Owner of one script interpreter.
class TCLInterp {
 public:
  TCLInterp();
  virtual ~TCLInterp();
  TCLInterp(const TCLInterp&) = delete;
  TCLInterp& operator=(const TCLInterp&) = delete;

  Tcl_Interp* get() const { return interp_; }

 private:
  Tcl_Interp* interp_ = nullptr;
};
