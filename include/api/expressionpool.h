#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "api/qvexpression.h"

namespace quvex {

/// Where the expression records of one model live: chunks of fixed size, filled in order.
/// Invariant: records never move and are freed all together, so that pointers to them stay valid as long as the pool.
class ExpressionPool {
 public:
  ExpressionPool() = default;
  ExpressionPool(const ExpressionPool&) = delete;
  ExpressionPool& operator=(const ExpressionPool&) = delete;
  ~ExpressionPool();

  QVExpression* create(QVModel* model, QVOperator op, std::uint32_t index);

 private:
  static constexpr std::size_t kChunkSize = 4096;

  void addChunk();

  std::vector<QVExpression*> chunks;
  std::size_t nbInLastChunk = kChunkSize;  ///< full as long as there is no chunk at all
};

}  // namespace quvex
