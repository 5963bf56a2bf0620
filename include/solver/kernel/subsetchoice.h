#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "solver/kernel/subset.h"
#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

/// The one place that knows which container of operand positions fits which operand count.
namespace quvex {

/// The highest operand count that each container serves.
inline constexpr std::uint32_t kMaxOperandsOfMask8 = 8;
inline constexpr std::uint32_t kMaxOperandsOfMask16 = 16;
inline constexpr std::uint32_t kMaxOperandsOfMask32 = 32;
inline constexpr std::uint32_t kMaxOperandsOfMask64 = 64;
inline constexpr std::uint32_t kMaxOperandsOfBits = 1024;
inline constexpr std::uint32_t kMaxOperandsOfSubset16 = 65534;

/// Calls `make` with std::type_identity<Set>{} of the container for `nbOperands` operands, and gives back its result,
/// which must have the same type for all containers.
template <class Make>
decltype(auto) withSubsetFor(std::uint32_t nbOperands, Make&& make) {
  if (nbOperands <= kMaxOperandsOfMask8) return make(std::type_identity<SubsetMASK<unsigned char>>{});
  if (nbOperands <= kMaxOperandsOfMask16) return make(std::type_identity<SubsetMASK<unsigned short>>{});
  if (nbOperands <= kMaxOperandsOfMask32) return make(std::type_identity<SubsetMASK<unsigned int>>{});
  if (nbOperands <= kMaxOperandsOfMask64) return make(std::type_identity<SubsetMASK<unsigned long long>>{});
  if (nbOperands <= kMaxOperandsOfBits) return make(std::type_identity<SubsetBits>{});
  if (nbOperands <= kMaxOperandsOfSubset16) return make(std::type_identity<Subset<unsigned short>>{});
  return make(std::type_identity<Subset<unsigned int>>{});
}

/// The container's name as it appears in the names of the classes built on it, such as "quvex::SubsetBits".
template <class Set>
[[nodiscard]] constexpr const char* subsetName() {
  return Set::kName;
}

/// The name of a class template over a container, such as "quvex::NodeSumTemplate<quvex::SubsetBits>".
template <class Set>
[[nodiscard]] std::string nameOver(const char* classTemplate) {
  return std::string(classTemplate) + '<' + subsetName<Set>() + '>';
}

}  // namespace quvex

/// Instantiates a class template over every container: QUVEX_OVER_SUBSETS(extern template, NodeX) in the header,
/// QUVEX_OVER_SUBSETS(template, NodeX) in the one source that holds the code.
#define QUVEX_OVER_SUBSETS(prefix, Class)             \
  prefix class Class<SubsetMASK<unsigned char>>;      \
  prefix class Class<SubsetMASK<unsigned short>>;     \
  prefix class Class<SubsetMASK<unsigned int>>;       \
  prefix class Class<SubsetMASK<unsigned long long>>; \
  prefix class Class<SubsetBits>;                     \
  prefix class Class<Subset<unsigned short>>;         \
  prefix class Class<Subset<unsigned int>>
