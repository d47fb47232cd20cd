#pragma once

struct Tcl_Interp;

/// Owner of one script interpreter.
class TCLInterp {
 public:
  TCLInterp();
  virtual ~TCLInterp();
  TCLInterp(const TCLInterp&) = delete;
  TCLInterp& operator=(const TCLInterp&) = delete;

  /// The interpreter, for calls of the script library; lives as long as this object.
  Tcl_Interp* get() const { return interp_; }

 private:
  Tcl_Interp* interp_ = nullptr;
};
