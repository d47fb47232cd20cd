#pragma once

#include <optional>

#include "messaging/TLProcessMessage.h"
#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageString.h"

/// @file
/// Safe looks into the sub-messages of a received message: nothing for a position that isn't there
/// or holds another type.

/// Text of a sub-message, null when it is none.
inline const RWCString* textOf(const TLSubMessage& item) {
  constexpr std::int32_t kString = 7;
  if (item.type() != kString) return nullptr;
  return &static_cast<const TLSubMessageString&>(item).text;
}

/// Number in a sub-message, none when it isn't an integer.
inline std::optional<std::int32_t> integerOf(const TLSubMessage& item) {
  constexpr std::int32_t kInteger = 1;
  if (item.type() != kInteger) return std::nullopt;
  return static_cast<const TLSubMessageInteger&>(item).value;
}

/// Text of the first sub-message; null without.
inline const RWCString* firstText(const TLProcessMessage& message) {
  return message.subMessages.empty() ? nullptr : textOf(*message.subMessages.front());
}

/// Number in the first sub-message; none without.
inline std::optional<std::int32_t> firstInteger(const TLProcessMessage& message) {
  if (message.subMessages.empty()) return std::nullopt;
  return integerOf(*message.subMessages.front());
}

/// Number in the last sub-message; none without.
inline std::optional<std::int32_t> lastInteger(const TLProcessMessage& message) {
  if (message.subMessages.empty()) return std::nullopt;
  return integerOf(*message.subMessages.back());
}

/// A message without sub-messages, to `destination`.
inline void sendEmpty(std::int32_t destination, std::int32_t tag) {
  TLProcessMessage message;
  message.tag = tag;
  message.destination = destination;
  message.send();
}
