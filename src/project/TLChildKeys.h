#pragma once

#include <string_view>
#include <type_traits>
#include <vector>

#include "textio/Handle.h"
#include "textio/TLKeyTable.h"

/// The record type behind a handle, or behind a list of handles.
template <class T>
struct TLChildOf;
/// That of a single child.
template <class T>
struct TLChildOf<Handle<T>> {
  using Type = T;  ///< The record.
};
/// That of a list of children.
template <class T>
struct TLChildOf<std::vector<Handle<T>>> {
  using Type = T;  ///< The record of one element.
};

/// A new child of `owner`, for the owner's type of project when the child depends on it.
template <class Child, class Owner>
Handle<Child> makeChild(const Owner& owner) {
  if constexpr (std::is_constructible_v<Child, std::int32_t>) {
    return makeHandle<Child>(owner.projectType);
  } else {
    return makeHandle<Child>();
  }
}

/// A single child: a later block of its name replaces it.
template <class Child>
void keepChild(Handle<Child>& place, Handle<Child> child) {
  place = std::move(child);
}
/// A list: children stay in the order of the file.
template <class Child>
void keepChild(std::vector<Handle<Child>>& place, Handle<Child> child) {
  place.push_back(std::move(child));
}

/// Row of a child's block: the child is read, and on success appended to the list `Member` or put
/// in its place. A child that can't be read isn't kept, and ends its owner's read.
template <auto Member, class Record = typename TLMemberTraits<decltype(Member)>::Class>
constexpr TLKey<Record> childKey(std::string_view blockName) {
  return {"tl_begin", blockName, [](Record& record, TLKeyContext& context) {
            using Child = typename TLChildOf<std::remove_cvref_t<decltype(record.*Member)>>::Type;
            auto child = makeChild<Child>(record);
            if (child->read(context.source) == 0) return TLKeyResult::failed;
            keepChild(record.*Member, std::move(child));
            return TLKeyResult::next;
          }};
}

/// A child whose class serves blocks of several names, with the name of its own.
template <class Child>
struct TLNamedChild {
  std::string_view blockName;  ///< a literal, as it is written
  Handle<Child> record;        ///< Never null in a list that was read.
};

/// Row of a child's block that is kept with its name in the list `Member`.
template <auto Member, const auto& Name,
          class Record = typename TLMemberTraits<decltype(Member)>::Class>
constexpr TLKey<Record> namedChildKey() {
  return {"tl_begin", Name, [](Record& record, TLKeyContext& context) {
            using Child = typename TLChildOf<
                std::remove_cvref_t<decltype((record.*Member).front().record)>>::Type;
            auto child = makeHandle<Child>();
            if (child->read(context.source) == 0) return TLKeyResult::failed;
            (record.*Member).push_back({Name, std::move(child)});
            return TLKeyResult::next;
          }};
}

/// A child's block: `indent` and "TL_BEGIN name", its lines, `indent` and "TL_END   name".
template <class Child>
void writeChild(TLTextSink& sink, const Child& child, std::string_view indent,
                std::string_view name) {
  sink << indent << "TL_BEGIN " << name << '\n';
  child.write(sink);
  sink << indent << "TL_END   " << name << '\n';
}
/// Nothing for a null handle.
template <class Child>
void writeChild(TLTextSink& sink, const Handle<Child>& child, std::string_view indent,
                std::string_view name) {
  if (child) writeChild(sink, *child, indent, name);
}
/// One block per child, all of one name.
template <class Child>
void writeChildren(TLTextSink& sink, const std::vector<Handle<Child>>& children,
                   std::string_view indent, std::string_view name) {
  for (const auto& child : children) writeChild(sink, *child, indent, name);
}
/// One block per child, each of its own name.
template <class Child>
void writeChildren(TLTextSink& sink, const std::vector<TLNamedChild<Child>>& children,
                   std::string_view indent) {
  for (const auto& child : children) writeChild(sink, *child.record, indent, child.blockName);
}
