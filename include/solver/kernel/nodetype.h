#pragma once

#include <cstdint>

namespace quvex {

/// What a node's cell holds.
enum class Domain : std::uint8_t { Boolean = 0, Integer = 1, Double = 2, Array = 3 };

/// The node types, numbered from 0 in the order of the table nodetypes.def.
enum class NodeType : std::uint8_t {
#define QUVEX_NODE(Type, Text, DomainName, Class) Type,
#define QUVEX_AGGREGATE(Type, Text, DomainName, Class) Type,
#include "solver/kernel/nodetypes.def"
#undef QUVEX_NODE
#undef QUVEX_AGGREGATE
};

inline constexpr unsigned kNbNodeTypes = 61;

/// Sources need no operand: decisions and constants. Their rank is 0.
[[nodiscard]] constexpr bool isSource(NodeType type) {
  return type == NodeType::Boolean || type == NodeType::Integer || type == NodeType::Constant ||
         type == NodeType::ConstArray || type == NodeType::DoubleConstant;
}

[[nodiscard]] constexpr bool isDecision(NodeType type) {
  return type == NodeType::Boolean || type == NodeType::Integer;
}

}  // namespace quvex
