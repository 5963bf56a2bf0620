#pragma once

#include <string>

#include "solver/kernel/nodetype.h"
#include "solver/kernel/types.h"

namespace quvex {

class DagFixedFields;

/// The value range of a node: integers or bits of doubles, by the node's domain.
struct Bounds {
  t_value min = 0;
  t_value max = 0;

  [[nodiscard]] static Bounds ofDoubles(double min, double max) { return {doubleToWord(min), doubleToWord(max)}; }
  friend bool operator==(const Bounds&, const Bounds&) = default;
};

/// What depends on a node's type alone. A code outside the table raises "Unknown node type <code>".
class NodeTypeUtils {
 public:
  static constexpr const char* kName = "quvex::NodeTypeUtils";

  /// The type's name, such as "scalar_sum".
  [[nodiscard]] static std::string toString(NodeType type);
  /// "constant" looks at its value, "if" at the domains of its branches; all others go by the table.
  [[nodiscard]] static Domain getDomainValue(const DagFixedFields& fixed, NodeId id);
  /// The operands must have their bounds already. Raises what the operator's own rule raises.
  static void computeBounds(const DagFixedFields& fixed, NodeId id, t_value& min, t_value& max);
};

}  // namespace quvex
