#include "solver/node/nodedoubleproduct.h"
#include "solver/node/nodedoublescalarproduct.h"
#include "solver/node/nodeproduct.h"
#include "solver/node/nodescalarproduct.h"

namespace quvex {

template <class Set>
NodeProductTemplate<Set>::NodeProductTemplate(std::uint32_t nbOperands)
    : IntegerProductOf<Set, NoFactor<IntegerCells>>(nbOperands) {}

template <class Set>
NodeScalarProductTemplate<Set>::NodeScalarProductTemplate(std::uint32_t nbOperands)
    : IntegerProductOf<Set, OneFactor<IntegerCells>>(nbOperands) {}

template <class Set>
NodeDoubleProductTemplate<Set>::NodeDoubleProductTemplate(std::uint32_t nbOperands)
    : DoubleProductOf<Set, NoFactor<DoubleCells>>(nbOperands) {}

template <class Set>
NodeDoubleScalarProductTemplate<Set>::NodeDoubleScalarProductTemplate(std::uint32_t nbOperands)
    : DoubleProductOf<Set, OneFactor<DoubleCells>>(nbOperands) {}

QUVEX_OVER_SUBSETS(template, NodeProductTemplate);
QUVEX_OVER_SUBSETS(template, NodeScalarProductTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleProductTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleScalarProductTemplate);

}  // namespace quvex
