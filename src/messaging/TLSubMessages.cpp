// The bodies of the simple types on the wire.
#include "messaging/TLCountedString.h"
#include "messaging/TLSubMessageArray.h"
#include "messaging/TLSubMessageFloat.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageReal.h"
#include "messaging/TLSubMessageString.h"
#include "messaging/TLVirtualMachine.h"

namespace {

bool packValues(const std::int32_t* values, std::int32_t count) {
  return TL_virtual_machine_pack_int(values, count) != 0;
}
bool packValues(const float* values, std::int32_t count) {
  return TL_virtual_machine_pack_float(values, count) != 0;
}
bool packValues(const double* values, std::int32_t count) {
  return TL_virtual_machine_pack_double(values, count) != 0;
}

bool unpackValue(std::int32_t* value) {
  return TL_virtual_machine_unpack_int(value) != 0;
}
bool unpackValue(float* value) {
  return TL_virtual_machine_unpack_float(value, 1) != 0;
}
bool unpackValue(double* value) {
  return TL_virtual_machine_unpack_double(value) != 0;
}

}  // namespace

bool TLSubMessageInteger::unpack() {
  return unpackValue(&value);
}
bool TLSubMessageInteger::pack() const {
  return packValues(&value, 1);
}

bool TLSubMessageFloat::unpack() {
  return unpackValue(&value);
}
bool TLSubMessageFloat::pack() const {
  return packValues(&value, 1);
}

bool TLSubMessageReal::unpack() {
  return unpackValue(&value);
}
bool TLSubMessageReal::pack() const {
  return packValues(&value, 1);
}

bool TLSubMessageString::unpack() {
  return unpackCountedString(text);
}
bool TLSubMessageString::pack() const {
  return packCountedString(text);
}

template <class T>
bool TLSubMessageArray<T>::unpack() {
  std::int32_t announced = 0;
  if (!unpackValue(&announced)) return false;
  const auto most = TL_virtual_machine_message_size() / static_cast<std::int32_t>(sizeof(T));
  if (announced < 1 || announced > most) return false;
  received_ = std::make_shared<T[]>(announced);
  values = received_.get();
  count = announced;
  return unpackValue(values);
}

template <class T>
bool TLSubMessageArray<T>::pack() const {
  if (count < 0 || (count > 0 && values == nullptr)) return false;
  return packValues(&count, 1) && (count == 0 || packValues(values, count));
}

template class TLSubMessageArray<std::int32_t>;
template class TLSubMessageArray<float>;
template class TLSubMessageArray<double>;
