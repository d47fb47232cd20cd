#pragma once

#include <memory>

#include "messaging/TLSubMessage.h"

/// An array of `count` values. `values` belongs to whoever set it and must outlive the message and
/// its copies; copies share it. An array that was received is kept alive by the sub-message and its
/// copies together.
///
/// Reading is not the mirror of writing: all values go out, but only the first comes in, the
/// others being 0. So an array of more than one value can only be the last item that a receiver
/// reads correctly.
template <class T>
class TLSubMessageArray : public TLSubMessage {
 public:
  /// False for a count of 0, too.
  bool unpack() override;
  /// The count, then all values.
  bool pack() const override;

  T* values = nullptr;     ///< What is sent; after unpack(), what was received.
  std::int32_t count = 0;  ///< Elements of `values`; for T of 4 or 8 bytes, as the wire has them.

 private:
  std::shared_ptr<T[]> received_;
};

extern template class TLSubMessageArray<std::int32_t>;
extern template class TLSubMessageArray<float>;
extern template class TLSubMessageArray<double>;
