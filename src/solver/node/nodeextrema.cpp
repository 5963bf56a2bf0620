#include "solver/node/nodedoublemax.h"
#include "solver/node/nodedoublemin.h"
#include "solver/node/nodedoublescalarmax.h"
#include "solver/node/nodedoublescalarmin.h"
#include "solver/node/nodemax.h"
#include "solver/node/nodemin.h"
#include "solver/node/nodescalarmax.h"
#include "solver/node/nodescalarmin.h"

namespace quvex {

template <class Set>
NodeMinTemplate<Set>::NodeMinTemplate(std::uint32_t nbOperands)
    : IntegerExtremumOf<Set, Minimum, Plain<IntegerCells>>(nbOperands) {}

template <class Set>
NodeMaxTemplate<Set>::NodeMaxTemplate(std::uint32_t nbOperands)
    : IntegerExtremumOf<Set, Maximum, Plain<IntegerCells>>(nbOperands) {}

template <class Set>
NodeScalarMinTemplate<Set>::NodeScalarMinTemplate(std::uint32_t nbOperands)
    : IntegerExtremumOf<Set, Minimum, Scaled<IntegerCells>>(nbOperands) {}

template <class Set>
NodeScalarMaxTemplate<Set>::NodeScalarMaxTemplate(std::uint32_t nbOperands)
    : IntegerExtremumOf<Set, Maximum, Scaled<IntegerCells>>(nbOperands) {}

template <class Set>
NodeDoubleMinTemplate<Set>::NodeDoubleMinTemplate(std::uint32_t nbOperands)
    : DoubleExtremumOf<Set, Minimum, Plain<DoubleCells>>(nbOperands) {}

template <class Set>
NodeDoubleMaxTemplate<Set>::NodeDoubleMaxTemplate(std::uint32_t nbOperands)
    : DoubleExtremumOf<Set, Maximum, Plain<DoubleCells>>(nbOperands) {}

template <class Set>
NodeDoubleScalarMinTemplate<Set>::NodeDoubleScalarMinTemplate(std::uint32_t nbOperands)
    : DoubleExtremumOf<Set, Minimum, Scaled<DoubleCells>>(nbOperands) {}

template <class Set>
NodeDoubleScalarMaxTemplate<Set>::NodeDoubleScalarMaxTemplate(std::uint32_t nbOperands)
    : DoubleExtremumOf<Set, Maximum, Scaled<DoubleCells>>(nbOperands) {}

QUVEX_OVER_SUBSETS(template, NodeMinTemplate);
QUVEX_OVER_SUBSETS(template, NodeMaxTemplate);
QUVEX_OVER_SUBSETS(template, NodeScalarMinTemplate);
QUVEX_OVER_SUBSETS(template, NodeScalarMaxTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleMinTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleMaxTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleScalarMinTemplate);
QUVEX_OVER_SUBSETS(template, NodeDoubleScalarMaxTemplate);

}  // namespace quvex
