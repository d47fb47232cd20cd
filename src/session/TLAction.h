#pragma once

#include "textio/RefCounted.h"

/// A piece of deferred work of the session.
class TLAction : public RefCounted {
 public:
  virtual void run() = 0;
};
