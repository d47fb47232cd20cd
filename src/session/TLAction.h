#pragma once

#include "textio/RefCounted.h"

/// A piece of deferred work of the session.
class TLAction : public RefCounted {
 public:
  /// Does the work; called once, on the session's thread.
  virtual void run() = 0;
};
