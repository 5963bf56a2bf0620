#pragma once

#include <new>
#include <string>
#include <type_traits>

#include "api/qvexception.h"
#include "callbacks.h"
#include "quvexnativenet.h"

/// The form of an exported function: arguments in, result out, and every failure to the client's callback.
namespace quvex::binding {

[[nodiscard]] inline bool isNullText(QvText text) { return text == nullptr; }
template <class Argument>
[[nodiscard]] bool isNullText(Argument) {
  return false;
}

/// Texts go through the client's callback; booleans, enumerations, numbers and pointers go as they are.
template <class Result, class Native>
[[nodiscard]] Result toResult(const Native& value) {
  if constexpr (std::is_same_v<Native, std::string>) {
    return toClientString(value.c_str());
  } else if constexpr (std::is_same_v<Native, const char*>) {
    return toClientString(value);
  } else {
    return static_cast<Result>(value);
  }
}

/// Runs the body of the function `exported`, unless one of its text arguments is null. Returns zero after a failure.
/// Nothing leaves this as an exception.
template <class Result, class Body, class... Arguments>
Result guarded(const char* exported, Body body, Arguments... arguments) noexcept {
  if ((isNullText(arguments) || ...)) {
    reportNullText();
    return Result();
  }
  try {
    if constexpr (std::is_void_v<Result>) {
      return body();
    } else {
      return toResult<Result>(body());
    }
  } catch (const QVException& failure) {
    report(failure, exported);
  } catch (const std::bad_alloc&) {
    reportOutOfMemory(exported);
  } catch (...) {
    reportUnknown(exported);
  }
  return Result();
}

}  // namespace quvex::binding
