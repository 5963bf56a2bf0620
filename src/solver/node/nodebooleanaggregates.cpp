#include "solver/node/nodeand.h"
#include "solver/node/nodeor.h"
#include "solver/node/nodexor.h"

namespace quvex {

template <class Set>
NodeAndTemplate<Set>::NodeAndTemplate(std::uint32_t nbOperands) : ZeroNodesAggregate<Set>(nbOperands) {}

template <class Set>
NodeOrTemplate<Set>::NodeOrTemplate(std::uint32_t nbOperands) : OneNodesAggregate<Set>(nbOperands) {}

template <class Set>
NodeXorTemplate<Set>::NodeXorTemplate(std::uint32_t nbOperands) : OneNodesAggregate<Set>(nbOperands) {}

QUVEX_OVER_SUBSETS(template, NodeAndTemplate);
QUVEX_OVER_SUBSETS(template, NodeOrTemplate);
QUVEX_OVER_SUBSETS(template, NodeXorTemplate);

}  // namespace quvex
