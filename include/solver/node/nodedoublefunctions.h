#pragma once

#include <cstdint>
#include <type_traits>

#include "solver/node/plainnode.h"

/// The functions of one operand read as a double. Each is a policy: the function, its bounds, and how it passes picks.
namespace quvex {

/// What a function of one operand does with a pick.
enum class UnaryPicks : std::uint8_t {
  PassDown,           ///< it rises with its operand
  PassDownAnyChange,  ///< the same, but a change draws its direction itself
  Change,             ///< it may go either way: every pick asks for a change
};

/// An operator that applies `Function` to its operand.
template <class Function>
class NodeDoubleUnaryOf
    : public PlainNode<
          NodeDoubleUnaryOf<Function>,
          std::conditional_t<std::is_same_v<decltype(Function::of(0.0)), double>, NodeDoubleInner, NodeInner>> {
 public:
  [[nodiscard]] static auto value(const OperandCells& cells) { return Function::of(cells.get<Doubles>(0)); }

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId a = fixed.child(id, 0);
    return Function::bounds(fixed.minDouble(a), fixed.maxDouble(a));
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    const NodeId a = request.operand(id, 0);
    return Function::kPicks == UnaryPicks::Change ? request.change(a) : request.toward(d, a);
  }
  static bool pickOther(const PickRequest& request, NodeId id) {
    if (Function::kPicks == UnaryPicks::PassDownAnyChange) return NodeDoubleUnaryOf::pickAny(request, id);
    return request.change(request.operand(id, 0));
  }
};

struct CastFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static double of(double x) { return x; }
  [[nodiscard]] static Bounds bounds(double min, double max) { return Bounds::ofDoubles(min, max); }
};

// Roundings: the result is an integer, and bounds beyond the 64-bit integers are a failure.

struct CeilFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDownAnyChange;
  [[nodiscard]] static std::int64_t of(double x) { return MathDouble::ceil(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return {of(min), of(max)}; }
};
struct FloorFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static std::int64_t of(double x) { return MathDouble::floor(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return {of(min), of(max)}; }
};
struct RoundFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static std::int64_t of(double x) { return MathDouble::round(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return {of(min), of(max)}; }
};

struct SqrtFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static double of(double x) { return MathDouble::sqrt(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return Bounds::ofDoubles(end(min), end(max)); }

 private:
  [[nodiscard]] static double end(double x) { return x <= 0 ? 0.0 : of(x); }
};
struct LogFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static double of(double x) { return MathDouble::log(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return Bounds::ofDoubles(end(min), end(max)); }

 private:
  [[nodiscard]] static double end(double x) { return of(x < 0 ? 0.0 : x); }
};
struct ExpFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::PassDown;
  [[nodiscard]] static double of(double x) { return MathDouble::exp(x); }
  [[nodiscard]] static Bounds bounds(double min, double max) { return Bounds::ofDoubles(of(min), of(max)); }
};

struct CosFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::Change;
  [[nodiscard]] static double of(double x) { return MathDouble::cos(x); }
  [[nodiscard]] static Bounds bounds(double, double) { return Bounds::ofDoubles(-1.0, 1.0); }
};
struct SinFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::Change;
  [[nodiscard]] static double of(double x) { return MathDouble::sin(x); }
  [[nodiscard]] static Bounds bounds(double, double) { return Bounds::ofDoubles(-1.0, 1.0); }
};
struct TanFunction {
  static constexpr UnaryPicks kPicks = UnaryPicks::Change;
  [[nodiscard]] static double of(double x) { return MathDouble::tan(x); }
  /// Finite only within the branch around zero.
  [[nodiscard]] static Bounds bounds(double min, double max) {
    constexpr double kHalfPi = 1.5707963267948966;
    if (min > -kHalfPi && max < kHalfPi) return Bounds::ofDoubles(of(min), of(max));
    return Bounds::ofDoubles(-kInfinity, kInfinity);
  }
};

class NodeDoubleCast final : public NodeDoubleUnaryOf<CastFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleCast";
};
class NodeDoubleCeil final : public NodeDoubleUnaryOf<CeilFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleCeil";
};
class NodeDoubleFloor final : public NodeDoubleUnaryOf<FloorFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleFloor";
};
class NodeDoubleRound final : public NodeDoubleUnaryOf<RoundFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleRound";
};
class NodeDoubleSqrt final : public NodeDoubleUnaryOf<SqrtFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleSqrt";
};
class NodeDoubleLog final : public NodeDoubleUnaryOf<LogFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleLog";
};
class NodeDoubleExp final : public NodeDoubleUnaryOf<ExpFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleExp";
};
class NodeDoubleCos final : public NodeDoubleUnaryOf<CosFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleCos";
};
class NodeDoubleSin final : public NodeDoubleUnaryOf<SinFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleSin";
};
class NodeDoubleTan final : public NodeDoubleUnaryOf<TanFunction> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleTan";
};

}  // namespace quvex
