#include "api/expressionpool.h"

#include <memory>
#include <new>

namespace quvex {

ExpressionPool::~ExpressionPool() {
  std::allocator<QVExpression> allocator;
  for (QVExpression* chunk : chunks) {
    const std::size_t nbRecords = chunk == chunks.back() ? nbInLastChunk : kChunkSize;
    for (std::size_t i = 0; i < nbRecords; ++i) chunk[i].~QVExpression();
    allocator.deallocate(chunk, kChunkSize);
  }
}

QVExpression* ExpressionPool::create(QVModel* model, QVOperator op, std::uint32_t index) {
  if (nbInLastChunk == kChunkSize) addChunk();
  void* record = chunks.back() + nbInLastChunk;
  ++nbInLastChunk;
  return new (record) QVExpression(model, op, index);
}

void ExpressionPool::addChunk() {
  chunks.reserve(chunks.size() + 1);  // so that no failure can leave a chunk without owner
  chunks.push_back(std::allocator<QVExpression>().allocate(kChunkSize));
  nbInLastChunk = 0;
}

}  // namespace quvex
