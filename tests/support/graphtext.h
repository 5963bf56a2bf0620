#pragma once

#include <map>
#include <string>

#include "api/modelaccess.h"
#include "api/qvmodel.h"
#include "builder/dagbuilder.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/nodetypeutils.h"

namespace quvex {

/// The compiled graph of a closed model as text: "scalar_sum[3,1](d1,d0)". Decisions go by their number in the model
/// and constants by their value, where a double has a point: "2", "2.5", "3.".
class GraphText {
 public:
  explicit GraphText(const QVModel& closedModel)
      : builder(*ModelAccess::dagBuilder(closedModel)), fixed(builder.getFixedFields()) {
    int number = 0;
    for (const QVExpression* decision : ModelAccess::decisions(closedModel)) {
      decisionNames[builder.getNode(decision)] = "d" + std::to_string(number++);
    }
  }

  /// The node of an expression, "-" without one.
  [[nodiscard]] std::string of(const QVExpression* expr) const {
    const NodeId node = builder.getNode(expr);
    return node == kNone ? "-" : ofNode(node);
  }

  [[nodiscard]] std::string ofNode(NodeId id) const {
    const NodeType type = fixed.nodeTypes[id];
    if (type == NodeType::Constant) return std::to_string(fixed.constant(id, 0));
    if (type == NodeType::DoubleConstant) return doubleText(fixed.constant(id, 0));
    if (type == NodeType::Boolean) return decisionNames.at(id);
    std::string text = NodeTypeUtils::toString(type) + constantsText(id) + "(";
    const char* separator = "";
    for (const NodeId child : fixed.childrenOf(id)) {
      text += separator + ofNode(child);
      separator = ",";
    }
    return text + ")";
  }

  /// How many nodes of a type the graph has.
  [[nodiscard]] std::uint32_t count(NodeType type) const {
    const auto code = static_cast<std::size_t>(type);
    return code < fixed.typeCounts.size() ? fixed.typeCounts[code] : 0;
  }

 private:
  static std::string doubleText(t_value word) {
    std::string text = std::to_string(wordToDouble(word));
    while (text.ends_with('0')) text.pop_back();
    return text;
  }
  [[nodiscard]] std::string constantsText(NodeId id) const {
    const bool isDouble = NodeTypeUtils::toString(fixed.nodeTypes[id]).starts_with("double_");
    std::string text;
    for (const t_value word : fixed.constantsOf(id)) {
      text += (text.empty() ? "[" : ",") + (isDouble ? doubleText(word) : std::to_string(word));
    }
    return text.empty() ? text : text + "]";
  }

  const DagBuilder& builder;
  const DagFixedFields& fixed;
  std::map<NodeId, std::string> decisionNames;
};

}  // namespace quvex
