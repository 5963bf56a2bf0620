#include "solver/node/nodebooleansum.h"
#include "solver/node/nodedoublescalarsum.h"
#include "solver/node/nodedoublesum.h"
#include "solver/node/nodescalarsum.h"
#include "solver/node/nodesum.h"

namespace quvex {

template <class Set>
NodeBooleanSumTemplate<Set>::NodeBooleanSumTemplate(std::uint32_t nbOperands) : OneNodesAggregate<Set>(nbOperands) {}

template <class Set>
NodeSumTemplate<Set>::NodeSumTemplate(std::uint32_t nbOperands) : SumOf<Set, Plain<IntegerCells>>(nbOperands) {}

template <class Set>
NodeScalarSumTemplate<Set>::NodeScalarSumTemplate(std::uint32_t nbOperands)
    : SumOf<Set, Scaled<IntegerCells>>(nbOperands) {}

template <class Set>
NodeDoubleSumTemplate<Set>::NodeDoubleSumTemplate(std::uint32_t nbOperands)
    : DoubleSumOf<Set, Plain<DoubleCells>>(nbOperands) {}

template <class Set>
NodeDoubleScalarSumTemplate<Set>::NodeDoubleScalarSumTemplate(std::uint32_t nbOperands)
    : DoubleSumOf<Set, Scaled<DoubleCells>>(nbOperands) {}

QUVEX_OVER_SUBSETS(template, NodeBooleanSumTemplate);
QUVEX_OVER_SUBSETS(template, NodeSumTemplate);
QUVEX_OVER_SUBSETS(template, NodeScalarSumTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleSumTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleScalarSumTemplate);

}  // namespace quvex
