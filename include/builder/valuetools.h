#pragma once

#include "solver/kernel/types.h"

namespace quvex {

/// Comparison of two value words of one type: boolean, integer or double. Any other type raises KernelException.
class ValueTools {
 public:
  static constexpr const char* kName = "quvex::ValueTools";

  ValueTools() = delete;

  [[nodiscard]] static t_value minValue(ValueType type, t_value a, t_value b);
  [[nodiscard]] static t_value maxValue(ValueType type, t_value a, t_value b);

  /// -1, 0 or 1 for a below, tied with or above b. Doubles within the tolerance, and not-a-numbers, are tied.
  [[nodiscard]] static int compare(ValueType type, t_value a, t_value b);

  /// A word of that type as a double.
  [[nodiscard]] static double toDouble(ValueType type, t_value word) {
    return type == kDouble ? wordToDouble(word) : static_cast<double>(word);
  }
};

}  // namespace quvex
